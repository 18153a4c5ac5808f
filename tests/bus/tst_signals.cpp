// SPDX-License-Identifier: MIT
// Signals of the service: the overload that each one reaches, and the match rules for them.
#include "bus/proxies.h"
#include "tests/support/fakeservice.h"
#include "tests/support/openbus.h"
#include "tests/support/patience.h"
#include "tests/support/signalforms.h"

#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <memory>

class tst_Signals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void texts_data();
    void texts();
    void doublesReachTheirOverloadOnly();
    void unsignedNumbersReachTheirOverloadOnly();
    void signalsOfOthersAreIgnored_data();
    void signalsOfOthersAreIgnored();
    void matchRulesLastAsLongAsConnections();
    void theRuleStaysUntilTheLastConnectionEnds();
    void theProxyEmitsItsSignalsByIndex();

private:
    std::unique_ptr<FakeService> service;
    std::unique_ptr<KorAppInterface> proxy;
};

namespace
{

const char *const doublesSignal = SIGNAL(SigTestCompleteWithData(QString, std::vector<double>));
const char *const unsignedSignal = SIGNAL(SigTestCompleteWithData(QString, std::vector<uint32_t>));

/// What SIGNAL() makes of a signature.
QByteArray asSignal(const char *signature)
{
    return QByteArray::number(QSIGNAL_CODE) + signature;
}

QByteArrayList ownRules(const FakeService &service)
{
    return service.matchRules("com.varn.tul");
}

/// Whether the bus has a match rule of this process for the signal. Qt D-Bus adds it in its thread.
bool isListeningFor(const QByteArray &member, const FakeService &service)
{
    const QByteArrayList rules = ownRules(service);
    return std::any_of(rules.begin(), rules.end(), [&member](const QByteArray &rule) {
        return rule.contains("member='" + member + '\'');
    });
}

} // namespace

void tst_Signals::initTestCase()
{
    registerBusTypes();
    service = std::make_unique<FakeService>();
    proxy = std::make_unique<KorAppInterface>(QStringLiteral("com.varn.tul"), QStringLiteral("/"),
                                              openBus(), nullptr);
    QVERIFY(proxy->isValid());
}

void tst_Signals::init()
{
    // The match rules of earlier tests must be removed first.
    QTRY_COMPARE_WITH_TIMEOUT(ownRules(*service), QByteArrayList(), patienceMs);
}

void tst_Signals::texts_data()
{
    QTest::addColumn<QByteArray>("member");
    QTest::addColumn<QByteArray>("signal");
    for (const SignalForm &form : signalForms) {
        if (qstrcmp(form.signature, "s") == 0) {
            QTest::newRow(form.member) << QByteArray(form.member) << asSignal(form.signal);
        }
    }
}

void tst_Signals::texts()
{
    QFETCH(QByteArray, member);
    QFETCH(QByteArray, signal);

    QSignalSpy spy(proxy.get(), signal.constData());
    QVERIFY(spy.isValid());
    QTRY_VERIFY_WITH_TIMEOUT(isListeningFor(member, *service), patienceMs);
    service->emitSignal(member, "(1,)"); // another type: ignored
    service->emitSignal(member, "('',)");
    service->emitSignal(member, "('text €',)");
    QTRY_COMPARE_WITH_TIMEOUT(spy.count(), 2, patienceMs);
    QCOMPARE(spy.at(0), QVariantList { QString() });
    QCOMPARE(spy.at(1), QVariantList { QStringLiteral("text \u20ac") });
}

void tst_Signals::doublesReachTheirOverloadOnly()
{
    QSignalSpy doubles(proxy.get(), doublesSignal);
    QSignalSpy unsignedNumbers(proxy.get(), unsignedSignal);
    QTRY_VERIFY_WITH_TIMEOUT(isListeningFor("SigTestCompleteWithData", *service), patienceMs);
    service->emitSignal("SigTestCompleteWithData", "('done', [1.5, 2.0])");
    service->emitSignal("SigTestCompleteWithData", "('empty', @ad [])");
    QTRY_COMPARE_WITH_TIMEOUT(doubles.count(), 2, patienceMs);
    QCOMPARE(unsignedNumbers.count(), 0);
    QCOMPARE(doubles.at(0).at(0), QVariant(QStringLiteral("done")));
    QCOMPARE(doubles.at(0).at(1).value<std::vector<double>>(), (std::vector<double> { 1.5, 2 }));
    QVERIFY(doubles.at(1).at(1).value<std::vector<double>>().empty());
}

