// SPDX-License-Identifier: GPL-3.0-or-later

#include "FileOps.h"

#include "common/RuntimeError.h"
#include "export/NativePath.h"
#include "export/TempFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <cerrno>

#ifdef _WIN32
#include <filesystem>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

RuntimeError::Number FileOps::writeFile(const QByteArray& path, const std::function<bool(Output&)>& produce)
{
    Pending pending = prepare(path, produce);
    return pending.error != RuntimeError::None ? pending.error : commit(pending);
}

#ifndef _WIN32

namespace {

using NativePath::errorFor;
using NativePath::parentOf;
using NativePath::Separator;

// Buffered writes to a descriptor; remembers the first failure.
class FdOutput : public FileOps::Output
{
public:
    explicit FdOutput(int fd) : m_fd(fd) { m_buffer.reserve(Capacity); }
    bool write(const char* data, qint64 size) override
    {
        if (m_error)
            return false;
        if (m_buffer.size() + size > Capacity && !flush())
            return false;
        if (size >= Capacity)
            return put(data, size);
        m_buffer.append(data, size);
        return true;
    }
    bool flush()
    {
        if (m_error)
            return false;
        const bool ok = put(m_buffer.constData(), m_buffer.size());
        m_buffer.clear();
        return ok;
    }
    int error() const { return m_error; }

private:
    static constexpr qint64 Capacity = 1 << 20;
    bool put(const char* data, qint64 size)
    {
        while (size > 0) {
            const ssize_t n = ::write(m_fd, data, size_t(size));
            if (n < 0) {
                if (errno == EINTR)
                    continue;
                m_error = errno;
                return false;
            }
            data += n;
            size -= n;
        }
        return true;
    }
    int m_fd;
    int m_error = 0;
    QByteArray m_buffer;
};

mode_t creationMode()
{
    static const mode_t mode = [] {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        return mode_t(0666 & ~mask);
    }();
    return mode;
}

} // namespace

RuntimeError::Number SystemFileOps::ensureDirectory(const QByteArray& path)
{
    struct stat st;
    if (::stat((path + Separator).constData(), &st) == 0)
        return RuntimeError::None;
    if (::mkdir(path.constData(), 0777) == 0)
        return RuntimeError::None;
    return errorFor(errno, path);
}

RuntimeError::Number SystemFileOps::probe(const QByteArray& path)
{
    const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return errorFor(errno, path);
    struct stat st;
    const bool dir = ::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode);
    ::close(fd);
    return dir ? RuntimeError::PathFileAccess : RuntimeError::None; // a folder cannot be opened as a file
}

FileOps::Pending SystemFileOps::prepare(const QByteArray& path, const std::function<bool(Output&)>& produce)
{
    Pending pending{path, {}, RuntimeError::None};
    struct stat st;
    if (::stat(path.constData(), &st) == 0) {
        // What opening the file for output would refuse: a folder in the way, or a file we may not write.
        if (S_ISDIR(st.st_mode) || ::access(path.constData(), W_OK) != 0) {
            pending.error = RuntimeError::PathFileAccess;
            return pending;
        }
    }
    // A short name of our own: the target's name plus a suffix could pass the file system's name limit. The
    // descriptor stays open, and the file locked, until the file is put in place or thrown away.
    QByteArray temp;
    const int fd = TempFile::create(parentOf(path), temp);
    if (fd < 0) {
        pending.error = errorFor(errno, path);
        return pending;
    }
    ::fchmod(fd, creationMode());
    FdOutput out(fd);
    pending.temp = temp;
    pending.fd = fd;
    if (!(produce(out) && out.flush())) {
        discard(pending);
        pending.error = out.error() ? errorFor(out.error(), path) : RuntimeError::DeviceIO;
    }
    return pending;
}

RuntimeError::Number SystemFileOps::commit(Pending& pending)
{
    if (pending.error != RuntimeError::None)
        return pending.error;
    int err = 0;
    if (::close(pending.fd) != 0)
        err = errno;
    pending.fd = -1;
    if (err == 0 && ::rename(pending.temp.constData(), pending.path.constData()) != 0)
        err = errno;
    if (err != 0) {
        discard(pending);
        return errorFor(err, pending.path);
    }
    TempFile::forget(pending.temp);
    pending.temp.clear();
    return RuntimeError::None;
}

