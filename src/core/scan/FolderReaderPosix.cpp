// SPDX-License-Identifier: GPL-3.0-or-later

#include "FolderReader.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <fstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#ifdef __linux__
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#endif

namespace {

// Beyond this length a folder is opened relative to its parent instead of by path, so trees whose paths pass
// PATH_MAX are still read.
constexpr std::size_t LongPath = 3000;
// The longest run of names opened in one call when a deep folder is reached again; below PATH_MAX.
constexpr std::size_t ChunkBytes = 3800;

const int DirFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
// A folder on the way to another is only searched, never read: opened for nothing more, it needs no more
// permission than the system's own walk along a path does.
#if defined(O_PATH)
const int PassFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
#elif defined(O_SEARCH)
const int PassFlags = O_SEARCH | O_DIRECTORY | O_CLOEXEC;
#else
const int PassFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
#endif
// How a descriptor names its own folder to the *at calls.
#ifdef AT_EMPTY_PATH
const char* const Self = "";
const int SelfFlags = AT_EMPTY_PATH;
#else
const char* const Self = ".";
const int SelfFlags = 0;
#endif

#ifdef __linux__
struct Dirent64
{
    std::uint64_t d_ino;
    std::int64_t d_off;
    unsigned short d_reclen;
    unsigned char d_type;
    char d_name[1];
};

// Mount points strictly below `startPath`, from the kernel's table (octal escapes as in "/media/my\040disk").
void loadMountPoints(const QByteArray& startPath, FolderReader::Start& start)
{
    std::ifstream in("/proc/self/mountinfo");
    if (!in)
        return;
    start.mountsBelow = false;
    // The table names mount points by their real paths; the start folder may be reached through a link.
    const QByteArray real = FolderReader::absoluteFolder(startPath);
    std::string prefix = (real.isEmpty() ? startPath : real).toStdString();
    if (prefix.empty() || prefix.back() != FolderReader::Separator)
        prefix.push_back(FolderReader::Separator);
    std::string line;
    while (std::getline(in, line)) {
        // id parent major:minor root mount-point ...
        std::size_t pos = 0;
        for (int field = 0; field < 4 && pos != std::string::npos; ++field)
            pos = line.find(' ', pos + (field ? 1 : 0));
        if (pos == std::string::npos)
            continue;
        const std::size_t end = line.find(' ', pos + 1);
        const std::string raw = line.substr(pos + 1, end - pos - 1);
        std::string point;
        for (std::size_t i = 0; i < raw.size(); ++i) {
            if (raw[i] == '\\' && i + 3 < raw.size()) {
                point.push_back(char((raw[i + 1] - '0') * 64 + (raw[i + 2] - '0') * 8 + (raw[i + 3] - '0')));
                i += 3;
            } else {
                point.push_back(raw[i]);
            }
        }
        if (point.size() <= prefix.size() || point.compare(0, prefix.size(), prefix) != 0)
            continue;
        start.mountsBelow = true;
        struct stat st;
        if (point.size() < PATH_MAX) {
            // stat, not open: a mount point waiting to be mounted on demand stays as it is.
            if (::stat(point.c_str(), &st) == 0)
                start.mountRoots.emplace(std::uint64_t(st.st_dev), std::uint64_t(st.st_ino));
        } else if (const int fd = FolderReader::openPath(point.c_str(), PassFlags); fd >= 0) {
            if (::fstat(fd, &st) == 0)
                start.mountRoots.emplace(std::uint64_t(st.st_dev), std::uint64_t(st.st_ino));
            ::close(fd);
        }
    }
}

long openDescriptors()
{
    DIR* dir = ::opendir("/proc/self/fd");
    if (!dir)
        return 32;
    long n = 0;
    while (::readdir(dir))
        ++n;
    ::closedir(dir);
    return n - 3; // ".", ".." and the one opendir holds
}
#else
void loadMountPoints(const QByteArray&, FolderReader::Start&) {}

long openDescriptors()
{
    return 32;
}
#endif

bool isDotOrDotDot(const char* name)
{
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

// Calls `take(name, d_type)` for each entry but "." and ".."; returns 0, or the error that stopped the listing.
template <typename Take> int forEachEntry(int dfd, [[maybe_unused]] std::vector<char>& buffer, Take&& take)
{
#ifdef __linux__
    // getdents64 straight on our descriptor: no second descriptor and no DIR stream to set up per folder.
    for (;;) {
        const long n = ::syscall(SYS_getdents64, dfd, buffer.data(), buffer.size());
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        if (n == 0)
            return 0;
        for (long off = 0; off < n;) {
            const auto* d = reinterpret_cast<const Dirent64*>(buffer.data() + off);
            if (!isDotOrDotDot(d->d_name))
                take(d->d_name, d->d_type);
            off += d->d_reclen;
        }
    }
#else
    const int listFd = ::dup(dfd); // fdopendir takes its descriptor; ours stays for stat and openat
    DIR* dir = listFd >= 0 ? ::fdopendir(listFd) : nullptr;
    if (!dir) {
        const int error = errno;
        if (listFd >= 0)
            ::close(listFd);
        return error;
    }
    while (const dirent* d = ::readdir(dir))
        if (!isDotOrDotDot(d->d_name))
            take(d->d_name, d->d_type);
    ::closedir(dir);
    return 0;
#endif
}

// What the walk needs to know of one entry.
struct EntryInfo
{
    bool dir;
    bool hasMountId;
    std::uint64_t size, device, inode, mountId;
    std::int64_t mtime; // seconds since 1970 UTC
};

// `atFlags`: AT_SYMLINK_NOFOLLOW for an entry below the start folder, which is never followed if a link.
bool statEntry(int dfd, const char* name, bool wantMountId, EntryInfo& info, int atFlags = AT_SYMLINK_NOFOLLOW)
{
#ifdef __linux__
    struct statx sx;
    const unsigned mask = STATX_TYPE | STATX_SIZE | STATX_INO | STATX_MTIME | (wantMountId ? STATX_MNT_ID : 0);
    if (::statx(dfd, name, atFlags | AT_NO_AUTOMOUNT, mask, &sx) == 0) {
        info.dir = S_ISDIR(sx.stx_mode);
        info.size = sx.stx_size;
        info.mtime = std::int64_t(sx.stx_mtime.tv_sec);
        info.device = std::uint64_t(makedev(sx.stx_dev_major, sx.stx_dev_minor));
        info.inode = sx.stx_ino;
        info.hasMountId = (sx.stx_mask & STATX_MNT_ID) != 0;
        info.mountId = sx.stx_mnt_id;
        return true;
    }
    if (errno != ENOSYS)
        return false;
#endif
    struct stat st;
    if (::fstatat(dfd, name, &st, atFlags) != 0)
        return false;
    info.dir = S_ISDIR(st.st_mode);
    info.size = std::uint64_t(st.st_size);
    info.mtime = std::int64_t(st.st_mtime);
    info.device = std::uint64_t(st.st_dev);
    info.inode = std::uint64_t(st.st_ino);
    info.hasMountId = false;
    return true;
}

DirState failedState(int error)
{
    return (error == ENOENT || error == ENOTDIR || error == ELOOP) ? DirState::Vanished : DirState::Unreadable;
}

// Descriptors may run out for a moment when the rest of the program holds many: wait a little for them to come
// back rather than give a folder up.
template <typename Open> int openPatiently(Open&& open)
{
    for (int tries = 0;; ++tries) {
        const int fd = open();
        if (fd >= 0 || (errno != EMFILE && errno != ENFILE) || tries == 2000)
            return fd;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

// Opens `relative`, a run of names below `dfd`, without following a link or leaving the file system.
int openBelow(int dfd, std::string& relative)
{
#if defined(__linux__) && defined(SYS_openat2)
    open_how how{};
    how.flags = std::uint64_t(DirFlags);
    how.resolve = RESOLVE_NO_SYMLINKS | RESOLVE_NO_XDEV;
    const int fd = openPatiently([&] { return int(::syscall(SYS_openat2, dfd, relative.c_str(), &how, sizeof how)); });
    if (fd >= 0 || errno != ENOSYS)
        return fd;
#endif
    // One name at a time, each refusing a link.
    int at = dfd;
    for (std::size_t begin = 0; begin < relative.size();) {
        std::size_t end = relative.find(FolderReader::Separator, begin);
        if (end == std::string::npos)
            end = relative.size();
        if (end < relative.size())
            relative[end] = '\0';
        const int next = openPatiently([&] { return ::openat(at, relative.c_str() + begin, DirFlags); });
        const int error = errno;
        if (end < relative.size())
            relative[end] = FolderReader::Separator;
        if (at != dfd)
            ::close(at);
        if (next < 0) {
            errno = error;
            return -1;
        }
        at = next;
        begin = end + 1;
    }
    return at;
}

// The name, in the folder open as `dfd`, of the folder whose device and inode are `self`'s; empty when none is.
// Every folder is looked at, not only one whose listed inode matches: where a file system is mounted on a folder,
// the listing gives the inode beneath it.
std::string nameIn(int dfd, const struct stat& self)
{
    std::string found;
    const int fd = ::openat(dfd, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return found;
    std::vector<char> buffer(16 * 1024);
    forEachEntry(fd, buffer, [&](const char* name, unsigned char type) {
        struct stat st;
        if (found.empty() && (type == DT_DIR || type == DT_UNKNOWN) &&
            ::fstatat(fd, name, &st, AT_SYMLINK_NOFOLLOW) == 0 && st.st_dev == self.st_dev && st.st_ino == self.st_ino)
            found = name;
    });
    ::close(fd);
    return found;
}

// The names of `path` between its separators, pushed so that the first is at the back of `names`.
void pushNames(std::string_view path, std::vector<std::string>& names)
{
    std::size_t end = path.size();
    for (std::size_t cut = path.rfind(FolderReader::Separator); cut != std::string_view::npos;
         cut = cut ? path.rfind(FolderReader::Separator, cut - 1) : std::string_view::npos) {
        names.emplace_back(path.substr(cut + 1, end - cut - 1));
        end = cut;
    }
    names.emplace_back(path.substr(0, end));
}

// Replaces the descriptor `at` with `next`; false, leaving `at` as it was, when `next` failed.
bool moveTo(int& at, int next)
{
    if (next < 0)
        return false;
    ::close(at);
    at = next;
    return true;
}

} // namespace

QByteArray FolderReader::currentFolder()
{
    // glibc's getcwd names a current folder past the system's own limit (a page) by itself.
    if (char* cwd = ::getcwd(nullptr, 0)) {
        QByteArray path(cwd);
        std::free(cwd);
        return path;
    }
    if (errno != ENAMETOOLONG && errno != ERANGE)
        return {};
    // Other C libraries stop there. Then the path is found by climbing "..": each folder is named by the entry of
    // its parent with its device and inode, up to the root, which is its own parent. Unlike the system's own
    // answer this needs each folder above to be readable, so it is the last resort.
    std::vector<std::string> names;
    int at = ::open(".", PassFlags);
    int error = 0;
    while (at >= 0) {
        struct stat self, up;
        if (::fstat(at, &self) != 0 || !moveTo(at, ::openat(at, "..", PassFlags)) || ::fstat(at, &up) != 0) {
            error = errno;
            break;
        }
        if (self.st_dev == up.st_dev && self.st_ino == up.st_ino)
            break;
        names.push_back(nameIn(at, self));
        if (names.back().empty()) {
            error = ENOENT; // moved or removed while it was named
            break;
        }
    }
    if (at < 0)
        return {};
    ::close(at);
    if (error) {
        errno = error;
        return {};
    }
    QByteArray path;
    for (auto it = names.rbegin(); it != names.rend(); ++it)
        path.append(Separator).append(it->data(), qsizetype(it->size()));
    return path.isEmpty() ? QByteArray(1, Separator) : path;
}

QByteArray FolderReader::absoluteFolder(const QByteArray& path)
{
    // What realpath does, but by single names below descriptors rather than by whole paths, so no length is too
    // long. The names kept so far are free of links, "." and "..", so ".." drops the last of them and opens the
    // parent the system knows, which is the same folder; a link's target takes the link's place among the names
    // still to go, from the root if it is absolute.
    if (path.isEmpty()) {
        errno = ENOENT;
        return {};
    }
    std::vector<std::string> kept, todo;
    int at = -1;
    if (path.startsWith(Separator)) {
        at = ::open("/", PassFlags);
    } else {
        const QByteArray cwd = currentFolder();
        if (cwd.isEmpty())
            return {};
        pushNames(std::string_view(cwd.constData() + 1, size_t(cwd.size() - 1)), kept);
        std::reverse(kept.begin(), kept.end());
        if (cwd.size() == 1)
            kept.clear();
        at = ::open(".", PassFlags);
    }
    if (at < 0)
        return {};
    pushNames(std::string_view(path.constData(), size_t(path.size())), todo);
    constexpr int MaxLinks = 40; // as many as Linux follows along one path
    int links = 0;
    int error = 0;
    std::string target;
    while (!todo.empty() && !error) {
        const std::string name = std::move(todo.back());
        todo.pop_back();
        if (name.empty() || name == ".")
            continue;
        struct stat st;
        if (name == "..") {
            if (!kept.empty())
                kept.pop_back();
        } else if (::fstatat(at, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
            error = errno;
            break;
        } else if (S_ISLNK(st.st_mode)) {
            if (++links > MaxLinks) {
                error = ELOOP;
                break;
            }
            target.resize(std::max<std::size_t>(std::size_t(st.st_size), 64) + 1);
            ssize_t n;
            while ((n = ::readlinkat(at, name.c_str(), target.data(), target.size())) == ssize_t(target.size()))
                target.resize(target.size() * 2);
            if (n < 0) {
                error = errno;
                break;
            }
            target.resize(std::size_t(n));
            if (!target.empty() && target.front() == Separator) {
                kept.clear();
                if (!moveTo(at, ::open("/", PassFlags)))
                    error = errno;
            }
            pushNames(target, todo);
            continue;
        } else if (!S_ISDIR(st.st_mode)) {
            error = ENOTDIR;
            break;
        } else {
            kept.push_back(name);
        }
        if (!moveTo(at, ::openat(at, name.c_str(), PassFlags | O_NOFOLLOW)))
            error = errno;
    }
    ::close(at);
    if (error) {
        errno = error;
        return {};
    }
    QByteArray absolute;
    for (const std::string& name : kept)
        absolute.append(Separator).append(name.data(), qsizetype(name.size()));
    return absolute.isEmpty() ? QByteArray(1, Separator) : absolute;
}

int FolderReader::openPath(const char* path, int flags)
{
    // One name at a time from the root or the current folder, so no call meets the system's limit on a path.
    // Each name on the way is followed if a link, as the system follows it along a path, and a ".." goes up from
    // where the names so far have led, as it does there too; only the last name is opened with `flags`, so
    // O_NOFOLLOW refuses a link there and nowhere else, as it does for a whole path.
    const char* p = path;
    int at = AT_FDCWD;
    if (*p == Separator) {
        while (*p == Separator)
            ++p;
        if (!*p)
            return openPatiently([&] { return ::open("/", flags); });
        at = openPatiently([&] { return ::open("/", PassFlags); });
        if (at < 0)
            return -1;
    } else if (!*p) {
        errno = ENOENT;
        return -1;
    }
    std::string name;
    for (;;) {
        const char* end = std::strchr(p, Separator);
        if (!end)
            end = p + std::strlen(p);
        name.assign(p, end);
        while (*end == Separator)
            ++end;
        const bool last = !*end;
        const int fd = openPatiently([&] { return ::openat(at, name.c_str(), last ? flags : PassFlags); });
        const int error = errno;
        if (at != AT_FDCWD)
            ::close(at);
        if (fd < 0) {
            errno = error;
            return -1;
        }
        if (last)
            return fd;
        at = fd;
        p = end;
    }
}

void FolderReader::prepare(const QByteArray& startPath, int readers, Start& start)
{
    // Deep folders hold descriptors while they wait to be read; the more there are, the fewer are reopened.
    struct rlimit lim;
    if (::getrlimit(RLIMIT_NOFILE, &lim) == 0 && lim.rlim_cur < lim.rlim_max) {
        lim.rlim_cur = lim.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &lim);
    }
    long limit = 1024;
    if (::getrlimit(RLIMIT_NOFILE, &lim) == 0)
        limit = lim.rlim_cur == RLIM_INFINITY ? (1L << 20) : long(std::min<rlim_t>(lim.rlim_cur, 1L << 20));
    // Each reader holds at most four at once of its own; half of what is left over goes to pending folders.
    const long free = limit - openDescriptors() - 4L * readers - 8;
    start.spareDescriptors = std::max(0L, free / 2);

    // Reached as the walk reaches it, links and all, so a path of any length gives its device.
    EntryInfo info;
    const int fd = openPath(startPath.constData(), PassFlags);
    if (fd >= 0) {
        if (statEntry(fd, Self, true, info, SelfFlags)) {
            start.device = info.device;
            start.mountIds = info.hasMountId;
            start.mountId = info.mountId;
        }
        ::close(fd);
    }
    loadMountPoints(startPath, start);
}

FolderReader::FolderReader(Start& start) : m_start(start), m_dents(64 * 1024) {}

FolderReader::~FolderReader()
{
    close();
    if (m_parentFd >= 0)
        ::close(m_parentFd);
}

void FolderReader::close()
{
    if (m_fd >= 0) {
        ::close(m_fd);
        if (m_fdWasSpare)
            m_start.spareDescriptors.fetch_add(1, std::memory_order_relaxed);
    }
    m_fd = -1;
    m_fdWasSpare = false;
}

void FolderReader::release(FolderPlace& place)
{
    if (place.fd >= 0) {
        ::close(place.fd);
        m_start.spareDescriptors.fetch_add(1, std::memory_order_relaxed);
    }
    place.fd = -1;
}

int FolderReader::openChain(const FolderLink& link)
{
    std::vector<const FolderLink*> chain;
    for (const FolderLink* l = &link; l; l = l->parent.get())
        chain.push_back(l);
    std::reverse(chain.begin(), chain.end());
    int fd = openPath(chain.front()->name.c_str(), DirFlags); // under a start folder of any length
    for (std::size_t k = 1; k < chain.size() && fd >= 0;) {
        m_chunk.clear();
        do {
            if (!m_chunk.empty())
                m_chunk.push_back(Separator);
            m_chunk.append(chain[k]->name);
            ++k;
        } while (k < chain.size() && m_chunk.size() + 1 + chain[k]->name.size() <= ChunkBytes);
        const int next = openBelow(fd, m_chunk);
        const int error = errno;
        ::close(fd);
        errno = error;
        fd = next;
    }
    return fd;
}

int FolderReader::reopen(const std::shared_ptr<const FolderLink>& link)
{
    const std::shared_ptr<const FolderLink>& parent = link->parent;
    if (!parent)
        return openChain(*link);
    if (parent != m_parentLink) {
        if (m_parentFd >= 0)
            ::close(m_parentFd);
        m_parentLink.reset();
        m_parentFd = openChain(*parent);
        if (m_parentFd < 0)
            return -1;
        m_parentLink = parent;
    }
    return openPatiently([&] { return ::openat(m_parentFd, link->name.c_str(), DirFlags); });
}

bool FolderReader::list(const FolderPlace& place, bool isStart, DirState& state, int& error, Sink& sink)
{
    if (place.fd >= 0) {
        m_fd = place.fd;
        m_fdWasSpare = true;
    } else if (place.link) {
        m_fd = reopen(place.link);
    } else {
        // Links below the start folder are never followed; the start folder itself may be reached through one.
        const int flags = isStart ? DirFlags & ~O_NOFOLLOW : DirFlags;
        m_fd = isStart ? openPath(place.path.c_str(), flags)
                       : openPatiently([&] { return ::open(place.path.c_str(), flags); });
    }
    if (m_fd < 0) {
        error = errno;
        state = failedState(error);
        return false;
    }
    const int dfd = m_fd;
    struct stat self;
    sink.folderTime(::fstat(dfd, &self) == 0 ? std::int64_t(self.st_mtime) : LLONG_MIN);
    const bool checkMounts = m_start.mountsBelow;
    const int listError = forEachEntry(dfd, m_dents, [&](const char* n, unsigned char type) {
        if (type == DT_DIR && !checkMounts) {
            // A folder needs no stat of its own: its size is what is below it, and no mount point lies below
            // the start folder.
            sink.add(n, 0, LLONG_MIN, true, false);
            return;
        }
        EntryInfo info;
        if (!statEntry(dfd, n, checkMounts, info)) {
            if (errno == ENOENT)
                return; // gone since the folder was listed
            // Listed but not searchable: the entry is there, its details are not.
            sink.add(n, 0, LLONG_MIN, type == DT_DIR, false);
            return;
        }
        bool otherMount = false;
        if (info.dir)
            otherMount = info.hasMountId && m_start.mountIds
                             ? info.mountId != m_start.mountId
                             : info.device != m_start.device || m_start.mountRoots.count({info.device, info.inode});
        sink.add(n, info.dir ? 0 : info.size, info.mtime, info.dir, otherMount);
    });
    if (listError != 0) {
        state = DirState::Unreadable; // listed by its parent, but nothing in it can be read
        error = listError;
    }
    return true;
}

void FolderReader::openChild(const FolderPlace& parent, std::string_view name, FolderPlace& child, DirState& state,
                             int& error)
{
    const bool rootSeparator = !parent.path.empty() && parent.path.back() == Separator;
    const std::size_t len = parent.path.size() + (rootSeparator ? 0 : 1) + name.size();
    if (!parent.link && len < LongPath) {
        child.path.reserve(len);
        child.path = parent.path;
        if (!rootSeparator)
            child.path.push_back(Separator);
        child.path.append(name);
        return;
    }
    auto link = std::make_shared<FolderLink>();
    link->parent = parent.link;
    if (!parent.link) {
        link->name = parent.path;
        if (!rootSeparator)
            link->name.push_back(Separator);
    }
    link->name.append(name);
    child.link = std::move(link);

    // Held while spare descriptors last; once they run out the folder is opened again when its turn comes.
    if (m_start.spareDescriptors.fetch_sub(1, std::memory_order_relaxed) <= 0) {
        m_start.spareDescriptors.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    const std::string n(name);
    child.fd = ::openat(m_fd, n.c_str(), DirFlags);
    if (child.fd >= 0)
        return;
    m_start.spareDescriptors.fetch_add(1, std::memory_order_relaxed);
    if (errno == EMFILE || errno == ENFILE)
        return;
    error = errno;
    state = failedState(error);
}
