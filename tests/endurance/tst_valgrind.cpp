// SPDX-License-Identifier: MIT
// One run of each form of a request, and a monitor, under valgrind's memcheck: no invalid access,
// no uninitialized value, no definite leak. Not for the single files: memcheck replaces functions
// of a shared libc.
#include "tests/endurance/numberedsignals.h"
#include "tests/support/commandforms.h"
#include "tests/support/listening.h"
#include "tests/support/movrarun.h"
#include "tests/support/setting.h"

#include <QCoreApplication>
#include <QFile>
#include <QStandardPaths>
#include <QTest>

#include <csignal>
#include <cstdio>
#include <memory>

class tst_Valgrind : public QObject
{
    Q_OBJECT

public:
    explicit tst_Valgrind(const QByteArray &program)
        : valgrind(program)
    {
    }

private Q_SLOTS:
    void everyForm();
    void theMonitor();

private:
    /// Starts a request to "com.varn.tul".
    std::unique_ptr<Program> start(const QByteArrayList &words) const;

    QByteArray valgrind;
};

std::unique_ptr<Program> tst_Valgrind::start(const QByteArrayList &words) const
{
    const QByteArrayList options { "--quiet", "--leak-check=full", "--show-leak-kinds=definite",
                                   "--errors-for-leak-kinds=definite", "--error-exitcode=99" };
    return std::make_unique<Program>(
        valgrind, options + QByteArrayList { MOVRA_PROGRAM, "com.varn.tul", "/" } + words,
        busEnvironment());
}

void tst_Valgrind::everyForm()
{
    constexpr std::size_t atATime = 2;
    const std::vector<CommandForm> &forms = commandForms();
    FakeService service;
    answerAll(service);
    std::vector<std::unique_ptr<Program>> programs;
    for (std::size_t i = 0; i < forms.size(); ++i) {
        while (programs.size() < i + atATime && programs.size() < forms.size()) {
            programs.push_back(start(forms[programs.size()].words));
        }
        Program &program = *programs[i];
        QVERIFY2(program.waitForEnd(std::chrono::minutes(10)), forms[i].name);
        QVERIFY2(program.err.isEmpty(), (forms[i].name + (":\n" + program.err)).constData());
        QCOMPARE(program.out, forms[i].out);
        QCOMPARE(program.status, 0);
    }
}

void tst_Valgrind::theMonitor()
{
    const int count = setting("MOVRA_ENDURANCE_VALGRIND", 800);
    FakeService service;
    const std::unique_ptr<Program> monitor = start({ "SIG" });
    QVERIFY(waitUntilHeard(*monitor, service));
    QByteArray expected;
    for (int number = 0; number < count; ++number) {
        emitNumbered(service, number);
        expected += numberedLine(number);
    }
    QVERIFY(monitor->waitForLines(count));
    QCOMPARE(monitor->out, expected);
    // Valgrind looks for leaks when the signal arrives.
    monitor->send(SIGTERM);
    QVERIFY(monitor->waitForEnd());
    // Only the warning of every monitor, and no message of valgrind.
    QVERIFY2(monitor->err.count('\n') == 1, monitor->err.constData());
    QCOMPARE(monitor->status, 256 + SIGTERM);
}

int main(int argc, char **argv)
{
    const QString valgrind = QStandardPaths::findExecutable(QStringLiteral("valgrind"));
    if (valgrind.isEmpty()) {
        constexpr int skipped = 77;
        std::puts("Skipped: there is no valgrind; scripts/install-packages ci installs it.");
        return skipped;
    }
    const QCoreApplication application(argc, argv);
    tst_Valgrind test(QFile::encodeName(valgrind));
    return QTest::qExec(&test, argc, argv);
}

#include "tst_valgrind.moc"