void tst_Signals::unsignedNumbersReachTheirOverloadOnly()
{
    QSignalSpy doubles(proxy.get(), doublesSignal);
    QSignalSpy unsignedNumbers(proxy.get(), unsignedSignal);
    QTRY_VERIFY_WITH_TIMEOUT(isListeningFor("SigTestCompleteWithData", *service), patienceMs);
    service->emitSignal("SigTestCompleteWithData", "('no', [1, 2])"); // signed: ignored
    service->emitSignal("SigTestCompleteWithData", "('done', [uint32 4294967295])");
    QTRY_COMPARE_WITH_TIMEOUT(unsignedNumbers.count(), 1, patienceMs);
    QCOMPARE(doubles.count(), 0);
    QCOMPARE(unsignedNumbers.at(0).at(0), QVariant(QStringLiteral("done")));
    QCOMPARE(unsignedNumbers.at(0).at(1).value<std::vector<uint32_t>>(),
             std::vector<uint32_t> { 4294967295U });
}

void tst_Signals::signalsOfOthersAreIgnored_data()
{
    QTest::addColumn<QByteArray>("sender");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("interface");
    QTest::newRow("another service")
        << QByteArray("com.varn.other") << QByteArray("/") << QByteArray("varn.pim");
    QTest::newRow("another path") << QByteArray() << QByteArray("/other") << QByteArray("varn.pim");
    QTest::newRow("another interface")
        << QByteArray() << QByteArray("/") << QByteArray("varn.pimx");
}

void tst_Signals::signalsOfOthersAreIgnored()
{
    QFETCH(QByteArray, sender);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, interface);

    QSignalSpy spy(proxy.get(), SIGNAL(SigInfo(QString)));
    QTRY_VERIFY_WITH_TIMEOUT(isListeningFor("SigInfo", *service), patienceMs);
    if (sender.isEmpty()) {
        service->emitSignal("SigInfo", "('not ours',)", path, interface);
    } else {
        FakeService(sender).emitSignal("SigInfo", "('not ours',)", path, interface);
    }
    service->emitSignal("SigInfo", "('ours',)");
    QTRY_COMPARE_WITH_TIMEOUT(spy.count(), 1, patienceMs);
    QCOMPARE(spy.at(0), QVariantList { QStringLiteral("ours") });
}

void tst_Signals::matchRulesLastAsLongAsConnections()
{
    QTRY_COMPARE_WITH_TIMEOUT(ownRules(*service), QByteArrayList(), patienceMs);
    {
        const QSignalSpy spy(proxy.get(), SIGNAL(SigAlarm(QString)));
        QTRY_COMPARE_WITH_TIMEOUT(ownRules(*service).size(), 1, patienceMs);
        const QByteArray rule = ownRules(*service).first();
        QVERIFY2(rule.contains("interface='varn.pim'"), rule.constData());
        QVERIFY2(rule.contains("member='SigAlarm'"), rule.constData());
        QVERIFY2(rule.contains("path='/'"), rule.constData());
    }
    QTRY_COMPARE_WITH_TIMEOUT(ownRules(*service), QByteArrayList(), patienceMs);
}

void tst_Signals::theRuleStaysUntilTheLastConnectionEnds()
{
    QSignalSpy spy(proxy.get(), SIGNAL(SigUpdate(QString)));
    {
        const QSignalSpy other(proxy.get(), SIGNAL(SigUpdate(QString)));
        QTRY_VERIFY_WITH_TIMEOUT(isListeningFor("SigUpdate", *service), patienceMs);
    }
    service->emitSignal("SigUpdate", "('still here',)");
    QTRY_COMPARE_WITH_TIMEOUT(spy.count(), 1, patienceMs);
    QCOMPARE(ownRules(*service).size(), 1);
}

void tst_Signals::theProxyEmitsItsSignalsByIndex()
{
    QVariant doubles = QVariant::fromValue(std::vector<double> { 1.5 });
    QVariant unsignedNumbers = QVariant::fromValue(std::vector<uint32_t> { 7 });
    QString text = QStringLiteral("direct");
    for (const SignalForm &form : signalForms) {
        const QByteArray signature = form.signature;
        QVariant &data = signature == "sad" ? doubles : unsignedNumbers;
        QSignalSpy spy(proxy.get(), asSignal(form.signal).constData());
        void *arguments[] = { nullptr, &text, data.data() };
        const int index = KorAppInterface::staticMetaObject.indexOfSignal(form.signal);
        QVERIFY(proxy->qt_metacall(QMetaObject::InvokeMetaMethod, index, arguments) < 0);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).at(0), QVariant(text));
        QCOMPARE(spy.at(0).value(1).userType(), signature == "s" ? 0 : data.userType());
    }
}

QTEST_GUILESS_MAIN(tst_Signals)
#include "tst_signals.moc"
