// SPDX-License-Identifier: GPL-3.0-or-later

#include "FolderWalk.h"

#include "common/NativeText.h"
#include "common/NumberText.h"

#include <QString>
#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>

#ifdef _WIN32
#include <filesystem>
#else
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/syscall.h>
#endif
#endif
#include <climits>
#include <cstdlib>
#include <fstream>
#include <unordered_set>

namespace {

constexpr int StopMark = 33333;
// Beyond this length a folder is opened relative to its parent's descriptor instead of by path, so trees whose
// paths pass PATH_MAX are still read.
constexpr std::size_t LongPath = 3000;

#ifdef _WIN32
constexpr char Separator = '\\';
#else
constexpr char Separator = '/';
#endif

enum class DirState : std::uint8_t { Pending, Read, Unreadable, Vanished, NotEntered };

struct RawDir
{
    NameArena::Ref name = 0;
    std::uint64_t ownBytes = 0;
    std::uint64_t fileStart = 0;
    std::uint32_t fileCount = 0;
    std::uint32_t firstChild = 0;
    std::uint32_t childCount = 0;
    std::uint8_t worker = 0;
    DirState state = DirState::Pending;
};

// Folder records indexed by id, in chunks that never move, so workers can fill their own records while
// another worker adds chunks.
class DirTable
{
public:
    static constexpr unsigned Bits = 16;
    static constexpr std::size_t Slots = std::size_t(1) << 16;

    DirTable() : m_slots(new std::unique_ptr<RawDir[]>[Slots]) {}
    RawDir& operator[](std::uint32_t id) { return m_slots[id >> Bits][id & ((1u << Bits) - 1)]; }
    // Called under the queue lock before ids up to `end` are handed out.
    void ensure(std::uint64_t end)
    {
        for (std::size_t s = 0; (std::uint64_t(s) << Bits) < end; ++s)
            if (!m_slots[s])
                m_slots[s].reset(new RawDir[std::size_t(1) << Bits]);
    }

private:
    std::unique_ptr<std::unique_ptr<RawDir[]>[]> m_slots;
};

// Upper-case sort key of a name, as UTF-16 units.
void appendKey(std::string_view name, std::u16string& keys)
{
    if (NativeText::isAscii(name)) {
        for (const char c : name)
            keys.push_back(char16_t((c >= 'a' && c <= 'z') ? c - 32 : c));
        return;
    }
    const QString upper = NativeText::toDisplay(name).toUpper();
    keys.append(reinterpret_cast<const char16_t*>(upper.utf16()), size_t(upper.size()));
}

bool lessBytes(std::string_view a, std::string_view b)
{
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return static_cast<unsigned char>(x) < static_cast<unsigned char>(y);
    });
}

struct Item
{
    std::uint32_t id;
    int fd; // an open descriptor for folders deep enough to need one, else -1
    std::string path;
};

struct Child
{
    NameArena::Ref name;
    DirState state; // Pending: to be read
    int fd;
    std::string path;
};

struct Shared
{
    Shared(NameArena& n, const WalkOptions& o) : names(n), options(o) {}
    NameArena& names;
    const WalkOptions& options;
    DirTable table;
    std::mutex mutex;
    std::condition_variable wake;
    std::vector<Item> stack; // last in, first out: keeps the walk close to depth-first, and few folders open
    std::size_t pending = 0; // queued plus being read
    std::uint32_t nextId = 1;
    std::uint64_t rootDev = 0;
    bool mountsKnown = false;                    // the mount table could be read
    std::unordered_set<std::string> mountPoints; // mount points below the start folder
    std::atomic<std::size_t> nameBytes{0};
};

struct Entry
{
    std::uint32_t nameOff, nameLen, keyOff, keyLen;
    std::uint64_t size;
    bool dir;
    bool otherDevice;
};

class Worker
{
public:
    Worker(Shared& shared, std::uint8_t index) : m_shared(shared), m_names(shared.names), m_index(index) {}

