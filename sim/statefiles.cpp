// SPDX-License-Identifier: MIT
#include "sim/statefiles.h"

#include "sim/text.h"

#include <QDir>
#include <QLatin1String>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

/// A file descriptor that closes itself.
class Descriptor
{
public:
    explicit Descriptor(int opened)
        : number(opened)
    {
    }
    ~Descriptor()
    {
        if (number >= 0) {
            ::close(number);
        }
    }
    Q_DISABLE_COPY(Descriptor)

    bool isOpen() const { return number >= 0; }
    int get() const { return number; }
    int release() { return std::exchange(number, -1); }

private:
    int number;
};

QString noDirectory()
{
    return QStringLiteral("neither XDG_STATE_HOME nor HOME says where");
}

QString systemReason()
{
    return qt_error_string(errno);
}

Refusal cannot(const char *verb, const QString &path, const QString &reason)
{
    return fileProblem(
        QStringLiteral("Cannot %1 %2: %3.").arg(QLatin1String(verb), quoted(path), reason));
}

std::optional<Refusal> nameRefusal(const QString &name)
{
    constexpr int mostNameBytes = 200;
    QString reason;
    if (name.isEmpty()) {
        reason = QStringLiteral("it is empty");
    } else if (name == QLatin1String(".") || name == QLatin1String("..")) {
        reason = QStringLiteral("it stands for a directory");
    } else if (name.contains(QLatin1Char('/'))) {
        reason = QStringLiteral("it holds a slash");
    } else if (std::any_of(name.begin(), name.end(), [](QChar character) {
                   return character.category() == QChar::Other_Control;
               })) {
        reason = QStringLiteral("it holds a control character");
    } else if (name.toUtf8().size() > mostNameBytes) {
        reason = QStringLiteral("it is longer than %1 bytes").arg(mostNameBytes);
    } else {
        return {};
    }
    return badName(
        QStringLiteral("%1 cannot be the name of a file: %2.").arg(quoted(name), reason));
}

