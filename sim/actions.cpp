// SPDX-License-Identifier: MIT
#include "sim/actions.h"

#include "sim/element.h"
#include "sim/text.h"

#include <Qt>
#include <QTimerEvent>

#include <utility>

namespace
{

constexpr int steps = 10;

int elapsedAfter(int step, int duration)
{
    return static_cast<int>(static_cast<qint64>(duration) * step / steps);
}

} // namespace

Actions::Actions(QVector<Action> catalogue, Items &drivenItems, Journal &journalOfActions,
                 Announcer announcerOfEnds, QObject *parent)
    : QObject(parent)
    , all(std::move(catalogue))
    , items(drivenItems)
    , journal(journalOfActions)
    , announcer(std::move(announcerOfEnds))
{
}

QStringList Actions::ids() const
{
    QStringList found;
    for (const Action &action : all) {
        found.append(action.id);
    }
    return found;
}

int Actions::indexOf(const QString &id) const
{
    for (int index = 0; index < all.size(); ++index) {
        if (all.at(index).id == id) {
            return index;
        }
    }
    return -1;
}

std::optional<Refusal> Actions::start(const QString &id, const std::optional<QString> &value)
{
    const int index = indexOf(id);
    if (index < 0) {
        return unknownId(id);
    }
    if (stepsDone.contains(index)) {
        return busy(id);
    }
    // The value comes back in a signal, together with the identifier.
    if (value && value->size() > element::longestText) {
        return badValue(QStringLiteral("The value for %1 is longer than %2 characters.")
                            .arg(quoted(id), QString::number(element::longestText)));
    }
    stepsDone.insert(index, 0);
    journal.record(LogLevel::Info, id,
                   value ? QStringLiteral("started with ") + shown(*value)
                         : QStringLiteral("started"));
    announcer.info(value ? id + QLatin1String(" started with ") + *value
                         : id + QLatin1String(" started"));
    drive(all.at(index), 0);
    scheduleStep(index);
    return {};
}

QString Actions::replyTo(const QString &id, const QString &value) const
{
    const QString placeholder = QStringLiteral("%1");
    QString reply = all.at(indexOf(id)).reply;
    const int at = reply.indexOf(placeholder);
    return at < 0 ? reply : reply.replace(at, placeholder.size(), value);
}

void Actions::scheduleStep(int index)
{
    const int duration = all.at(index).duration;
    const int done = stepsDone.value(index);
    const int timer = startTimer(elapsedAfter(done + 1, duration) - elapsedAfter(done, duration),
                                 Qt::PreciseTimer);
    timers.insert(timer, index);
}

void Actions::timerEvent(QTimerEvent *event)
{
    killTimer(event->timerId());
    step(timers.take(event->timerId()));
}

void Actions::step(int index)
{
    const Action &action = all.at(index);
    // Without a duration there is no time between the steps, so that the last one is the only one.
    const int done = action.duration == 0 ? steps : stepsDone.value(index) + 1;
    stepsDone.insert(index, done);
    drive(action, 100 * done / steps);
    if (done == steps) {
        end(index);
    } else {
        scheduleStep(index);
    }
}

void Actions::drive(const Action &action, int percent)
{
    if (action.drivenItem < 0) {
        return;
    }
    const Item &item = items.at(action.drivenItem);
    journal.record(LogLevel::Info, item.id,
                   QStringLiteral("driven to %1 by %2").arg(percent).arg(shown(action.id)));
    items.assign(
        { { action.drivenItem, valueFromText(item.type, QString::number(percent)).value } });
}

void Actions::end(int index)
{
    stepsDone.remove(index);
    const Action &action = all.at(index);
    journal.record(LogLevel::Info, action.id, QStringLiteral("ended"));
    for (const ActionEnd &signal : action.ends) {
        QVariantList arguments { signal.message };
        if (signal.data.isValid()) {
            arguments.append(signal.data);
        }
        announcer.send(signal.member, arguments);
    }
}
