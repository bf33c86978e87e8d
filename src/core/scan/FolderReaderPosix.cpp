// SPDX-License-Identifier: GPL-3.0-or-later

#include "FolderReader.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <fstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/syscall.h>
#endif

namespace {

// Beyond this length a folder is opened relative to its parent's descriptor instead of by path, so trees whose
// paths pass PATH_MAX are still read.
constexpr std::size_t LongPath = 3000;

#ifdef __linux__
struct Dirent64
{
    std::uint64_t d_ino;
    std::int64_t d_off;
    unsigned short d_reclen;
    unsigned char d_type;
    char d_name[1];
};

// Mount points strictly below `start`, from the kernel's table (octal escapes as in "/media/my\040disk").
void loadMountPoints(const QByteArray& start, FolderReader::Start& shared)
{
    std::ifstream in("/proc/self/mountinfo");
    if (!in)
        return;
    shared.mountsKnown = true;
    // The table names mount points by their real paths; the walk builds paths on the start folder as given,
    // which may lead there through a link.
    const auto withSeparator = [](std::string p) {
        if (p.empty() || p.back() != FolderReader::Separator)
            p.push_back(FolderReader::Separator);
        return p;
    };
    const std::string given = withSeparator(std::string(start.constData(), size_t(start.size())));
    char real[PATH_MAX];
    const std::string prefix = withSeparator(::realpath(start.constData(), real) ? std::string(real) : given);
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
        if (point.size() > prefix.size() && point.compare(0, prefix.size(), prefix) == 0)
            shared.mountPoints.insert(given + point.substr(prefix.size()));
    }
}
#else
void loadMountPoints(const QByteArray&, FolderReader::Start&) {}
#endif

bool isDotOrDotDot(const char* name)
{
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

// Calls `take(name, d_type)` for each entry but "." and ".."; false when the folder cannot be listed.
template <typename Take> bool forEachEntry(int dfd, [[maybe_unused]] std::vector<char>& buffer, Take&& take)
{
#ifdef __linux__
    // getdents64 straight on our descriptor: no second descriptor and no DIR stream to set up per folder.
    for (;;) {
        const long n = ::syscall(SYS_getdents64, dfd, buffer.data(), buffer.size());
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        if (n == 0)
            return true;
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
        if (listFd >= 0)
            ::close(listFd);
        return false;
    }
    while (const dirent* d = ::readdir(dir))
        if (!isDotOrDotDot(d->d_name))
            take(d->d_name, d->d_type);
    ::closedir(dir);
    return true;
#endif
}

DirState failedState(int error)
{
    return (error == ENOENT || error == ENOTDIR || error == ELOOP) ? DirState::Vanished : DirState::Unreadable;
}

} // namespace

void FolderReader::prepare(const QByteArray& startPath, Start& start)
{
    struct rlimit lim;
    if (::getrlimit(RLIMIT_NOFILE, &lim) == 0 && lim.rlim_cur < lim.rlim_max) {
        lim.rlim_cur = lim.rlim_max; // deep trees keep a descriptor per pending folder
        ::setrlimit(RLIMIT_NOFILE, &lim);
    }
    struct stat st;
    if (::stat(startPath.constData(), &st) == 0)
        start.device = std::uint64_t(st.st_dev);
    loadMountPoints(startPath, start);
}

void FolderReader::release(FolderPlace& place)
{
    if (place.fd >= 0)
        ::close(place.fd);
    place.fd = -1;
}

FolderReader::FolderReader(const Start& start) : m_start(start)
{
#ifdef __linux__
    m_dents.resize(64 * 1024);
#endif
}

FolderReader::~FolderReader()
{
    close();
}

void FolderReader::close()
{
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
}

bool FolderReader::list(const FolderPlace& place, bool isStart, DirState& state, Sink& sink)
{
    // Links below the start folder are never followed; the start folder itself may be reached through one.
    const int follow = isStart ? 0 : O_NOFOLLOW;
    m_fd = place.fd >= 0 ? place.fd : ::open(place.path.c_str(), O_RDONLY | O_DIRECTORY | follow | O_CLOEXEC);
    if (m_fd < 0) {
        state = failedState(errno);
        return false;
    }
    const int dfd = m_fd;
    struct stat self;
    sink.folderTime(::fstat(dfd, &self) == 0 ? std::int64_t(self.st_mtime) : LLONG_MIN);
    const auto isMountPoint = [&](const char* name) {
        if (m_start.mountPoints.empty())
            return false;
        if (place.path.empty()) { // deep enough to have no path: ask the file system
            struct stat st;
            return ::fstatat(dfd, name, &st, AT_SYMLINK_NOFOLLOW) == 0 && std::uint64_t(st.st_dev) != m_start.device;
        }
        std::string p = place.path;
        if (p.back() != Separator)
            p.push_back(Separator);
        p.append(name);
        return m_start.mountPoints.count(p) != 0;
    };
    const bool listed = forEachEntry(dfd, m_dents, [&](const char* n, unsigned char type) {
        if (type == DT_DIR && m_start.mountsKnown) {
            // A folder needs no stat of its own: its size is what is below it, and whether it is a mount
            // point the mount table says.
            sink.add(n, 0, LLONG_MIN, true, isMountPoint(n));
            return;
        }
        struct stat st;
        if (::fstatat(dfd, n, &st, AT_SYMLINK_NOFOLLOW) != 0) {
            if (errno == ENOENT)
                return; // gone since the folder was listed
            // Listed but not searchable: the entry is there, its details are not.
            sink.add(n, 0, LLONG_MIN, type == DT_DIR, false);
            return;
        }
        const bool isDir = S_ISDIR(st.st_mode);
        sink.add(n, isDir ? 0 : std::uint64_t(st.st_size), std::int64_t(st.st_mtime), isDir,
                 isDir && std::uint64_t(st.st_dev) != m_start.device);
    });
    if (!listed)
        state = DirState::Unreadable; // listed by its parent, but nothing in it can be read
    return true;
}

void FolderReader::openChild(const FolderPlace& parent, std::string_view name, FolderPlace& child, DirState& state)
{
    const bool parentIsLong = parent.fd >= 0 && parent.path.empty();
    const std::size_t len = parent.path.size() + 1 + name.size();
    if (!parentIsLong && len < LongPath) {
        child.path.reserve(len);
        child.path = parent.path;
        if (child.path.empty() || child.path.back() != Separator)
            child.path.push_back(Separator);
        child.path.append(name);
        return;
    }
    const std::string n(name);
    child.fd = ::openat(m_fd, n.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (child.fd < 0)
        state = failedState(errno);
}
