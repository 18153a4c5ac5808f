// SPDX-License-Identifier: MIT
#include "sim/faults.h"

#include "sim/service.h"
#include "sim/value.h"

#include <QRegularExpression>

#include <algorithm>
#include <iterator>
#include <tuple>

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
    { "error", Fault::Kind::Refuse, Value::Required },
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
                         "The fault %1 is not valid: %2. See movra-sim --help."_q.arg(quoted(text),
                                                                                      reason) };
    };
    static const QRegularExpression form(
        "\\A([^(=]*)(?:\\((.*?)\\))?=(.*?)(?:@([1-9][0-9]{0,8}))?\\z"_q,
        QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch parts = form.match(text);
    if (!parts.hasMatch()) {
        throw wrong("it is not of the form MEMBER[(ID)]=FAULT[@N]"_q);
    }
    Fault fault;
    fault.member = parts.captured(1);
    fault.id = parts.captured(2);
    fault.only = parts.captured(4).toInt();
    if (fault.member != everyMember && !Service::hasMember(fault.member)) {
        throw wrong("the interface has no member %1"_q.arg(quoted(fault.member)));
    }
    const QString what = parts.captured(3);
    const QString word = what.section(QLatin1Char(':'), 0, 0);
    const bool hasValue = word.size() < what.size();
    const QString value = what.mid(word.size() + 1);
    const auto *row =
        std::find_if(std::begin(kinds), std::end(kinds),
                     [&word](const KindRow &each) { return word == QLatin1String(each.word); });
    if (row == std::end(kinds) || (row->value == Value::None && hasValue)
        || (row->value == Value::Required && !hasValue)) {
        throw wrong(
            "%1 is not delay:MS, refuse, refuse:TEXT, error:NAME, error:NAME:TEXT, wrong-type, "
            "vanish or silence"_q.arg(quoted(what)));
    }
    fault.kind = row->kind;
    QString sentence = value;
    if (word == "error"_q) {
        static const QRegularExpression name(
            "\\A(?=.{1,255}\\z)[A-Za-z_][A-Za-z0-9_]*(\\.[A-Za-z_][A-Za-z0-9_]*)+\\z"_q);
        fault.error = value.section(QLatin1Char(':'), 0, 0);
        if (!name.match(fault.error).hasMatch()) {
            throw wrong("%1 is not the name of a bus error"_q.arg(quoted(fault.error)));
        }
        sentence = value.mid(fault.error.size() + 1);
    }
    if (!sentence.isEmpty()) {
        fault.text = sentence;
    }
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

const Fault *faultOf(QVector<Fault> &faults, const QString &member, const QStringList &ids)
{
    const Fault *found = nullptr;
    const auto rank = [](const Fault &fault) {
        return std::make_tuple(fault.member != everyMember, !fault.id.isNull(), fault.only != 0);
    };
    for (Fault &fault : faults) {
        if ((fault.member != member && fault.member != everyMember)
            || (!fault.id.isNull() && !ids.contains(fault.id))) {
            continue;
        }
        ++fault.calls;
        if ((fault.only == 0 || fault.only == fault.calls)
            && (found == nullptr || rank(fault) >= rank(*found))) {
            found = &fault;
        }
    }
    return found;
}