void SystemFileOps::discard(Pending& pending)
{
    if (pending.fd >= 0)
        ::close(pending.fd);
    pending.fd = -1;
    if (!pending.temp.isEmpty()) {
        ::unlink(pending.temp.constData());
        TempFile::forget(pending.temp);
    }
    pending.temp.clear();
}

void SystemFileOps::removeStale(const QByteArray& folder)
{
    TempFile::removeStale(folder);
}

#else

// Windows: the same contract through Qt's file classes (QSaveFile replaces the target only on commit).
namespace {

QString toPath(const QByteArray& path)
{
    return QString::fromUtf8(path);
}

class DeviceOutput : public FileOps::Output
{
public:
    explicit DeviceOutput(QIODevice& d) : m_device(d) {}
    bool write(const char* data, qint64 size) override { return m_device.write(data, size) == size; }

private:
    QIODevice& m_device;
};

RuntimeError::Number fromFileError(QFileDevice::FileError e, const QString& path)
{
    switch (e) {
    case QFileDevice::NoError:
        return RuntimeError::None;
    case QFileDevice::PermissionsError:
        return RuntimeError::PathFileAccess;
    case QFileDevice::ResourceError:
        return RuntimeError::DiskFull;
    case QFileDevice::OpenError:
        if (!QFileInfo(QFileInfo(path).path()).isDir())
            return RuntimeError::PathNotFound;
        return QFileInfo::exists(path) ? RuntimeError::PathFileAccess : RuntimeError::FileNotFound;
    default:
        return RuntimeError::DeviceIO;
    }
}

} // namespace

RuntimeError::Number SystemFileOps::ensureDirectory(const QByteArray& path)
{
    const QString p = toPath(path);
    if (QFileInfo::exists(p) || QDir().mkdir(p))
        return RuntimeError::None;
    return QFileInfo(QFileInfo(p).path()).isDir() ? RuntimeError::PathFileAccess : RuntimeError::PathNotFound;
}

RuntimeError::Number SystemFileOps::probe(const QByteArray& path)
{
    const QString p = toPath(path);
    if (QFileInfo(p).isDir())
        return RuntimeError::PathFileAccess;
    QFile f(p);
    if (f.open(QIODevice::ReadOnly))
        return RuntimeError::None;
    return fromFileError(f.error(), p);
}

FileOps::Pending SystemFileOps::prepare(const QByteArray& path, const std::function<bool(Output&)>& produce)
{
    Pending pending{path, {}, RuntimeError::None};
    const QString p = toPath(path);
    if (QFileInfo(p).isDir()) {
        pending.error = RuntimeError::PathFileAccess;
        return pending;
    }
    QTemporaryFile f(QFileInfo(p).path() + QStringLiteral("/.quillary-XXXXXX"));
    f.setAutoRemove(false);
    if (!f.open()) {
        pending.error = fromFileError(f.error(), p);
        return pending;
    }
    DeviceOutput out(f);
    const bool ok = produce(out) && f.flush();
    const QFileDevice::FileError e = f.error();
    f.close();
    if (!ok) {
        QFile::remove(f.fileName());
        pending.error = e == QFileDevice::NoError ? RuntimeError::DeviceIO : fromFileError(e, p);
        return pending;
    }
    pending.temp = QFile::encodeName(f.fileName());
    return pending;
}

RuntimeError::Number SystemFileOps::commit(Pending& pending)
{
    if (pending.error != RuntimeError::None)
        return pending.error;
    std::error_code ec;
    std::filesystem::rename(std::filesystem::u8path(pending.temp.toStdString()),
                            std::filesystem::u8path(pending.path.toStdString()), ec); // replaces the target
    if (ec) {
        discard(pending);
        return RuntimeError::PathFileAccess;
    }
    pending.temp.clear();
    return RuntimeError::None;
}

void SystemFileOps::discard(Pending& pending)
{
    if (!pending.temp.isEmpty())
        QFile::remove(QFile::decodeName(pending.temp));
    pending.temp.clear();
}

#endif
