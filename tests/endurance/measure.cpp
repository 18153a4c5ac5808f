// SPDX-License-Identifier: MIT
#include "tests/endurance/measure.h"

#include <QByteArray>
#include <QFile>

#include <cstdio>

void figure(const char *name, double value, const char *unit)
{
    std::printf("figure: %s %.*f %s\n", name, value < 100 ? 2 : 0, value, unit);
    std::fflush(stdout);
}

int memoryOf(pid_t process, const char *field)
{
    QFile file(QStringLiteral("/proc/%1/status").arg(process));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QByteArray begin = QByteArray(field) + ':';
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(begin)) {
            return line.mid(begin.size()).trimmed().split(' ').first().toInt();
        }
    }
    return 0;
}
