// SPDX-License-Identifier: MIT
#include "tests/hostile/randomanswers.h"

#include "tests/hostile/randomreply.h"
#include "tests/support/setting.h"

#include <QTest>

namespace
{

int countOf(Answers answers)
{
    const int runs = setting("MOVRA_HOSTILE_RUNS", 200);
    return answers == Answers::Replies ? runs : runs / (answers == Answers::Errors ? 4 : 10);
}

} // namespace

void answerAtRandom(FakeService &service, const QByteArray &member, const QByteArray &signature,
                    Answers answers,
                    const std::function<void(bool taken, const QByteArray &answer)> &check)
{
    RandomReplies replies(static_cast<unsigned>(setting("MOVRA_HOSTILE_SEED", 1)));
    for (int left = countOf(answers); left > 0 && !QTest::currentTestFailed(); --left) {
        if (answers == Answers::Errors) {
            // A correct error contains one string.
            const RandomReply reply = replies.next("s");
            const QByteArray name = replies.errorName();
            service.refuseWith(member, name, reply.text);
            check(false, name + ' ' + reply.text);
            continue;
        }
        const RandomReply reply = replies.next(signature);
        if (answers == Answers::Replies) {
            service.answer(member, reply.text);
        } else {
            service.answerTwice(member, reply.text);
        }
        check(reply.signature.startsWith(signature), reply.text);
    }
}