    void run()
    {
        std::unique_lock lock(m_shared.mutex);
        for (;;) {
            m_shared.wake.wait(lock, [&] { return !m_shared.stack.empty() || m_shared.pending == 0; });
            if (m_shared.stack.empty())
                return;
            Item item = std::move(m_shared.stack.back());
            m_shared.stack.pop_back();
            lock.unlock();
            m_children.clear();
            const bool cancelled = m_shared.options.cancel && m_shared.options.cancel->load(std::memory_order_relaxed);
            if (cancelled) {
                if (item.fd >= 0)
                    closeFd(item.fd);
            } else {
                read(item);
            }
            lock.lock();
            publish(item.id);
        }
    }

    std::vector<NameArena::Ref> files;

private:
    // Under the lock: give the children their ids and queue those to be read.
    void publish(std::uint32_t parent)
    {
        const std::uint32_t base = m_shared.nextId;
        m_shared.nextId += std::uint32_t(m_children.size());
        m_shared.table.ensure(m_shared.nextId);
        RawDir& p = m_shared.table[parent];
        p.firstChild = base;
        p.childCount = std::uint32_t(m_children.size());
        std::size_t queued = 0;
        for (std::size_t k = 0; k < m_children.size(); ++k) {
            Child& c = m_children[k];
            RawDir& d = m_shared.table[base + std::uint32_t(k)];
            d.name = c.name;
            d.state = c.state;
            if (c.state == DirState::Pending) {
                m_shared.stack.push_back(Item{base + std::uint32_t(k), c.fd, std::move(c.path)});
                ++queued;
            }
        }
        // Children are pushed in sorted order; reversing them lets the first be read first.
        std::reverse(m_shared.stack.end() - std::ptrdiff_t(queued), m_shared.stack.end());
        m_shared.pending += queued;
        --m_shared.pending;
        if (m_shared.pending == 0 || queued > 1)
            m_shared.wake.notify_all();
        else if (queued == 1)
            m_shared.wake.notify_one();
    }

    static void closeFd(int fd)
    {
#ifndef _WIN32
        ::close(fd);
#else
        (void)fd;
#endif
    }

    void addEntry(std::string_view name, std::uint64_t size, bool dir, bool otherDevice)
    {
        Entry e;
        e.nameOff = std::uint32_t(m_pool.size());
        e.nameLen = std::uint32_t(name.size());
        m_pool.append(name);
        e.keyOff = std::uint32_t(m_keys.size());
        appendKey(name, m_keys);
        e.keyLen = std::uint32_t(m_keys.size() - e.keyOff);
        e.size = size;
        e.dir = dir;
        e.otherDevice = otherDevice;
        m_entries.push_back(e);
    }

    std::string_view nameOf(const Entry& e) const
    {
        return {m_pool.data() + e.nameOff, e.nameLen};
    }

    bool less(const Entry& a, const Entry& b) const
    {
        const std::u16string_view ka(m_keys.data() + a.keyOff, a.keyLen);
        const std::u16string_view kb(m_keys.data() + b.keyOff, b.keyLen);
        const int c = ka.compare(kb);
        if (c != 0)
            return c < 0;
        return lessBytes(nameOf(a), nameOf(b));
    }

