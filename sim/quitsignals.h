// SPDX-License-Identifier: MIT
// SIGINT and SIGTERM as an event of the event loop.
#pragma once

#include <QObject>

/// Takes over both signals for the rest of the process; there is one of these.
class QuitSignals : public QObject
{
    Q_OBJECT

public:
    explicit QuitSignals(QObject *parent = nullptr);

Q_SIGNALS:
    void received();
};
