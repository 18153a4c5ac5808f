// SPDX-License-Identifier: MIT
// Every member of the proxy against random answers, also those that no command calls.
#include "bus/proxies.h"
#include "tests/hostile/qtwarnings.h"
#include "tests/hostile/randomanswers.h"
#include "tests/support/capture.h"

#include <QTest>

#include <functional>
#include <memory>
#include <vector>

namespace
{

struct Member {
    const char *name;
    const char *signature; ///< of the answer
    std::function<bool(KorAppInterface &)> answered; ///< waits, reads and checks the answer
};

template <typename Value> bool read(QDBusPendingReply<Value> reply)
{
    reply.waitForFinished();
    if (reply.isValid()) {
        // Reading runs the operators on the received values. Qt D-Bus does not check the types of
        // an error, so that its value must not be read.
        (void)reply.value();
    }
    return reply.isValid();
}

bool read(QDBusPendingReply<> reply)
{
    reply.waitForFinished();
    return reply.isValid();
}

const std::vector<Member> &members()
{
    using Proxy = KorAppInterface;
    static const QString x = QStringLiteral("x");
    static const QStringList xs { x, x };
    static const QDBusVariant one { 1 };
    // clang-format off
    static const std::vector<Member> all {
        { "AddToNotifyList", "", [](Proxy &p) { return read(p.AddToNotifyList(xs)); } },
        { "AddToNotifyList", "", [](Proxy &p) { return read(p.AddToNotifyList(x)); } },
        { "ClearConfigNotifyList", "", [](Proxy &p) { return read(p.ClearConfigNotifyList()); } },
        { "ClearResultNotifyList", "", [](Proxy &p) { return read(p.ClearResultNotifyList()); } },
        { "DbgLogCmd", "", [](Proxy &p) { return read(p.DbgLogCmd(x, x)); } },
        { "DbgLogGetIds", "as", [](Proxy &p) { return read(p.DbgLogGetIds()); } },
        { "DBusServerCmd", "", [](Proxy &p) { return read(p.DBusServerCmd(x, one)); } },
        { "DBusServerStatus", "i", [](Proxy &p) { return read(p.DBusServerStatus()); } },
        { "DeleteFromNotifyList", "", [](Proxy &p) { return read(p.DeleteFromNotifyList(xs)); } },
        { "DeleteFromNotifyList", "", [](Proxy &p) { return read(p.DeleteFromNotifyList(x)); } },
        { "DoAction", "s", [](Proxy &p) { return read(p.DoAction(x, x)); } },
        { "DoAction", "", [](Proxy &p) { return read(p.DoAction(x)); } },
        { "GetStatus", "ai", [](Proxy &p) { return read(p.GetStatus(xs)); } },
        { "GetStatus", "i", [](Proxy &p) { return read(p.GetStatus(x)); } },
        { "GetValue", "a(sv)", [](Proxy &p) { return read(p.GetValue(xs)); } },
        { "GetValue", "v", [](Proxy &p) { return read(p.GetValue(x)); } },
        { "GetValueStatus", "a(svi)", [](Proxy &p) { return read(p.GetValueStatus(xs)); } },
        { "GetValueStatus", "(svi)", [](Proxy &p) { return read(p.GetValueStatus(x)); } },
        { "ListActionIds", "as", [](Proxy &p) { return read(p.ListActionIds()); } },
        { "ListConfigIds", "as", [](Proxy &p) { return read(p.ListConfigIds()); } },
        { "ListResultIds", "as", [](Proxy &p) { return read(p.ListResultIds()); } },
        { "LoadConfig", "b", [](Proxy &p) { return read(p.LoadConfig(x)); } },
        { "LogClear", "", [](Proxy &p) { return read(p.LogClear(x)); } },
        { "LogGetIds", "s", [](Proxy &p) { return read(p.LogGetIds()); } },
        { "LogStartNotify", "", [](Proxy &p) { return read(p.LogStartNotify(x)); } },
        { "LogStopNotify", "", [](Proxy &p) { return read(p.LogStopNotify(x)); } },
        { "SaveConfig", "b", [](Proxy &p) { return read(p.SaveConfig(x)); } },
        { "SetValue", "", [](Proxy &p) { return read(p.SetValue(QList<IdValueStruct>())); } },
        { "SetValue", "", [](Proxy &p) { return read(p.SetValue(x, one)); } },
        { "StartConfigNotify", "", [](Proxy &p) { return read(p.StartConfigNotify()); } },
        { "StartResultNotify", "", [](Proxy &p) { return read(p.StartResultNotify()); } },
        { "StopConfigNotify", "", [](Proxy &p) { return read(p.StopConfigNotify()); } },
        { "StopResultNotify", "", [](Proxy &p) { return read(p.StopResultNotify()); } },
    };
    // clang-format on
    return all;
}

} // namespace

class tst_Members : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void randomReplies_data() { addMembers(); }
    void randomReplies() { attack(Answers::Replies); }
    void everyReplyTwice_data() { addMembers(); }
    void everyReplyTwice() { attack(Answers::RepliesSentTwice); }
    void randomErrors_data() { addMembers(); }
    void randomErrors() { attack(Answers::Errors); }

private:
    static void addMembers();
    /// Answers the row at random.
    void attack(Answers answers);
    /// Calls the member; the client accepts the reply or not.
    void check(const Member &member, bool taken, const QByteArray &reply);

    std::unique_ptr<FakeService> service;
    std::unique_ptr<KorAppInterface> proxy;
};

void tst_Members::initTestCase()
{
    showQtWarnings();
    registerBusTypes();
    service = std::make_unique<FakeService>();
    proxy = std::make_unique<KorAppInterface>(QStringLiteral("com.varn.tul"), QStringLiteral("/"),
                                              QDBusConnection::sessionBus(), nullptr);
    QVERIFY(proxy->isValid());
}

void tst_Members::addMembers()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const Member &member : members()) {
        QTest::addRow("%s -> %s, %d", member.name, member.signature, index) << index;
        ++index;
    }
}

void tst_Members::check(const Member &member, bool taken, const QByteArray &reply)
{
    bool answered = false;
    const QByteArray complaints = captureErrors([&] { answered = member.answered(*proxy); });
    const QByteArray about = reply.left(2000) + " -> " + complaints;
    QVERIFY2(answered == taken, about.constData());
    QVERIFY2(withoutAllowedWarnings(complaints).isEmpty(), about.constData());
    QCOMPARE(service->takeCalls().size(), 1);
}

void tst_Members::attack(Answers answers)
{
    QFETCH(int, index);
    const Member &member = members().at(static_cast<std::size_t>(index));
    answerAtRandom(*service, member.name, member.signature, answers,
                   [&](bool taken, const QByteArray &answer) { check(member, taken, answer); });
}

QTEST_GUILESS_MAIN(tst_Members)
#include "tst_members.moc"