    // Reads one folder: its entries sorted, sizes of its files summed, sub-folders made ready to be read.
    void read(const Item& item)
    {
        RawDir& self = m_shared.table[item.id];
        m_pool.clear();
        m_keys.clear();
        m_entries.clear();
        int dfd = -1;
        if (!list(item, self, dfd))
            return;
        std::vector<std::uint32_t>& order = m_order;
        order.resize(m_entries.size());
        for (std::uint32_t k = 0; k < order.size(); ++k)
            order[k] = k;
        std::sort(order.begin(), order.end(),
                  [&](std::uint32_t a, std::uint32_t b) { return less(m_entries[a], m_entries[b]); });

        self.worker = m_index;
        self.fileStart = files.size();
        std::size_t nameBytes = 0;
        for (const std::uint32_t k : order) {
            const Entry& e = m_entries[k];
            const std::string_view name = nameOf(e);
            nameBytes += name.size() + (name.size() < 0x80 ? 1 : 2);
            if (!e.dir) {
                files.push_back(m_names.add(name));
                self.ownBytes += e.size;
                continue;
            }
            Child c{m_names.add(name), DirState::Pending, -1, {}};
            if (e.otherDevice) {
                c.state = DirState::NotEntered; // a mount point: listed, not entered
            } else {
                openChild(item, dfd, name, c);
            }
            m_children.push_back(std::move(c));
        }
        self.fileCount = std::uint32_t(files.size() - self.fileStart);
        self.state = DirState::Read;
        m_shared.nameBytes.fetch_add(nameBytes, std::memory_order_relaxed);
        if (WalkProgress* p = m_shared.options.progress) {
            p->folders.fetch_add(qint64(m_children.size()), std::memory_order_relaxed);
            p->files.fetch_add(qint64(self.fileCount), std::memory_order_relaxed);
        }
        if (dfd >= 0)
            closeFd(dfd);
    }

#ifndef _WIN32
    // Calls `take(name, d_type)` for each entry but "." and ".."; false when the folder cannot be listed.
    template <typename Take> bool forEachEntry(int dfd, Take&& take)
    {
#ifdef __linux__
        // getdents64 straight on our descriptor: no second descriptor and no DIR stream to set up per folder.
        for (;;) {
            const long n = ::syscall(SYS_getdents64, dfd, m_dents.data(), m_dents.size());
            if (n < 0) {
                if (errno == EINTR)
                    continue;
                return false;
            }
            if (n == 0)
                return true;
            for (long off = 0; off < n;) {
                const auto* d = reinterpret_cast<const Dirent64*>(m_dents.data() + off);
                const char* name = d->d_name;
                if (!(name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0))))
                    take(name, d->d_type);
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
        while (const dirent* d = ::readdir(dir)) {
            const char* name = d->d_name;
            if (!(name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0))))
                take(name, d->d_type);
        }
        ::closedir(dir);
        return true;
