// SPDX-License-Identifier: MIT
// The object on the bus: every call arrives in one place, is looked up in one table by member and
// signature, and is answered or refused from there.
#pragma once

#include "sim/actions.h"
#include "sim/announcer.h"
#include "sim/catalog.h"
#include "sim/debuglog.h"
#include "sim/faults.h"
#include "sim/items.h"
#include "sim/journal.h"
#include "sim/notifier.h"
#include "sim/refusal.h"
#include "sim/statefiles.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include <optional>

struct IdValueStruct;

/// What a call is answered with: values, or a refusal.
struct Answer {
    QVariantList values;
    std::optional<Refusal> refusal;
};

/// The simulated service. Every handler takes the arguments of a call whose signature fits.
class Service : public QDBusVirtualObject
{
    Q_OBJECT

public:
    Service(const Catalog &catalog, const StateFiles &stateFiles, const Announcer &signalAnnouncer,
            QVector<Fault> faultsOnDemand, QObject *parent = nullptr);

    /// The interface, word for word from the contract.
    QString introspect(const QString &path) const override;
    /// Answers a call of the interface; leaves calls of other interfaces to Qt.
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

Q_SIGNALS:
    /// A call met with Fault::Kind::Vanish; no call is answered any more.
    void vanished();

private:
    struct MethodRow;
    static const MethodRow methods[];
    static const MethodRow *find(const QDBusMessage &message);

    void answer(const MethodRow &method, const QDBusMessage &message,
                const QDBusConnection &connection);
    void suffer(const Fault &fault, const MethodRow &method, const QDBusMessage &message,
                const QDBusConnection &connection);

    // Items
    Answer getStatus(const QVariantList &arguments);
    Answer getStatuses(const QVariantList &arguments);
    Answer getValue(const QVariantList &arguments);
    Answer getValues(const QVariantList &arguments);
    Answer getValueStatus(const QVariantList &arguments);
    Answer getValueStatuses(const QVariantList &arguments);
    Answer listConfigIds(const QVariantList &arguments);
    Answer listResultIds(const QVariantList &arguments);
    Answer setValue(const QVariantList &arguments);
    Answer setValues(const QVariantList &arguments);

    // Notify list
    Answer addToNotifyList(const QVariantList &arguments);
    Answer deleteFromNotifyList(const QVariantList &arguments);
    Answer clearConfigNotifyList(const QVariantList &arguments);
    Answer clearResultNotifyList(const QVariantList &arguments);
    Answer startConfigNotify(const QVariantList &arguments);
    Answer startResultNotify(const QVariantList &arguments);
    Answer stopConfigNotify(const QVariantList &arguments);
    Answer stopResultNotify(const QVariantList &arguments);

    // Actions
    Answer doAction(const QVariantList &arguments);
    Answer doActionWithValue(const QVariantList &arguments);
    Answer listActionIds(const QVariantList &arguments);

    // Server
    Answer dBusServerCmd(const QVariantList &arguments);
    Answer dBusServerStatus(const QVariantList &arguments);

    // Logs
    Answer dbgLogCmd(const QVariantList &arguments);
    Answer dbgLogGetIds(const QVariantList &arguments);
    Answer logClear(const QVariantList &arguments);
    Answer logGetIds(const QVariantList &arguments);
    Answer logStartNotify(const QVariantList &arguments);
    Answer logStopNotify(const QVariantList &arguments);

    // Files
    Answer loadConfig(const QVariantList &arguments);
    Answer saveConfig(const QVariantList &arguments);

    /// The items of these identifiers; the first unknown one is refused and noted.
    std::optional<Refusal> lookUp(const QStringList &ids, QVector<int> &indexes);
    /// Refuses to read more than one answer can carry.
    std::optional<Refusal> checkSize(const QVector<int> &indexes) const;
    /// The items that a call reads, all of them noted, or why it is refused.
    std::optional<Refusal> lookUpToRead(const QVariantList &arguments, QVector<int> &indexes);
    template <typename Show> Answer readOne(const QVariantList &arguments, Show show);
    template <typename Show> Answer readAll(const QVariantList &arguments, Show show);
    std::optional<Refusal> convert(const IdValueStruct &wanted, Assignment &assignment) const;
    Answer assignAll(const QList<IdValueStruct> &wanted);
    Answer refusedAction(const QString &id, const Refusal &refusal);

    Announcer announcer;
    StateFiles files;
    DebugLog debugLog;
    Journal journal;
    Items items;
    Notifier notifier;
    Actions actions;
    QVector<Fault> faults;
    bool hasVanished = false;
    QString interface;
};
