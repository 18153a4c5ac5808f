// SPDX-License-Identifier: MIT
// The object on the bus. Each call is looked up in one table by member and signature, and answered
// or refused.
#pragma once

#include "sim/catalog.h"
#include "sim/options.h"

#include <QDBusConnection>
#include <QDBusVirtualObject>

/// The simulated service.
class Service : public QDBusVirtualObject
{
public:
    /// All but the faults must outlive the service.
    Service(const Catalog &catalogOfService, StateFiles &stateFiles, Announcer &signalAnnouncer,
            QVector<Fault> faultsOnDemand);

    /// Starts the timeline.
    void startTimeline() { changes.startTimeline(); }
    /// Whether a call had the fault Fault::Kind::Vanish, which ends the event loop. No further call
    /// is answered.
    bool hasVanished() const { return vanished; }
    /// Whether a method of the interface has this name.
    static bool hasMember(const QString &name);

    /// Unused: handleMessage() answers Introspect.
    QString introspect(const QString &path) const override;
    /// Answers a call of the interface; leaves calls of other interfaces to Qt.
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    struct Method;
    static const Method methods[];

    void answer(const Method &method, const QDBusMessage &call);
    /// The fault for a call, which counts it; null: none. Of several faults, one for a member comes
    /// before one for every member, then one for an id before one without, then one for a
    /// single call; then the last one given counts.
    const Fault *faultFor(const QDBusMessage &call);
    void suffer(const Fault &fault, const Method &method, const QDBusMessage &call);

    /// The answer to a call that reads items: a list of what it asks for, or of one id just
    /// that. All items are noted, unless the answer would be too long.
    template <typename Told> QVariantList read(const QVariantList &arguments);
    /// Sets the items of a list, or the item whose id and value are the arguments.
    void set(const QVariantList &arguments);
    void serverCommand(const QString &word, const QVariant &value);
    // They return true, as the interface wants it: what cannot be done is thrown.
    bool saveConfig(const QString &name);
    bool loadConfig(const QString &name);

    StateFiles &files;
    Announcer &announcer;
    const Catalog &catalog;
    Log log;
    Items items;
    Changes changes;
    QVector<Fault> faults;
    bool vanished = false;
};
