// SPDX-License-Identifier: MIT
#include "sim/options.h"

#include <QCommandLineOption>
#include <QCommandLineParser>

Options parseOptions(const QStringList &arguments)
{
    const QCommandLineOption service("service"_q, {}, "NAME"_q, "com.varn.tul"_q);
    const QCommandLineOption path("path"_q, {}, "PATH"_q, "/"_q);
    const QCommandLineOption catalog("catalog"_q, {}, "FILE"_q);
    const QCommandLineOption state("state"_q, {}, "DIR"_q);
    const QCommandLineOption fault("fault"_q, {}, "MEMBER=FAULT"_q);
    const QCommandLineOption log("log"_q, {}, "FILE"_q);
    const QCommandLineOption capture("capture"_q, {}, "NAME"_q);
    const QCommandLineOption check("check"_q, {}, "FILE"_q);
    const QCommandLineOption help(QStringList { "h"_q, "help"_q });
    const QCommandLineOption version("version"_q);
    QCommandLineParser parser;
    parser.addOptions({ service, path, catalog, state, log, fault, capture, check, help, version });

    const auto wrong = [](const QString &sentence) {
        return Refusal { "Usage"_q, sentence + " See movra-sim --help."_q };
    };
    if (!parser.parse(arguments)) {
        throw wrong(parser.errorText());
    }
    if (!parser.positionalArguments().isEmpty()) {
        throw wrong(
            "%1 is one argument too many."_q.arg(quoted(parser.positionalArguments().first())));
    }
    if ((parser.isSet(catalog) && parser.value(catalog).isEmpty())
        || (parser.isSet(check) && parser.value(check).isEmpty())) {
        throw wrong("The name of the catalogue is empty."_q);
    }
    if (parser.isSet(log) && parser.value(log).isEmpty()) {
        throw wrong("The name of the log is empty."_q);
    }
    Options options;
    for (const QString &text : parser.values(fault)) {
        options.faults.append(readFault(text));
    }
    if (parser.isSet(help)) {
        options.task = Options::Task::Help;
    } else if (parser.isSet(version)) {
        options.task = Options::Task::Version;
    }
    options.service = parser.value(service);
    if (parser.isSet(capture) && options.task == Options::Task::Serve) {
        options.task = Options::Task::Capture;
        options.service = parser.value(capture);
    }
    options.path = parser.value(path);
    options.logFile = parser.value(log);
    options.catalogFile = parser.value(catalog);
    if (parser.isSet(check) && options.task == Options::Task::Serve) {
        options.task = Options::Task::Check;
        options.catalogFile = parser.value(check);
    }
    if (parser.isSet(state)) {
        options.stateDirectory = parser.value(state);
    }
    return options;
}

QString helpText()
{
    return QStringLiteral(
        R"(Usage: movra-sim [--service NAME] [--path PATH] [--catalog FILE] [--state DIR]
                 [--log FILE] [--fault MEMBER=FAULT]... [-- COMMAND [ARGUMENT]...]
       movra-sim --capture NAME [--path PATH]
       movra-sim --check FILE

A stand-in for the application service that movra talks to. It owns a name on the
session bus, answers the interface "varn.pim" and prints "ready" once it does. It
ends on SIGINT, SIGTERM or SIGHUP, after a SigDBusServerClosing.

With a command it serves on a private session bus instead, where it runs the command
with DBUS_SESSION_BUS_ADDRESS and MOVRA_SIM_STATE (the state directory) set, and ends
with it. This needs dbus-daemon.

Options:
  --service NAME  the bus name to own (default com.varn.tul)
  --path PATH     the object path to answer at (default /)
  --catalog FILE  the items, actions and logs to offer, as JSON
                  (default: a built-in catalogue of every kind)
  --state DIR     where saved configurations and debug logs lie
                  (default $XDG_STATE_HOME/movra-sim,
                  else $HOME/.local/state/movra-sim; with a command,
                  a temporary one)
  --log FILE      writes each call and each signal there (-: standard output), a JSON
                  object a line
  --fault MEMBER[(ID)]=FAULT[@N]
                  what calls of this member of the interface (*: of every member)
                  get instead of a prompt answer: only those whose first
                  argument names the identifier, only the N-th; may be repeated:
                    delay:MS       carried out and answered so much later
                    refuse[:TEXT]  refused with varn.pim.Error.Refused
                    error:NAME[:TEXT]
                                   refused with the bus error of this name
                    wrong-type     answered with a value of a type they never have
                    silence        never answered
                    vanish         never answered, and the simulator ends at once
  --capture NAME  asks the service with this bus name for all that it has, and prints
                  a catalogue that answers as it did
  --check FILE    reads a catalogue and tells the first thing that is wrong with it;
                  needs no bus
  -h, --help      print this text
  --version       print the version

Exit status:
  0  told to end, or vanished, or printed what was asked for, or the catalogue is good
  1  wrong options or stray arguments
  2  the catalogue cannot be read or is malformed
  3  there is no session bus, or it went away
  4  the bus name is malformed, taken or not allowed
  5  the object path is malformed
  6  the directory named by --state cannot be used
  7  the file named by --log cannot be written
  8  the service cannot be captured
With a command, its own status: 126 if it cannot be run, 127 if there is no such command,
128 and the signal's number if a signal ended it.
)");
}

QString versionText()
{
    return QStringLiteral("movra-sim " MOVRA_SIM_VERSION "\n");
}
