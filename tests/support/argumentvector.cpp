// SPDX-License-Identifier: MIT
#include "tests/support/argumentvector.h"

#include "app/commandline.h"
#include "app/commands.h"
#include "tests/support/capture.h"
#include "tests/support/movrarun.h"

#include <algorithm>

ArgumentVector::ArgumentVector(const QByteArrayList &words, const QByteArrayList &environment)
{
    append(words);
    environmentBegin = entries.size();
    append(environment);
    entries.shrink_to_fit();
}

QByteArrayList ArgumentVector::words() const
{
    QByteArrayList found;
    std::copy(entries.begin(), std::find(entries.begin(), entries.end(), nullptr),
              std::back_inserter(found));
    return found;
}

void ArgumentVector::append(const QByteArrayList &words)
{
    for (const QByteArray &word : words) {
        const auto size = static_cast<std::size_t>(word.size()) + 1; // with the final zero
        texts.push_back(std::make_unique<char[]>(size));
        std::copy_n(word.constData(), size, texts.back().get());
        entries.push_back(texts.back().get());
    }
    entries.push_back(nullptr);
}

Outcome callHandler(Movra &movra, char **argv)
{
    const Command *const command = findCommand(wordAt(argv, CommandPosition));
    Outcome outcome { NotRun, {}, {} };
    if (command != nullptr) {
        outcome.out = captureOutput([&] {
            outcome.err = captureErrors([&] { outcome.status = (movra.*command->handler)(argv); });
        });
    }
    if (outcome.status != Success) {
        outcome.out += error(outcome.status);
    }
    return outcome;
}

Outcome callHandler(Movra &movra, const QByteArrayList &arguments)
{
    ArgumentVector vector(QByteArrayList { "movra" } + arguments);
    return callHandler(movra, vector.argv());
}
