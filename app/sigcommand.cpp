// SPDX-License-Identifier: MIT
// SIG: the monitor. Each slot prints what one signal of the service carried.
#include "app/movra.h"

#include <cstdio>
#include <iostream>

namespace
{

/// One line: the message, the number of elements and the first of them; the others are not printed.
template <typename T>
void printTestData(const char *elementName, const QString &msg, const std::vector<T> &data)
{
    std::cout << "sigTestCompleteWithDataSlot " << elementName
              << " msg=" << msg.toLatin1().constData() << " size=" << data.size();
    if (!data.empty()) {
        std::cout << " data[0]=" << data.front();
    }
    std::cout << std::endl;
}

} // namespace

void Movra::sigAlarmSlot(QString msg)
{
    // "alarmSlot", although the slot is named otherwise.
    std::printf("===Client alarmSlot  msg=%s\n", msg.toLatin1().constData());
}

void Movra::sigDBusServerClosingSlot(QString msg)
{
    std::printf("===Client sigDBusServerClosingSlot  msg=%s\n", msg.toLatin1().constData());
}

void Movra::sigLogChangedNotificationSlot(QStringList changedLogMsgList)
{
    for (const QString &value : qAsConst(changedLogMsgList)) {
        std::printf("===Client sigLogChangedNotificationSlot  value=%s\n",
                    value.toLatin1().constData());
    }
}

void Movra::sigErrorSlot(QString errorMsg)
{
    std::printf("===Client sigErrorSlot  msg=%s\n", errorMsg.toLatin1().constData());
}

void Movra::sigInfoSlot(QString msg)
{
    std::printf("===Client sigInfoSlot  msg=%s\n", msg.toLatin1().constData());
}

void Movra::sigTestCompleteSlot(QString msg)
{
    std::printf("===Client sigTestCompleteSlot  msg=%s\n", msg.toLatin1().constData());
}

void Movra::sigUpdateSlot(QString msg)
{
    std::printf("===Client sigUpdateSlot  msg=%s\n", msg.toLatin1().constData());
}

void Movra::sigTestCompleteWithDataSlot(QString msg, std::vector<double> data)
{
    printTestData("double", msg, data);
}

void Movra::sigTestCompleteWithDataSlot(QString msg, std::vector<uint32_t> data)
{
    printTestData("uint32_t", msg, data);
}
