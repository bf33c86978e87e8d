// SPDX-License-Identifier: GPL-3.0-or-later

#include "TempFile.h"

#ifndef _WIN32

#include "export/NativePath.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace TempFile {

namespace {

constexpr char Prefix[] = ".quillary-";
constexpr std::size_t PrefixLength = sizeof Prefix - 1;
constexpr std::size_t RandomLength = 6; // mkstemp's XXXXXX

// Names in fixed slots, so a signal handler can walk them without taking a lock or touching the heap. A slot is
// Filling while its file is being made, with the stopping signals held back on the thread that makes it.
enum SlotState : int { Free, Filling, Held, Releasing };
struct Slot
{
    std::atomic<int> state{Free};
    char path[PATH_MAX];
};
Slot g_slots[32];
// Set by removeTracked(): from then on no file is made that it might miss.
std::atomic<bool> g_stopping{false};

Slot* reserve(const QByteArray& path)
{
    if (path.size() >= PATH_MAX)
        return nullptr; // too long to keep; the next save's sweep will take it if it is ever left behind
    for (Slot& s : g_slots) {
        int expected = Free;
        if (s.state.compare_exchange_strong(expected, Filling)) {
            std::memcpy(s.path, path.constData(), size_t(path.size()) + 1);
            return &s;
        }
    }
    return nullptr;
}

bool isOurs(const char* name)
{
    if (std::strncmp(name, Prefix, PrefixLength) != 0 || std::strlen(name) != PrefixLength + RandomLength)
        return false;
    for (const char* c = name + PrefixLength; *c; ++c) {
        const bool alnum = (*c >= 'a' && *c <= 'z') || (*c >= 'A' && *c <= 'Z') || (*c >= '0' && *c <= '9');
        if (!alnum)
            return false;
    }
    return true;
}

bool before(const timespec& a, const timespec& b)
{
    return a.tv_sec < b.tv_sec || (a.tv_sec == b.tv_sec && a.tv_nsec < b.tv_nsec);
}

} // namespace

int create(const QByteArray& folder, QByteArray& path)
{
    path = folder + NativePath::Separator + Prefix + QByteArray(RandomLength, 'X');
    // The file is made under its slot's name, so there is no moment in which it exists and a stopping signal
    // handled on this thread could not find it; on another thread the handler waits for the slot to fill.
    sigset_t stopping, previous;
    sigemptyset(&stopping);
    for (const int sig : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&stopping, sig);
    ::pthread_sigmask(SIG_BLOCK, &stopping, &previous);
    Slot* slot = reserve(path);
    int fd = -1;
    if (slot && g_stopping.load()) {
        slot->state.store(Free);
        errno = EINTR;
    } else {
        fd = ::mkostemp(slot ? slot->path : path.data(), O_CLOEXEC);
        const int error = errno;
        if (slot) {
            if (fd >= 0)
                path = QByteArray(slot->path);
            slot->state.store(fd >= 0 ? Held : Free);
        }
        errno = error;
    }
    ::pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    if (fd >= 0)
        ::flock(fd, LOCK_EX | LOCK_NB); // nobody else has the name yet, so the lock cannot be refused
    return fd;
}

void forget(const QByteArray& path)
{
    for (Slot& s : g_slots) {
        int expected = Held;
        if (s.state.load() == Held && path == s.path && s.state.compare_exchange_strong(expected, Releasing))
            s.state.store(Free);
    }
}

void removeTracked()
{
    g_stopping.store(true);
    for (Slot& s : g_slots) {
        int state;
        while ((state = s.state.load()) == Filling) {
        }
        if (state == Held)
            ::unlink(s.path);
    }
}

int removeStale(const QByteArray& folder)
{
    timespec start;
    ::clock_gettime(CLOCK_REALTIME, &start);
    DIR* dir = ::opendir(folder.constData());
    if (!dir)
        return 0;
    const int dfd = ::dirfd(dir);
    int removed = 0;
    while (const dirent* e = ::readdir(dir)) {
        if (!isOurs(e->d_name))
            continue;
        struct stat st;
        // The change time, not the modification time: a copy carries its source's modification time from the
        // moment it is made.
        if (::fstatat(dfd, e->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0 || !before(st.st_ctim, start))
            continue;
        if (S_ISLNK(st.st_mode)) {
            // A link being copied lives under its temporary name for one rename only, and cannot be locked.
            removed += ::unlinkat(dfd, e->d_name, 0) == 0;
            continue;
        }
        if (!S_ISREG(st.st_mode))
            continue;
        const int fd = ::openat(dfd, e->d_name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (fd < 0)
            continue;
        struct stat held;
        if (::flock(fd, LOCK_EX | LOCK_NB) == 0 && ::fstat(fd, &held) == 0 && held.st_ino == st.st_ino &&
            held.st_dev == st.st_dev)
            removed += ::unlinkat(dfd, e->d_name, 0) == 0;
        ::close(fd);
    }
    ::closedir(dir);
    return removed;
}

} // namespace TempFile

#endif