#endif
    }

    bool isMountPoint(const Item& item, int dfd, const char* name)
    {
        if (m_shared.mountPoints.empty())
            return false;
        if (item.path.empty()) { // deep enough to have no path: ask the file system
            struct stat st;
            return ::fstatat(dfd, name, &st, AT_SYMLINK_NOFOLLOW) == 0 && std::uint64_t(st.st_dev) != m_shared.rootDev;
        }
        std::string p = item.path;
        if (p.back() != Separator)
            p.push_back(Separator);
        p.append(name);
        return m_shared.mountPoints.count(p) != 0;
    }

    bool list(const Item& item, RawDir& self, int& dfd)
    {
        // Links below the start folder are never followed; the start folder itself may be reached through one.
        const int follow = item.id == 0 ? 0 : O_NOFOLLOW;
        dfd = item.fd >= 0 ? item.fd : ::open(item.path.c_str(), O_RDONLY | O_DIRECTORY | follow | O_CLOEXEC);
        if (dfd < 0) {
            self.state =
                (errno == ENOENT || errno == ENOTDIR || errno == ELOOP) ? DirState::Vanished : DirState::Unreadable;
            return false;
        }
        const bool listed = forEachEntry(dfd, [&](const char* n, unsigned char type) {
            if (type == DT_DIR && m_shared.mountsKnown) {
                // A folder needs no stat of its own: its size is what is below it, and whether it is a mount
                // point the mount table says.
                addEntry(n, 0, true, isMountPoint(item, dfd, n));
                return;
            }
            struct stat st;
            if (::fstatat(dfd, n, &st, AT_SYMLINK_NOFOLLOW) != 0) {
                if (errno == ENOENT)
                    return; // gone since the folder was listed
                // Listed but not searchable: the entry is there, its details are not.
                addEntry(n, 0, type == DT_DIR, false);
                return;
            }
            const bool isDir = S_ISDIR(st.st_mode);
            addEntry(n, isDir ? 0 : std::uint64_t(st.st_size), isDir,
                     isDir && std::uint64_t(st.st_dev) != m_shared.rootDev);
        });
        if (!listed)
            self.state = DirState::Unreadable; // listed by its parent, but nothing in it can be read
        return true;
    }

    void openChild(const Item& item, int dfd, std::string_view name, Child& c)
    {
        const bool parentIsLong = item.fd >= 0 && item.path.empty();
        const std::size_t len = item.path.size() + 1 + name.size();
        if (!parentIsLong && len < LongPath) {
            c.path.reserve(len);
            c.path = item.path;
            if (c.path.empty() || c.path.back() != Separator)
                c.path.push_back(Separator);
            c.path.append(name);
            return;
        }
        const std::string n(name);
        c.fd = ::openat(dfd, n.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (c.fd < 0)
            c.state =
                (errno == ENOENT || errno == ENOTDIR || errno == ELOOP) ? DirState::Vanished : DirState::Unreadable;
    }
#else
    bool list(const Item& item, RawDir& self, int&)
    {
        namespace fs = std::filesystem;
        const QString display = NativeText::toDisplay(item.path);
        const fs::path dirPath(reinterpret_cast<const wchar_t*>(display.utf16()));
        std::error_code ec;
        fs::directory_iterator it(dirPath, ec);
        if (ec) {
            self.state = ec == std::errc::no_such_file_or_directory ? DirState::Vanished : DirState::Unreadable;
            return false;
        }
        for (; it != fs::directory_iterator(); it.increment(ec)) {
            if (ec)
                break;
            const std::wstring w = it->path().filename().wstring();
            const QByteArray name = NativeText::fromDisplay(QString::fromWCharArray(w.data(), qsizetype(w.size())));
            std::error_code e2;
            const auto st = it->symlink_status(e2);
            if (e2)
                continue;
            const bool isDir = fs::is_directory(st) && !it->is_symlink(e2);
            const std::uint64_t size = isDir ? 0 : it->file_size(e2);
            addEntry({name.constData(), size_t(name.size())}, e2 ? 0 : size, isDir, false);
        }
        return true;
    }

    void openChild(const Item& item, int, std::string_view name, Child& c)
    {
        c.path = item.path;
        if (c.path.empty() || c.path.back() != Separator)
            c.path.push_back(Separator);
        c.path.append(name);
    }
#endif

    Shared& m_shared;
    NameArena::Writer m_names;
    std::uint8_t m_index;
    std::string m_pool;
    std::u16string m_keys;
    std::vector<Entry> m_entries;
    std::vector<std::uint32_t> m_order;
    std::vector<Child> m_children;
#ifdef __linux__
    struct Dirent64
    {
        std::uint64_t d_ino;
        std::int64_t d_off;
        unsigned short d_reclen;
        unsigned char d_type;
        char d_name[1];
    };
    std::vector<char> m_dents = std::vector<char>(64 * 1024);
#endif
};

} // namespace

bool FolderWalk::lessByName(std::string_view a, std::string_view b)
{
    std::u16string ka, kb;
    appendKey(a, ka);
    appendKey(b, kb);
    const int c = ka.compare(kb);
    return c != 0 ? c < 0 : lessBytes(a, b);
}

namespace {

// Lays the read tree out in the order of the lists. The walk it mirrors is recursive; this one keeps its own
// stack of open folders, each frame standing for one call that is still running.
class Assembler
{
public:
    Assembler(DirTable& table, ScanResult::Flavour flavour)
        : m_table(table), m_short(flavour == ScanResult::Flavour::Short)
    {
    }

