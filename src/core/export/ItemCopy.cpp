// SPDX-License-Identifier: GPL-3.0-or-later

#include "ItemCopy.h"

#include "common/RuntimeError.h"
#include "export/NativePath.h"
#include "export/TempFile.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <vector>

#ifdef _WIN32
#include <filesystem>
#else
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace ItemCopy {

namespace {
struct CopyPair
{
    QByteArray from, to;
};
} // namespace

#ifndef _WIN32

namespace {

using NativePath::errorFor;
using NativePath::parentOf;
using NativePath::Separator;

// The bytes of `in` into `out`; errno of the first failure, or 0.
int pump(int in, int out)
{
    std::vector<char> buf(1 << 20);
    for (;;) {
        const ssize_t n = ::read(in, buf.data(), buf.size());
        if (n == 0)
            return 0;
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        for (ssize_t done = 0; done < n;) {
            const ssize_t w = ::write(out, buf.data() + done, size_t(n - done));
            if (w < 0) {
                if (errno == EINTR)
                    continue;
                return errno;
            }
            done += w;
        }
    }
}

mode_t currentUmask()
{
    static const mode_t mask = [] {
        const mode_t m = ::umask(0);
        ::umask(m);
        return m;
    }();
    return mask;
}

} // namespace

bool fileExists(const QByteArray& path)
{
    struct stat st;
    return ::lstat(path.constData(), &st) == 0 && !S_ISDIR(st.st_mode);
}

namespace {

bool sameFile(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// A link is copied as a link, never followed (as the walk lists it).
RuntimeError::Number copyLink(const QByteArray& source, const struct stat& st, const QByteArray& target)
{
    QByteArray link(qsizetype(st.st_size) + 1, '\0');
    const ssize_t n = ::readlink(source.constData(), link.data(), size_t(link.size()));
    if (n < 0)
        return errorFor(errno, source);
    link.truncate(n);
    QByteArray temp;
    const int probe = TempFile::create(parentOf(target), temp); // a unique name; the link takes its place
    if (probe < 0)
        return errorFor(errno, target);
    ::unlink(temp.constData());
    ::close(probe);
    int err = ::symlink(link.constData(), temp.constData()) == 0 ? 0 : errno;
    if (err == 0) {
        const timespec times[2] = {st.st_atim, st.st_mtim};
        ::utimensat(AT_FDCWD, temp.constData(), times, AT_SYMLINK_NOFOLLOW);
        if (::rename(temp.constData(), target.constData()) != 0) {
            err = errno;
            ::unlink(temp.constData());
        }
    }
    TempFile::forget(temp);
    return err == 0 ? RuntimeError::None : errorFor(err, target);
}

} // namespace

RuntimeError::Number copyFile(const QByteArray& source, const QByteArray& target)
{
    struct stat st, tst;
    if (::lstat(source.constData(), &st) != 0)
        return errorFor(errno, source);
    if (S_ISDIR(st.st_mode))
        return RuntimeError::PathFileAccess;
    // Copying a file onto itself (the collection folder listed, one of its files saved into it) has nothing to
    // do; writing a copy and renaming it over the file would change what the user has for no gain.
    const bool targetThere = ::lstat(target.constData(), &tst) == 0;
    if (targetThere && sameFile(st, tst))
        return RuntimeError::None;
    if (S_ISLNK(st.st_mode)) {
        // Nor is a link to the target copied over it: the target would become a link to itself, and the file it
        // was would be gone.
        struct stat linked;
        if (targetThere && ::stat(source.constData(), &linked) == 0 && sameFile(linked, tst))
            return RuntimeError::None;
        return copyLink(source, st, target);
    }
    if (!S_ISREG(st.st_mode))
        return RuntimeError::PathFileAccess; // a pipe, socket or device has no content to copy, and is never opened
    if (::stat(target.constData(), &tst) == 0 && S_ISDIR(tst.st_mode))
        return RuntimeError::PathFileAccess;

    // Non-blocking, and checked to be the file looked at above: a pipe put in its place meanwhile must not hang
    // the copy.
    const int in = ::open(source.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (in < 0)
        return errorFor(errno, source);
    struct stat opened;
    if (::fstat(in, &opened) != 0 || !S_ISREG(opened.st_mode) || !sameFile(st, opened)) {
        ::close(in);
        return RuntimeError::PathFileAccess;
    }
    // The old target stays as it is until the new copy is complete and renamed over it.
    QByteArray temp;
    const int out = TempFile::create(parentOf(target), temp);
    if (out < 0) {
        const int err = errno;
        ::close(in);
        return errorFor(err, target);
    }
    int err = pump(in, out);
    // Without the set-user-ID, set-group-ID and sticky bits, as a plain cp does: a copy made by root must not
    // hand another user's program root's rights. The modification time stays the source's: users compare copies
    // by date.
    ::fchmod(out, opened.st_mode & 0777 & ~currentUmask());
    const timespec times[2] = {opened.st_atim, opened.st_mtim};
    if (err == 0 && ::futimens(out, times) != 0)
        err = errno;
    ::close(in);
    if (::close(out) != 0 && err == 0)
        err = errno;
    if (err == 0 && ::rename(temp.constData(), target.constData()) != 0)
        err = errno;
    if (err != 0)
        ::unlink(temp.constData());
    TempFile::forget(temp);
    return err == 0 ? RuntimeError::None : errorFor(err, target);
}

// The files of a folder copy, source and target, with the target's folders made already.
static std::vector<CopyPair> planTree(const QByteArray& source, const QByteArray& destination, const TreeCallbacks& cb,
                                      TreeOutcome& outcome, std::vector<CopyPair>& folders)
{
    using Pair = CopyPair;
    // First the folders and files to copy, so the progress window can show how far it has got.
    std::vector<Pair> files;
    QByteArray base = source;
    while (base.size() > 1 && base.endsWith(Separator))
        base.chop(1);
    const QByteArray name = base.mid(base.lastIndexOf(Separator) + 1);
    std::vector<Pair> pending{{base, destination + Separator + name}};
    while (!pending.empty()) {
        Pair dir = std::move(pending.back());
        pending.pop_back();
        DIR* d = ::opendir(dir.from.constData());
        if (!d) {
            // Nothing is made for a folder that cannot be read, so a source that is not there leaves no trace.
            if (cb.problem)
                cb.problem(dir.from, errorFor(errno, dir.from));
            ++outcome.skipped;
            continue;
        }
        folders.push_back(dir);
        while (const dirent* e = ::readdir(d)) {
            const char* n = e->d_name;
            if (n[0] == '.' && (n[1] == 0 || (n[1] == '.' && n[2] == 0)))
                continue;
            Pair child{dir.from + Separator + n, dir.to + Separator + n};
            struct stat st;
            if (::lstat(child.from.constData(), &st) != 0)
                continue; // gone meanwhile
            if (S_ISDIR(st.st_mode))
                pending.push_back(std::move(child));
            else
                files.push_back(std::move(child));
        }
        ::closedir(d);
    }

    for (const Pair& dir : folders) {
        if (::mkdir(dir.to.constData(), 0777) != 0 && errno != EEXIST && cb.problem)
            cb.problem(dir.to, errorFor(errno, dir.to));
    }
    return files;
}

// Once their files are in, the copied folders take their sources' modification times.
static void keepFolderTimes(const std::vector<CopyPair>& folders)
{
    for (auto it = folders.rbegin(); it != folders.rend(); ++it) {
        struct stat st;
        if (::stat(it->from.constData(), &st) == 0) {
            const timespec times[2] = {st.st_atim, st.st_mtim};
            ::utimensat(AT_FDCWD, it->to.constData(), times, 0);
        }
    }
}

#else

// Windows: the same contract through Qt's file classes.
bool fileExists(const QByteArray& path)
{
    const QFileInfo info(QString::fromUtf8(path));
    return info.exists() && !info.isDir();
}

RuntimeError::Number copyFile(const QByteArray& source, const QByteArray& target)
{
    const QString from = QString::fromUtf8(source), to = QString::fromUtf8(target);
    if (!QFileInfo::exists(from))
        return RuntimeError::FileNotFound;
    if (!QFileInfo(QFileInfo(to).path()).isDir())
        return RuntimeError::PathNotFound;
    const QString temp = to + QStringLiteral(".quillary-copy");
    QFile::remove(temp);
    if (!QFile::copy(from, temp))
        return RuntimeError::PathFileAccess;
    std::error_code ec; // replaces the target in one step; the old one stays until then
    std::filesystem::rename(std::filesystem::path(temp.toStdWString()), std::filesystem::path(to.toStdWString()), ec);
    if (ec)
        QFile::remove(temp);
    return ec ? RuntimeError::PathFileAccess : RuntimeError::None;
}

// The files of a folder copy, source and target, with the target's folders made already.
static std::vector<CopyPair> planTree(const QByteArray& source, const QByteArray& destination, const TreeCallbacks& cb,
                                      TreeOutcome& outcome, std::vector<CopyPair>&)
{
    const QDir src(QString::fromUtf8(source));
    const QString root = QString::fromUtf8(destination) + QLatin1Char('/') + src.dirName();
    if (!src.exists()) {
        if (cb.problem)
            cb.problem(source, RuntimeError::PathNotFound);
        ++outcome.skipped;
        return {};
    }
    std::vector<CopyPair> files;
    QDirIterator it(src.path(), QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    QDir().mkpath(root);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString rel = src.relativeFilePath(path);
        if (it.fileInfo().isDir() && !it.fileInfo().isSymLink())
            QDir().mkpath(root + QLatin1Char('/') + rel);
        else
            files.push_back({(src.path() + QLatin1Char('/') + rel).toUtf8(), (root + QLatin1Char('/') + rel).toUtf8()});
    }
    return files;
}

static void keepFolderTimes(const std::vector<CopyPair>&) {}

#endif

TreeOutcome copyTree(const QByteArray& source, const QByteArray& destination, const TreeCallbacks& cb)
{
    TreeOutcome outcome;
    std::vector<CopyPair> folders;
    const std::vector<CopyPair> files = planTree(source, destination, cb, outcome, folders);
    bool replaceAll = false;
    const qint64 total = qint64(files.size());
    for (qint64 k = 0; k < total; ++k) {
        const CopyPair& f = files[size_t(k)];
        if (cb.progress && !cb.progress(k, total, f.from)) {
            outcome.cancelled = true;
            break;
        }
        if (fileExists(f.to) && !replaceAll) {
            const Reply reply = cb.confirmReplace ? cb.confirmReplace(f.to) : Reply::Yes;
            if (reply == Reply::Cancel) {
                outcome.cancelled = true;
                break;
            }
            if (reply == Reply::No) {
                ++outcome.skipped;
                continue;
            }
            replaceAll = reply == Reply::YesToAll;
        }
        if (const RuntimeError::Number error = copyFile(f.from, f.to)) {
            ++outcome.skipped;
            if (cb.problem)
                cb.problem(f.from, error);
            continue;
        }
        ++outcome.copied;
    }
    keepFolderTimes(folders);
    if (cb.progress && !outcome.cancelled)
        cb.progress(total, total, {});
    return outcome;
}

} // namespace ItemCopy
