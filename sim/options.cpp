// SPDX-License-Identifier: MIT
#include "sim/options.h"

#include "sim/service.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QDir>

#include <iterator>

namespace
{

Refusal wrong(const QString &sentence)
{
    return { "Usage"_q, sentence + " See movra-sim --help."_q };
}

/// Reads a fault such as `GetValue(:id:)=delay:500@3`.
Fault readFault(const QString &text)
{
    static const QHash<QString, Fault::Kind> plainKinds {
        { "wrong-type"_q, Fault::Kind::WrongType },
        { "vanish"_q, Fault::Kind::Vanish },
        { "silence"_q, Fault::Kind::Silence },
    };
    const auto notValid = [&text](const QString &reason) {
        return wrong("The fault %1 is not valid: %2."_q.arg(quoted(text), reason));
    };
    static const QRegularExpression form(
        "\\A([^(=]*)(?:\\((.*?)\\))?=([^:]*?)(?::(.*?))?(?:@([1-9][0-9]{0,8}))?\\z"_q,
        QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch parts = form.match(text);
    if (!parts.hasMatch()) {
        throw notValid("it is not of the form MEMBER[(ID)]=FAULT[@N]"_q);
    }
    Fault fault;
    if (const QString member = parts.captured(1); member != "*"_q) {
        if (!Service::hasMember(member)) {
            throw notValid("the interface has no member %1"_q.arg(quoted(member)));
        }
        fault.member = member;
    }
    fault.id = parts.captured(2);
    fault.only = parts.captured(5).toInt();
    const QString word = parts.captured(3);
    const QString value = parts.captured(4);
    if (plainKinds.contains(word) && value.isNull()) {
        fault.kind = plainKinds.value(word);
    } else if (word == "refuse"_q) {
        fault.kind = Fault::Kind::Refuse;
        fault.text = value;
    } else if (word == "error"_q && !value.isNull()) {
        static const QRegularExpression name(
            "\\A(?=.{1,255}\\z)[A-Za-z_][A-Za-z0-9_]*(\\.[A-Za-z_][A-Za-z0-9_]*)+\\z"_q);
        fault.kind = Fault::Kind::Refuse;
        fault.error = value.section(QLatin1Char(':'), 0, 0);
        fault.text = value.section(QLatin1Char(':'), 1);
        if (!name.match(fault.error).hasMatch()) {
            throw notValid("%1 is not the name of a bus error"_q.arg(quoted(fault.error)));
        }
    } else if (word == "delay"_q && !value.isNull()) {
        bool isNumber = false;
        fault.kind = Fault::Kind::Delay;
        fault.delay = value.toInt(&isNumber);
        if (!isNumber || fault.delay < 0 || fault.delay > longestTime) {
            throw notValid("%1 is not in 0 to %2 milliseconds"_q.arg(quoted(value),
                                                                     QString::number(longestTime)));
        }
    } else {
        throw notValid(
            "%1 is not delay:MS, refuse, refuse:TEXT, error:NAME, error:NAME:TEXT, wrong-type, "
            "vanish or silence"_q.arg(
                quoted(value.isNull() ? word : word + QLatin1Char(':') + value)));
    }
    if (fault.text.isEmpty()) {
        fault.text = "This call is refused on demand."_q;
    }
    return fault;
}

} // namespace

Options parseOptions(const QStringList &arguments)
{
    const QCommandLineOption service("service"_q, {}, "NAME"_q, "com.varn.tul"_q);
    const QCommandLineOption path("path"_q, {}, "PATH"_q, "/"_q);
    const QCommandLineOption catalog("catalog"_q, "catalogue"_q, "FILE"_q);
    const QCommandLineOption state("state"_q, {}, "DIR"_q);
    const QCommandLineOption fault("fault"_q, {}, "MEMBER=FAULT"_q);
    const QCommandLineOption log("log"_q, "log"_q, "FILE"_q);
    const QCommandLineOption capture("capture"_q, {}, "NAME"_q);
    const QCommandLineOption check("check"_q, "catalogue"_q, "FILE"_q);
    const QCommandLineOption help(QStringList { "h"_q, "help"_q });
    const QCommandLineOption version("version"_q);
    QCommandLineParser parser;
    parser.addOptions({ service, path, catalog, state, log, fault, capture, check, help, version });
    if (!parser.parse(arguments)) {
        throw wrong(parser.errorText());
    }
    if (const QStringList stray = parser.positionalArguments(); !stray.isEmpty()) {
        throw wrong("%1 is one argument too many."_q.arg(quoted(stray.first())));
    }
    for (const QCommandLineOption &option : { catalog, check, log }) {
        if (parser.isSet(option) && parser.value(option).isEmpty()) {
            throw wrong("The name of the %1 is empty."_q.arg(option.description()));
        }
    }

    Options options;
    const QStringList faults = parser.values(fault);
    std::transform(faults.begin(), faults.end(), std::back_inserter(options.faults), readFault);
    options.service = parser.value(parser.isSet(capture) ? capture : service);
    options.path = parser.value(path);
    options.catalogFile = parser.value(parser.isSet(check) ? check : catalog);
    options.logFile = parser.value(log);
    if (parser.isSet(state)) {
        const QString name = parser.value(state);
        options.stateDirectory = name.isEmpty() ? name : QDir::current().absoluteFilePath(name);
    }
    if (parser.isSet(help) || parser.isSet(version)) {
        options.task = Options::Task::Print;
        options.text = parser.isSet(help) ? QString::fromUtf8(builtIn("help.txt"_q))
                                          : "movra-sim " MOVRA_SIM_VERSION "\n"_q;
    } else if (parser.isSet(capture)) {
        options.task = Options::Task::Capture;
    } else if (parser.isSet(check)) {
        options.task = Options::Task::Check;
    }
    static const QRegularExpression objectPath("\\A(?:/|(?:/[A-Za-z0-9_]+)+)\\z"_q);
    if ((options.task == Options::Task::Serve || options.task == Options::Task::Capture)
        && !objectPath.match(options.path).hasMatch()) {
        throw Refusal { "Path"_q, "%1 is not an object path"_q.arg(quoted(options.path)) };
    }
    return options;
}
