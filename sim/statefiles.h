// SPDX-License-Identifier: MIT
// The files of the state directory: plain files that lie directly in it. Whatever a client asks
// for, nothing outside is touched, no link is followed and nothing but a regular file is read or
// replaced.
#pragma once

#include "sim/refusal.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <optional>

/// What was read, or why not.
struct StateRead {
    QByteArray bytes;
    std::optional<Refusal> refusal;
};

/// The state directory.
class StateFiles
{
public:
    /// Most that is ever read from or written to one file at once.
    static constexpr int mostBytes = 16 * 1024 * 1024;

    /// `directoryPath` may be empty: then every access is refused.
    explicit StateFiles(QString directoryPath);

    /// $XDG_STATE_HOME/movra-sim, else $HOME/.local/state/movra-sim; empty when neither is
    /// absolute.
    static QString defaultDirectory();

    /// Creates the directory if it is missing; says why it cannot be used, if so.
    QString prepare() const;
    /// Where the file of this name lies.
    QString pathOf(const QString &name) const;

    /// The whole file.
    StateRead read(const QString &name) const;
    /// Replaces or creates the file; after a crash either the old or the new one is there, whole.
    std::optional<Refusal> write(const QString &name, const QByteArray &bytes) const;
    /// Replaces or creates the file by an empty one and leaves it open for writing in `file`.
    std::optional<Refusal> create(const QString &name, QFile &file) const;

private:
    QString directory;
};
