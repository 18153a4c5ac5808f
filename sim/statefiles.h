// SPDX-License-Identifier: MIT
// The files of the state directory: regular files, in no subdirectory. No request of a client can
// reach a file outside, follow a link, or read or replace anything but a regular file.
#pragma once

#include "sim/errors.h"

#include <QByteArray>
#include <QFile>

#include <memory>
#include <utility>

/// The maximum size of a catalogue and of a file in the state directory, in bytes.
constexpr int mostBytesOfFile = 16 * 1024 * 1024;

/// The whole file; `excess` is the reason that refuses one which is too large.
QByteArray readFile(const QString &path, const QString &excess, const Place &place);

/// The state directory. The first simulator that writes into it excludes others until it ends.
class StateFiles
{
public:
    /// `directoryPath` may be empty: then every access is refused.
    explicit StateFiles(QString directoryPath)
        : directory(std::move(directoryPath))
    {
    }

    /// $XDG_STATE_HOME/movra-sim, else $HOME/.local/state/movra-sim; empty when neither is
    /// absolute.
    static QString defaultDirectory();

    /// Creates the directory if it is missing, locks it until the process ends, and removes what a
    /// killed simulator left.
    void prepare(const Place &place);
    /// The path of the file of this name.
    QString pathOf(const QString &name) const;

    /// The whole file.
    QByteArray read(const QString &name) const;
    /// Replaces or creates the file; after a crash either the old or the new one is there, whole.
    void write(const QString &name, const QByteArray &bytes);
    /// Replaces or creates the file by an empty one, which is open for writing.
    std::unique_ptr<QFile> create(const QString &name);

private:
    /// Refuses what cannot be a file of the directory; returns how other refusals begin.
    Place check(const char *verb, const QString &name) const;

    QString directory;
    int lock = -1; ///< the directory, open and locked
};
