// SPDX-License-Identifier: MIT
// SIG: the monitor. Each slot prints one signal of the service.
#include "app/commandline.h"
#include "app/movra.h"
#include "bus/proxies.h"

#include <cstdio>
#include <iostream>

namespace
{

/// One line: the prefix of the slot and the text of the signal.
void printMessage(const char *beginning, const QString &msg)
{
    // This takes a quarter fewer instructions than a format.
    (void)std::fputs(beginning, stdout);
    (void)std::puts(msg.toLatin1().constData());
}

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

int Movra::sigCommand(char ** /*argv*/)
{
    // The connections are made by signature text, and their results are ignored on purpose. The
    // third one always fails, because the proxy has no such signal. Qt warns on standard error.
    connect(iface, SIGNAL(SigAlarm(QString)), this, SLOT(sigAlarmSlot(QString)));
    connect(iface, SIGNAL(SigDBusServerClosing(QString)), this,
            SLOT(sigDBusServerClosingSlot(QString)));
    connect(iface, SIGNAL(SigLogNotification(QStringList)), this,
            SLOT(sigLogChangedNotificationSlot(QStringList)));
    connect(iface, SIGNAL(SigError(QString)), this, SLOT(sigErrorSlot(QString)));
    connect(iface, SIGNAL(SigInfo(QString)), this, SLOT(sigInfoSlot(QString)));
    connect(iface, SIGNAL(SigTestComplete(QString)), this, SLOT(sigTestCompleteSlot(QString)));
    connect(iface, SIGNAL(SigUpdate(QString)), this, SLOT(sigUpdateSlot(QString)));
    // clang-format off
    connect(iface, SIGNAL(SigTestCompleteWithData(QString, std::vector<double>)), this,
            SLOT(sigTestCompleteWithDataSlot(QString, std::vector<double>)));
    connect(iface, SIGNAL(SigTestCompleteWithData(QString, std::vector<uint32_t>)), this,
            SLOT(sigTestCompleteWithDataSlot(QString, std::vector<uint32_t>)));
    // clang-format on
    return Success;
}

void Movra::sigAlarmSlot(QString msg)
{
    // "alarmSlot", although the slot has another name.
    printMessage("===Client alarmSlot  msg=", msg);
}

void Movra::sigDBusServerClosingSlot(QString msg)
{
    printMessage("===Client sigDBusServerClosingSlot  msg=", msg);
}

void Movra::sigLogChangedNotificationSlot(QStringList changedLogMsgList)
{
    for (const QString &value : qAsConst(changedLogMsgList)) {
        printMessage("===Client sigLogChangedNotificationSlot  value=", value);
    }
}

void Movra::sigErrorSlot(QString errorMsg)
{
    printMessage("===Client sigErrorSlot  msg=", errorMsg);
}

void Movra::sigInfoSlot(QString msg)
{
    printMessage("===Client sigInfoSlot  msg=", msg);
}

void Movra::sigTestCompleteSlot(QString msg)
{
    printMessage("===Client sigTestCompleteSlot  msg=", msg);
}

void Movra::sigUpdateSlot(QString msg)
{
    printMessage("===Client sigUpdateSlot  msg=", msg);
}

void Movra::sigTestCompleteWithDataSlot(QString msg, std::vector<double> data)
{
    printTestData("double", msg, data);
}

void Movra::sigTestCompleteWithDataSlot(QString msg, std::vector<uint32_t> data)
{
    printTestData("uint32_t", msg, data);
}