    void run()
    {
        struct Frame
        {
            std::uint32_t dir;
            std::uint32_t next;
        };
        std::vector<Frame> stack{{0, 0}};
        const auto leave = [&] {
            const std::uint32_t done = stack.back().dir;
            stack.pop_back();
            if (!stack.empty()) {
                order.push_back(done); // the caller records the folder it descended into
            }
        };
        while (!stack.empty()) {
            Frame& f = stack.back();
            const RawDir& d = m_table[f.dir];
            // Skip folders that vanished between being listed and being read.
            while (f.next < d.childCount && m_table[d.firstChild + f.next].state == DirState::Vanished)
                ++f.next;
            if (f.next < d.childCount) {
                const std::uint32_t sub = d.firstChild + f.next++;
                if (!addFiles(sub) || m_fileCounter == StopMark)
                    leave();
                else
                    stack.push_back({sub, 0});
            } else {
                if (order.empty())
                    addFiles(0); // the start folder's own files, at the first folder without sub-folders
                leave();
            }
        }
    }

    std::vector<std::uint32_t> order; // listed folders, post-order
    struct Run
    {
        std::uint32_t dir;
        std::uint32_t count;
        std::uint64_t start;
        std::uint8_t worker;
    };
    std::vector<Run> runs; // files, in list order
    bool limitReached = false;

private:
    // The files directly in `dir`; false when the Short limit stops the walk.
    bool addFiles(std::uint32_t dir)
    {
        const RawDir& d = m_table[dir];
        std::uint32_t n = d.fileCount;
        if (n == 0)
            return true;
        if (m_short) {
            if (m_fileCounter == StopMark)
                return false;
            const std::uint32_t room = std::uint32_t(ScanResult::ShortFileLimit - m_fileCounter);
            if (n > room) {
                if (room > 0)
                    runs.push_back({dir, room, d.fileStart, d.worker});
                m_fileCounter = StopMark;
                limitReached = true;
                return false;
            }
            m_fileCounter += int(n);
        }
        runs.push_back({dir, n, d.fileStart, d.worker});
        return true;
    }

