// SPDX-License-Identifier: MIT
#include "sim/faults.h"

#include "sim/service.h"
#include "sim/value.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr int longestDelay = 3600000;

enum class Value { None, Optional, Required };

struct KindRow {
    const char *word;
    Fault::Kind kind;
    Value value;
};

constexpr KindRow kinds[] = {
    { "delay", Fault::Kind::Delay, Value::Required },
    { "refuse", Fault::Kind::Refuse, Value::Optional },
    { "wrong-type", Fault::Kind::WrongType, Value::None },
    { "vanish", Fault::Kind::Vanish, Value::None },
    { "silence", Fault::Kind::Silence, Value::None },
};

const QString everyMember = "*"_q;

} // namespace

Fault readFault(const QString &text)
{
    const auto wrong = [&text](const QString &reason) {
        return Refusal { "Usage"_q,
                         "The fault %1 is no good: %2. See movra-sim --help."_q.arg(quoted(text),
                                                                                    reason) };
    };
    const int equals = text.indexOf(QLatin1Char('='));
    if (equals < 0) {
        throw wrong("it is not of the form MEMBER=FAULT"_q);
    }
    Fault fault;
    fault.member = text.left(equals);
    if (fault.member != everyMember && !Service::hasMember(fault.member)) {
        throw wrong("the interface has no member %1"_q.arg(quoted(fault.member)));
    }
    const QString what = text.mid(equals + 1);
    const QString word = what.section(QLatin1Char(':'), 0, 0);
    const bool hasValue = word.size() < what.size();
    const QString value = what.mid(word.size() + 1);
    const auto *row =
        std::find_if(std::begin(kinds), std::end(kinds),
                     [&word](const KindRow &each) { return word == QLatin1String(each.word); });
    if (row == std::end(kinds) || (row->value == Value::None && hasValue)
        || (row->value == Value::Required && !hasValue)) {
        throw wrong("%1 is not delay:MS, refuse, refuse:TEXT, wrong-type, vanish or silence"_q.arg(
            quoted(what)));
    }
    fault.kind = row->kind;
    fault.text = value.isEmpty() ? "This call is refused on demand."_q : value;
    if (fault.kind == Fault::Kind::Delay) {
        bool isNumber = false;
        fault.delay = value.toInt(&isNumber);
        if (!isNumber || fault.delay < 0 || fault.delay > longestDelay) {
            throw wrong("%1 is not in 0 to %2 milliseconds"_q.arg(quoted(value),
                                                                  QString::number(longestDelay)));
        }
    }
    return fault;
}

const Fault *faultOf(const QVector<Fault> &faults, const QString &member)
{
    const Fault *found = nullptr;
    for (const Fault &fault : faults) {
        const bool isWorse = found == nullptr || found->member == everyMember;
        if (fault.member == member || (fault.member == everyMember && isWorse)) {
            found = &fault;
        }
    }
    return found;
}
