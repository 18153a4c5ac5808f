// SPDX-License-Identifier: MIT
#include "sim/statefiles.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace
{

/// Begins the names of files that are being written; clients cannot use it.
const QString ownPrefix = ".movra-sim."_q;

void checkName(const QString &name)
{
    constexpr int mostNameBytes = 200;
    const std::pair<bool, QString> rules[] = {
        { name.isEmpty(), "it is empty"_q },
        { name == "."_q || name == ".."_q, "it names a directory"_q },
        { name.contains(QLatin1Char('/')), "it holds a slash"_q },
        { std::any_of(name.begin(), name.end(), isControl), "it holds a control character"_q },
        { name.startsWith(ownPrefix),
          "names that begin with %1 are the simulator's own"_q.arg(ownPrefix) },
        { name.toUtf8().size() > mostNameBytes, "it is longer than %1 bytes"_q.arg(mostNameBytes) },
    };
    for (const auto &[isBroken, reason] : rules) {
        if (isBroken) {
            throw Refusal { "BadName"_q,
                            "%1 cannot be the name of a file: %2."_q.arg(quoted(name), reason) };
        }
    }
}

} // namespace

QByteArray readFile(const QString &path, const QString &excess, const Place &place)
{
    QFile file(path);
    const bool isOpen = file.open(QIODevice::ReadOnly);
    QByteArray bytes = isOpen ? file.read(mostBytesOfFile + 1) : QByteArray();
    if (file.error() != QFileDevice::NoError) {
        throw place.refusal(file.errorString());
    }
    if (bytes.size() > mostBytesOfFile) {
        throw place.refusal(excess);
    }
    return bytes;
}

QString StateFiles::defaultDirectory()
{
    const QString state = QFile::decodeName(qgetenv("XDG_STATE_HOME"));
    const QString home = QFile::decodeName(qgetenv("HOME"));
    if (state.startsWith(QLatin1Char('/'))) {
        return state + "/movra-sim"_q;
    }
    return home.startsWith(QLatin1Char('/')) ? home + "/.local/state/movra-sim"_q : QString();
}

void StateFiles::prepare(const Place &place)
{
    if (!QDir().mkpath(directory)) {
        throw place.refusal("%1 is no directory and cannot be created"_q.arg(quoted(directory)));
    }
    const QByteArray path = QFile::encodeName(directory);
    if (access(path.constData(), R_OK | W_OK | X_OK) != 0) {
        throw place.refusal(quoted(directory) + ": "_q + qt_error_string(errno));
    }
    if (lock < 0) {
        // The directory itself is locked, so no lock file is needed in it.
        lock = open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (lock < 0 || flock(lock, LOCK_EX | LOCK_NB) != 0) {
            const QString reason = errno == EWOULDBLOCK
                ? "another simulator uses %1"_q.arg(quoted(directory))
                : quoted(directory) + ": "_q + qt_error_string(errno);
            close(std::exchange(lock, -1));
            throw place.refusal(reason);
        }
    }
    QDir folder(directory);
    const QStringList leftovers = folder.entryList({ ownPrefix + QLatin1Char('*') },
                                                   QDir::Files | QDir::Hidden | QDir::System);
    for (const QString &name : leftovers) {
        folder.remove(name);
    }
}

QString StateFiles::pathOf(const QString &name) const
{
    return directory.isEmpty() ? name : directory + QLatin1Char('/') + name;
}

Place StateFiles::check(const char *verb, const QString &name) const
{
    checkName(name);
    const QString path = quoted(pathOf(name));
    Place place { "File"_q, {}, "Cannot %1 %2"_q.arg(QLatin1String(verb), path), "."_q };
    if (directory.isEmpty()) {
        throw place.refusal("neither XDG_STATE_HOME nor HOME says where"_q);
    }
    const QFileInfo info(pathOf(name));
    if (info.isSymLink() || (info.exists() && !info.isFile())) {
        throw place.refusal("it is not a regular file"_q);
    }
    return place;
}

QByteArray StateFiles::read(const QString &name) const
{
    return readFile(pathOf(name), "it is larger than 16 MiB"_q, check("read", name));
}

void StateFiles::write(const QString &name, const QByteArray &bytes)
{
    const Place place = check("write", name);
    if (bytes.size() > mostBytesOfFile) {
        throw place.refusal("it would be larger than 16 MiB"_q);
    }
    prepare(place);
    // QSaveFile would choose a name that begins like the file's own; the leftover of a killed
    // simulator must be recognised by its name.
    const QString newPath = pathOf(ownPrefix + "new"_q);
    QSaveFile file(newPath);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        throw place.refusal(file.errorString());
    }
    const QByteArray target = QFile::encodeName(pathOf(name));
    if (std::rename(QFile::encodeName(newPath).constData(), target.constData()) != 0) {
        throw place.refusal(qt_error_string(errno));
    }
}

std::unique_ptr<QFile> StateFiles::create(const QString &name)
{
    const Place place = check("write", name);
    prepare(place);
    auto file = std::make_unique<QFile>(pathOf(name));
    // No line of a debug log begins with this.
    if (file->open(QIODevice::ReadOnly) && file->peek(1) == "{") {
        throw place.refusal("it is a saved configuration"_q);
    }
    file->close();
    // The old file is removed first: truncating it would also truncate its hard links.
    file->remove();
    if (!file->open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)) {
        throw place.refusal(file->errorString());
    }
    return file;
}