    DirTable& m_table;
    bool m_short;
    int m_fileCounter = 0;
};

#ifdef __linux__
// Mount points strictly below `start`, from the kernel's table (octal escapes as in "/media/my\040disk").
void loadMountPoints(const QByteArray& start, Shared& shared)
{
    std::ifstream in("/proc/self/mountinfo");
    if (!in)
        return;
    shared.mountsKnown = true;
    // The table names mount points by their real paths; the walk builds paths on the start folder as given,
    // which may lead there through a link.
    const auto withSeparator = [](std::string p) {
        if (p.empty() || p.back() != Separator)
            p.push_back(Separator);
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
void loadMountPoints(const QByteArray&, Shared&) {}
#endif

} // namespace

std::unique_ptr<ScanResult> FolderWalk::run(const QByteArray& startPathIn, const WalkOptions& options)
{
    auto result = std::make_unique<ScanResult>();
    ScanResult& r = *result;
    QByteArray start = startPathIn;
    while (start.size() > 1 && start.endsWith(Separator) && !(start.size() == 3 && start[1] == ':'))
        start.chop(1);
    r.m_flavour = options.flavour;
    r.m_separator = Separator;
    r.m_startPath = start;
    r.m_carriedName = options.carry.lastName;

    Shared shared(r.m_names, options);
    shared.table.ensure(1);
#ifndef _WIN32
    {
        struct rlimit lim;
        if (::getrlimit(RLIMIT_NOFILE, &lim) == 0 && lim.rlim_cur < lim.rlim_max) {
            lim.rlim_cur = lim.rlim_max; // deep trees keep a descriptor per pending folder
            ::setrlimit(RLIMIT_NOFILE, &lim);
        }
        struct stat st;
        if (::stat(start.constData(), &st) == 0)
            shared.rootDev = std::uint64_t(st.st_dev);
        loadMountPoints(start, shared);
    }
#endif
    shared.stack.push_back(Item{0, -1, start.toStdString()});
    shared.pending = 1;

    int threads = options.threads > 0 ? options.threads : int(std::thread::hardware_concurrency());
    threads = std::clamp(threads, 1, 16);
    std::vector<std::unique_ptr<Worker>> workers;
    for (int k = 0; k < threads; ++k)
        workers.push_back(std::make_unique<Worker>(shared, std::uint8_t(k)));
    std::vector<std::thread> pool;
    for (int k = 1; k < threads; ++k)
        pool.emplace_back([&, k] { workers[size_t(k)]->run(); });
    workers[0]->run();
    for (std::thread& t : pool)
        t.join();
    if (options.cancel && options.cancel->load())
        return nullptr;

    const std::uint32_t count = shared.nextId;
    DirTable& table = shared.table;
    std::vector<const std::vector<NameArena::Ref>*> files;
    for (const auto& w : workers)
        files.push_back(&w->files);

    Assembler layout(table, options.flavour);
    layout.run();
    r.m_limitReached = layout.limitReached;

    // Parents, and sizes summed bottom-up: a child's id is always above its parent's.
    std::vector<std::uint32_t> parent(count, 0);
    std::vector<std::uint64_t> total(count, 0);
    for (std::uint32_t id = 0; id < count; ++id) {
        const RawDir& d = table[id];
        total[id] = d.ownBytes;
        for (std::uint32_t c = 0; c < d.childCount; ++c)
            parent[d.firstChild + c] = id;
    }
    for (std::uint32_t id = count; id-- > 1;)
        total[parent[id]] += total[id];

    // Nodes: the start folder, the listed folders in order, then any folder whose files were listed but which
    // the Short limit stopped before it was entered.
    std::vector<std::uint32_t> nodeOf(count, UINT32_MAX);
    nodeOf[0] = 0;
    for (std::size_t k = 0; k < layout.order.size(); ++k)
        nodeOf[layout.order[k]] = std::uint32_t(k + 1);
    std::vector<std::uint32_t> extra;
    for (const auto& run : layout.runs)
        if (nodeOf[run.dir] == UINT32_MAX) {
            nodeOf[run.dir] = std::uint32_t(layout.order.size() + 1 + extra.size());
            extra.push_back(run.dir);
        }
    r.m_folderCount = qint64(layout.order.size());
    r.m_dirs.reserve(layout.order.size() + 1 + extra.size());
    r.m_dirs.push_back({0, 0, 0});
    qint32 kb = options.carry.folderKb;
    for (const std::uint32_t id : layout.order) {
        // A folder of 2 TiB or more overflows the size; the size shown is then the one computed before.
        NumberText::kilobytes(total[id], kb);
        r.m_dirs.push_back({table[id].name, nodeOf[parent[id]], kb});
    }
    for (const std::uint32_t id : extra)
        r.m_dirs.push_back({table[id].name, nodeOf[parent[id]], 0});
    r.m_carryOut.folderKb = kb;

    std::size_t fileTotal = 0;
    for (const auto& run : layout.runs)
        fileTotal += run.count;
    r.m_files.reserve(fileTotal);
    for (const auto& run : layout.runs) {
        const std::vector<NameArena::Ref>& names = *files[run.worker];
        for (std::uint64_t k = run.start; k < run.start + run.count; ++k) {
            const NameArena::Ref ref = names[size_t(k)];
            r.m_files.push_back({nodeOf[run.dir], std::uint32_t(ref), std::uint32_t(ref >> 32)});
        }
    }
    r.m_nameBytes = shared.nameBytes.load() + size_t(start.size());
    for (auto& w : workers)
        std::vector<NameArena::Ref>().swap(w->files);

    r.markLongPaths();
    return result;
}
