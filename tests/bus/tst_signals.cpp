// SPDX-License-Identifier: MIT
// Signals of the service: which one reaches which overload, and when the bus is asked for them.
#include "bus/proxies.h"
#include "tests/support/fakeservice.h"

#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <memory>

class tst_Signals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void texts_data();
    void texts();
    void doublesReachTheirOverloadOnly();
    void unsignedNumbersReachTheirOverloadOnly();
    void signalsOfOthersAreIgnored_data();
    void signalsOfOthersAreIgnored();
    void matchRulesLastAsLongAsConnections();
    void theProxyEmitsItsOwnSignals();

private:
    std::unique_ptr<FakeService> service;
    std::unique_ptr<KorAppInterface> proxy;
};

namespace
{

const char *const doublesSignal = SIGNAL(SigTestCompleteWithData(QString, std::vector<double>));
const char *const unsignedSignal = SIGNAL(SigTestCompleteWithData(QString, std::vector<uint32_t>));

QByteArrayList ownRules(const FakeService &service)
{
    QByteArrayList rules;
    for (const QByteArray &rule :
         service.matchRules(QDBusConnection::sessionBus().baseService().toLatin1())) {
        if (rule.contains("varn.pim")) {
            rules.append(rule);
        }
    }
    return rules;
}

/// Whether the bus knows that this process wants the signal; Qt D-Bus tells it from its own thread.
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
                                              QDBusConnection::sessionBus(), nullptr);
    QVERIFY(proxy->isValid());

    // Qt D-Bus holds signals back until the event loop first runs, and may then let a new one
    // overtake those that it held. Once one has come through, that is over.
    const QSignalSpy spy(proxy.get(), SIGNAL(SigInfo(QString)));
    QTRY_VERIFY(isListeningFor("SigInfo", *service));
    service->emitSignal("SigInfo", "('first',)");
    QTRY_COMPARE(spy.count(), 1);
}

void tst_Signals::texts_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<QByteArray>("member");
    QTest::newRow("SigAlarm") << QByteArray(SIGNAL(SigAlarm(QString))) << QByteArray("SigAlarm");
    QTest::newRow("SigDBusServerClosing")
        << QByteArray(SIGNAL(SigDBusServerClosing(QString))) << QByteArray("SigDBusServerClosing");
    QTest::newRow("SigError") << QByteArray(SIGNAL(SigError(QString))) << QByteArray("SigError");
    QTest::newRow("SigInfo") << QByteArray(SIGNAL(SigInfo(QString))) << QByteArray("SigInfo");
    QTest::newRow("SigTestComplete")
        << QByteArray(SIGNAL(SigTestComplete(QString))) << QByteArray("SigTestComplete");
    QTest::newRow("SigUpdate") << QByteArray(SIGNAL(SigUpdate(QString))) << QByteArray("SigUpdate");
}

void tst_Signals::texts()
{
    QFETCH(QByteArray, signal);
    QFETCH(QByteArray, member);

    QSignalSpy spy(proxy.get(), signal.constData());
    QVERIFY(spy.isValid());
    QTRY_VERIFY(isListeningFor(member, *service));
    service->emitSignal(member, "(1,)"); // another type: ignored
    service->emitSignal(member, "('',)");
    service->emitSignal(member, "('text €',)");
    QTRY_COMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0), QVariantList { QString() });
    QCOMPARE(spy.at(1), QVariantList { QStringLiteral("text \u20ac") });
}

void tst_Signals::doublesReachTheirOverloadOnly()
{
    QSignalSpy doubles(proxy.get(), doublesSignal);
    QSignalSpy unsignedNumbers(proxy.get(), unsignedSignal);
    QTRY_VERIFY(isListeningFor("SigTestCompleteWithData", *service));
    service->emitSignal("SigTestCompleteWithData", "('done', [1.5, 2.0])");
    service->emitSignal("SigTestCompleteWithData", "('empty', @ad [])");
    QTRY_COMPARE(doubles.count(), 2);
    QCOMPARE(unsignedNumbers.count(), 0);
    QCOMPARE(doubles.at(0).at(0), QVariant(QStringLiteral("done")));
    QCOMPARE(doubles.at(0).at(1).value<std::vector<double>>(), (std::vector<double> { 1.5, 2 }));
    QVERIFY(doubles.at(1).at(1).value<std::vector<double>>().empty());
}

void tst_Signals::unsignedNumbersReachTheirOverloadOnly()
{
    QSignalSpy doubles(proxy.get(), doublesSignal);
    QSignalSpy unsignedNumbers(proxy.get(), unsignedSignal);
    QTRY_VERIFY(isListeningFor("SigTestCompleteWithData", *service));
    service->emitSignal("SigTestCompleteWithData", "('no', [1, 2])"); // signed: nobody's
    service->emitSignal("SigTestCompleteWithData", "('done', [uint32 4294967295])");
    QTRY_COMPARE(unsignedNumbers.count(), 1);
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
    QTRY_VERIFY(isListeningFor("SigInfo", *service));
    if (sender.isEmpty()) {
        service->emitSignal("SigInfo", "('not ours',)", path, interface);
    } else {
        FakeService(sender).emitSignal("SigInfo", "('not ours',)", path, interface);
    }
    service->emitSignal("SigInfo", "('ours',)");
    QTRY_COMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0), QVariantList { QStringLiteral("ours") });
}

void tst_Signals::matchRulesLastAsLongAsConnections()
{
    QTRY_COMPARE(ownRules(*service), QByteArrayList());
    {
        const QSignalSpy spy(proxy.get(), SIGNAL(SigAlarm(QString)));
        QTRY_COMPARE(ownRules(*service).size(), 1);
        const QByteArray rule = ownRules(*service).first();
        QVERIFY2(rule.contains("interface='varn.pim'"), rule.constData());
        QVERIFY2(rule.contains("member='SigAlarm'"), rule.constData());
        QVERIFY2(rule.contains("path='/'"), rule.constData());
        QVERIFY2(rule.contains("sender='com.varn.tul'"), rule.constData());
    }
    QTRY_COMPARE(ownRules(*service), QByteArrayList());
}

void tst_Signals::theProxyEmitsItsOwnSignals()
{
    QSignalSpy spy(proxy.get(), unsignedSignal);
    QString msg = QStringLiteral("direct");
    std::vector<uint32_t> data { 7 };
    void *arguments[] = { nullptr, &msg, &data };
    const int index = KorAppInterface::staticMetaObject.methodOffset() + 6;
    QVERIFY(proxy->qt_metacall(QMetaObject::InvokeMetaMethod, index, arguments) < 0);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(1).value<std::vector<uint32_t>>(), data);
}

QTEST_GUILESS_MAIN(tst_Signals)
#include "tst_signals.moc"
