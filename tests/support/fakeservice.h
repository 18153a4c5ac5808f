// SPDX-License-Identifier: MIT
// A service for tests without Qt. It records every call as text and sends the answers that a test
// sets, which may be wrong. It has its own connection and thread, so that a test may block.
#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <memory>

class FakeService
{
public:
    enum class Ownership { Sole, Shared };
    /// Owns the name on the session bus, or on the one at the address; throws std::runtime_error
    /// if it cannot. A shared name belongs to the service that took it last.
    explicit FakeService(const QByteArray &name = "com.varn.tul",
                         const QByteArray &bus = qgetenv("DBUS_SESSION_BUS_ADDRESS"),
                         Ownership ownership = Ownership::Sole);
    /// Releases the name before it leaves the bus, so that another service can take it at once. On
    /// a bus that is stopped this takes a minute: let such a bus end first.
    ~FakeService();
    FakeService(const FakeService &) = delete;
    FakeService &operator=(const FakeService &) = delete;

    /// From now on answers calls of the member with a body in GVariant text, always a tuple:
    /// `(<[uint32 1, 2]>,)`. Without this the answer is `()`. The member "Echo" is answered with
    /// its own arguments.
    void answer(const QByteArray &member, const QByteArray &body);
    /// The same, but sends the reply twice.
    void answerTwice(const QByteArray &member, const QByteArray &body);
    /// From now on answers calls of the member with an error.
    void refuse(const QByteArray &member, const QByteArray &errorName, const QByteArray &message);
    /// The same with any body in GVariant text. A correct error has one string.
    void refuseWith(const QByteArray &member, const QByteArray &errorName, const QByteArray &body);
    /// From now on leaves calls of the member without an answer.
    void ignore(const QByteArray &member);
    /// Closes the connection without an answer when the member is called.
    void leaveOn(const QByteArray &member);
    /// Closes the connection after the next answer.
    void leaveAfterAnswer();

    /// Takes a shared name back.
    void takeName();

    /// The calls since the last time, in order of arrival, each as "member signature body": as in
    /// "DoAction ss ('a', 'b')". A path other than "/" or an interface other than "varn.pim" is put
    /// in front.
    QByteArrayList takeCalls();
    /// Waits for at least this many calls, no longer than `patience`, and takes them.
    QByteArrayList waitForCalls(int count);

    enum class After { Wait, MoreFollows };
    /// Broadcasts a signal with a body in GVariant text. Waits until the bus has it, unless further
    /// signals follow.
    void emitSignal(const QByteArray &member, const QByteArray &body, const QByteArray &path = "/",
                    const QByteArray &interface = "varn.pim", After after = After::Wait);
    /// Sends a signal to the connection of this unique name; to all if it is empty.
    void emitSignalTo(const QByteArray &destination, const QByteArray &member,
                      const QByteArray &body, const QByteArray &path = "/",
                      const QByteArray &interface = "varn.pim");
    /// Waits until the bus has all that was emitted.
    void waitUntilSent() const;

    /// The match rules of all connections for signals of a service (by its name).
    QByteArrayList matchRules(const QByteArray &service) const;
    /// The unique names of the connections that have these rules, one for each rule.
    QByteArrayList listeners(const QByteArray &service) const;
    /// Waits until every connection with such a rule has read all earlier signals from the bus;
    /// false if one of them does not answer before `patience` is over.
    bool waitUntilTaken(const QByteArray &service) const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