Descriptor openDirectory(const QString &path)
{
    return Descriptor(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

/// Why the name cannot be given to a new file: something that is no regular file has it already.
QString occupied(const Descriptor &directory, const QByteArray &name)
{
    struct stat info {
    };
    if (::fstatat(directory.get(), name.constData(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
        return errno == ENOENT ? QString() : systemReason();
    }
    return S_ISREG(info.st_mode) ? QString() : QStringLiteral("it is not a regular file");
}

Descriptor createNew(const Descriptor &directory, const QByteArray &name)
{
    constexpr mode_t readableByAll = 0666;
    return Descriptor(::openat(directory.get(), name.constData(),
                               O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                               readableByAll));
}

bool writeAll(const Descriptor &file, const QByteArray &bytes)
{
    ssize_t written = 0;
    for (ssize_t done = 0; done < bytes.size(); done += written) {
        do {
            written = ::write(file.get(), bytes.constData() + done,
                              static_cast<size_t>(bytes.size() - done));
        } while (written < 0 && errno == EINTR);
        if (written < 0) {
            return false;
        }
    }
    return ::fsync(file.get()) == 0;
}

} // namespace

StateFiles::StateFiles(QString directoryPath)
    : directory(std::move(directoryPath))
{
}

QString StateFiles::defaultDirectory()
{
    const QString stateHome = QFile::decodeName(qgetenv("XDG_STATE_HOME"));
    if (stateHome.startsWith(QLatin1Char('/'))) {
        return stateHome + QLatin1String("/movra-sim");
    }
    const QString home = QFile::decodeName(qgetenv("HOME"));
    if (home.startsWith(QLatin1Char('/'))) {
        return home + QLatin1String("/.local/state/movra-sim");
    }
    return {};
}

QString StateFiles::prepare() const
{
    if (directory.isEmpty()) {
        return noDirectory();
    }
    if (!QDir().mkpath(directory)) {
        return QStringLiteral("%1 is no directory and cannot be created").arg(quoted(directory));
    }
    if (::access(QFile::encodeName(directory).constData(), R_OK | W_OK | X_OK) != 0) {
        return quoted(directory) + QLatin1String(": ") + systemReason();
    }
    return {};
}

QString StateFiles::pathOf(const QString &name) const
{
    return directory.isEmpty() ? name : directory + QLatin1Char('/') + name;
}

StateRead StateFiles::read(const QString &name) const
{
    if (auto refusal = nameRefusal(name)) {
        return { {}, refusal };
    }
    const auto refused = [this, &name](const QString &reason) {
        return StateRead { {}, cannot("read", pathOf(name), reason) };
    };
    if (directory.isEmpty()) {
        return refused(noDirectory());
    }
    const Descriptor folder = openDirectory(directory);
    // A pipe without a writer would hold up a blocking open.
    const Descriptor file(folder.isOpen() ? ::openat(folder.get(), name.toUtf8().constData(),
                                                     O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC)
                                          : -1);
    struct stat info {
    };
    if (!file.isOpen() || ::fstat(file.get(), &info) != 0) {
        return refused(errno == ELOOP ? QStringLiteral("it is not a regular file")
                                      : systemReason());
    }
    if (!S_ISREG(info.st_mode)) {
        return refused(QStringLiteral("it is not a regular file"));
    }
    QFile contents;
    contents.open(file.get(), QIODevice::ReadOnly);
    const QByteArray bytes = contents.read(mostBytes + 1);
    if (contents.error() != QFileDevice::NoError) {
        return refused(contents.errorString());
    }
    if (bytes.size() > mostBytes) {
        return refused(QStringLiteral("it is larger than 16 MiB"));
    }
    return { bytes, {} };
}

std::optional<Refusal> StateFiles::write(const QString &name, const QByteArray &bytes) const
{
    if (auto refusal = nameRefusal(name)) {
        return refusal;
    }
    const auto refused = [this, &name](const QString &reason) {
        return cannot("write", pathOf(name), reason);
    };
    if (bytes.size() > mostBytes) {
        return refused(QStringLiteral("it would be larger than 16 MiB"));
    }
    const QString unusable = prepare();
    if (!unusable.isEmpty()) {
        return refused(unusable);
    }
    const Descriptor folder = openDirectory(directory);
    const QByteArray finalName = name.toUtf8();
    const QString reason = occupied(folder, finalName);
    if (!reason.isEmpty()) {
        return refused(reason);
    }
    // One of this process's own: another simulator may be at work in the same directory.
    const QByteArray newName = ".movra-sim." + QByteArray::number(::getpid()) + ".new";
    ::unlinkat(folder.get(), newName.constData(), 0);
    const Descriptor file = createNew(folder, newName);
    if (!file.isOpen() || !writeAll(file, bytes)
        || ::renameat(folder.get(), newName.constData(), folder.get(), finalName.constData())
            != 0) {
        const QString whyNot = systemReason();
        ::unlinkat(folder.get(), newName.constData(), 0);
        return refused(whyNot);
    }
    return {};
}

std::optional<Refusal> StateFiles::create(const QString &name, QFile &file) const
{
    if (auto refusal = nameRefusal(name)) {
        return refusal;
    }
    const auto refused = [this, &name](const QString &reason) {
        return cannot("write", pathOf(name), reason);
    };
    const QString unusable = prepare();
    if (!unusable.isEmpty()) {
        return refused(unusable);
    }
    const Descriptor folder = openDirectory(directory);
    const QByteArray finalName = name.toUtf8();
    const QString reason = occupied(folder, finalName);
    if (!reason.isEmpty()) {
        return refused(reason);
    }
    // The old file goes first: emptying it would also empty it under every other name it has.
    ::unlinkat(folder.get(), finalName.constData(), 0);
    Descriptor created = createNew(folder, finalName);
    if (!created.isOpen()) {
        return refused(systemReason());
    }
    file.open(created.release(), QIODevice::WriteOnly | QIODevice::Unbuffered,
              QFileDevice::AutoCloseHandle);
    return {};
}
