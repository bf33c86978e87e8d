// SPDX-License-Identifier: GPL-3.0-or-later

#include "FolderWalk.h"

#include "common/NativeText.h"
#include "common/NumberText.h"

#include "FolderReader.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QString>
#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace {

constexpr int StopMark = 33333;

struct RawDir
{
    NameArena::Ref name = 0;
    std::uint64_t ownBytes = 0;
    std::int64_t mtime = LLONG_MIN;
    std::uint64_t fileStart = 0;
    std::uint32_t fileCount = 0;
    std::uint32_t firstChild = 0;
    std::uint32_t childCount = 0;
    std::uint8_t worker = 0;
    DirState state = DirState::Pending;
    std::uint16_t error = 0; // why an unreadable folder could not be read
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
    const QString upper = NativeText::upperUnits(NativeText::toDisplay(name));
    keys.append(reinterpret_cast<const char16_t*>(upper.utf16()), size_t(upper.size()));
}

// Sizes add up without wrapping: a sum past 2^64 bytes stays at the largest size, which is too large to show and
// so takes the overflow path of every other oversized folder.
std::uint64_t addSize(std::uint64_t a, std::uint64_t b)
{
    return b > UINT64_MAX - a ? UINT64_MAX : a + b;
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
    FolderPlace place;
};

struct Child
{
    NameArena::Ref name;
    DirState state; // Pending: to be read
    FolderPlace place;
    int error = 0;
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
    FolderReader::Start start;
    std::atomic<std::size_t> nameBytes{0};
};

struct Entry
{
    std::uint32_t nameOff, nameLen, keyOff, keyLen;
    std::uint64_t size;
    std::int64_t mtime;
    bool dir;
    bool otherDevice;
};

class Worker : private FolderReader::Sink
{
public:
    Worker(Shared& shared, std::uint8_t index)
        : m_shared(shared), m_names(shared.names), m_index(index), m_reader(shared.start)
    {
    }

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
                m_reader.release(item.place);
            } else {
                read(item);
            }
            lock.lock();
            publish(item.id);
        }
    }

    std::vector<NameArena::Ref> files;
    std::vector<ScanResult::Stat> fileStats; // beside `files`

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
            d.error = std::uint16_t(c.error);
            if (c.state == DirState::Pending) {
                m_shared.stack.push_back(Item{base + std::uint32_t(k), std::move(c.place)});
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

    void folderTime(std::int64_t mtime) override { m_folderTime = mtime; }

    void add(std::string_view name, std::uint64_t size, std::int64_t mtime, bool dir, bool otherDevice) override
    {
        Entry e;
        e.nameOff = std::uint32_t(m_pool.size());
        e.nameLen = std::uint32_t(name.size());
        m_pool.append(name);
        e.keyOff = std::uint32_t(m_keys.size());
        appendKey(name, m_keys);
        e.keyLen = std::uint32_t(m_keys.size() - e.keyOff);
        e.size = size;
        e.mtime = mtime;
        e.dir = dir;
        e.otherDevice = otherDevice;
        m_entries.push_back(e);
    }

    std::string_view nameOf(const Entry& e) const { return {m_pool.data() + e.nameOff, e.nameLen}; }

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
        int error = 0;
        m_folderTime = LLONG_MIN;
        const bool opened = m_reader.list(item.place, item.id == 0, self.state, error, *this);
        self.error = std::uint16_t(error);
        self.mtime = m_folderTime;
        if (!opened)
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
                fileStats.push_back({e.size, e.mtime});
                self.ownBytes = addSize(self.ownBytes, e.size);
                continue;
            }
            Child c{m_names.add(name), DirState::Pending, {}};
            if (e.otherDevice) {
                c.state = DirState::NotEntered; // a mount point: listed, not entered
            } else {
                m_reader.openChild(item.place, name, c.place, c.state, c.error);
            }
            m_children.push_back(std::move(c));
        }
        self.fileCount = std::uint32_t(files.size() - self.fileStart);
        if (self.state == DirState::Pending)
            self.state = DirState::Read;
        m_shared.nameBytes.fetch_add(nameBytes, std::memory_order_relaxed);
        if (WalkProgress* p = m_shared.options.progress) {
            p->folders.fetch_add(qint64(m_children.size()), std::memory_order_relaxed);
            p->files.fetch_add(qint64(self.fileCount), std::memory_order_relaxed);
        }
        m_reader.close();
    }

    Shared& m_shared;
    NameArena::Writer m_names;
    std::uint8_t m_index;
    std::string m_pool;
    std::u16string m_keys;
    std::vector<Entry> m_entries;
    std::vector<std::uint32_t> m_order;
    std::vector<Child> m_children;
    std::int64_t m_folderTime = LLONG_MIN;
    FolderReader m_reader;
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

} // namespace

std::unique_ptr<ScanResult> FolderWalk::run(const QByteArray& startPathIn, const WalkOptions& options)
{
    auto result = std::make_unique<ScanResult>();
    ScanResult& r = *result;
    QByteArray start = startPathIn;
    while (start.size() > 1 && start.endsWith(FolderReader::Separator) && !(start.size() == 3 && start[1] == ':'))
        start.chop(1);
    r.m_flavour = options.flavour;
    r.m_separator = FolderReader::Separator;
    r.m_startPath = start;
    r.m_carriedName = options.carry.lastName;
    r.m_walkStartedAtMs = QDateTime::currentMSecsSinceEpoch();
    QElapsedTimer clock;
    clock.start();

    Shared shared(r.m_names, options);
    shared.table.ensure(1);
    int threads = options.threads > 0 ? options.threads : int(std::thread::hardware_concurrency());
    threads = std::clamp(threads, 1, 16);
    FolderReader::prepare(start, threads, shared.start);
    shared.stack.push_back(Item{0, {-1, start.toStdString(), {}}});
    shared.pending = 1;
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
    std::vector<const std::vector<ScanResult::Stat>*> fileStats;
    for (const auto& w : workers) {
        files.push_back(&w->files);
        fileStats.push_back(&w->fileStats);
    }

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
        total[parent[id]] = addSize(total[parent[id]], total[id]);

    for (std::uint32_t id = 0; id < count; ++id) {
        if (table[id].state != DirState::Unreadable)
            continue;
        std::vector<std::string_view> names;
        for (std::uint32_t at = id; at != 0; at = parent[at])
            names.push_back(r.m_names.get(table[at].name));
        QByteArray path = start;
        for (auto it = names.rbegin(); it != names.rend(); ++it) {
            if (!path.endsWith(FolderReader::Separator))
                path.append(FolderReader::Separator);
            path.append(it->data(), qsizetype(it->size()));
        }
        r.m_unreadable.push_back({path, table[id].error});
    }
    std::sort(r.m_unreadable.begin(), r.m_unreadable.end(),
              [](const auto& a, const auto& b) { return a.path < b.path; });

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
    r.m_dirStats.reserve(r.m_dirs.capacity());
    r.m_dirStats.push_back({total[0], table[0].mtime});
    qint32 kb = options.carry.folderKb;
    for (const std::uint32_t id : layout.order) {
        // A folder of 2 TiB or more overflows the size; the size shown is then the one computed before.
        NumberText::kilobytes(total[id], kb);
        r.m_dirs.push_back({table[id].name, nodeOf[parent[id]], kb});
        r.m_dirStats.push_back({total[id], table[id].mtime});
    }
    for (const std::uint32_t id : extra) {
        r.m_dirs.push_back({table[id].name, nodeOf[parent[id]], 0});
        r.m_dirStats.push_back({total[id], table[id].mtime});
    }
    r.m_carryOut.folderKb = kb;

    std::size_t fileTotal = 0;
    for (const auto& run : layout.runs)
        fileTotal += run.count;
    r.m_files.reserve(fileTotal);
    r.m_fileStats.reserve(fileTotal);
    for (const auto& run : layout.runs) {
        const std::vector<NameArena::Ref>& names = *files[run.worker];
        const std::vector<ScanResult::Stat>& stats = *fileStats[run.worker];
        for (std::uint64_t k = run.start; k < run.start + run.count; ++k) {
            const NameArena::Ref ref = names[size_t(k)];
            r.m_files.push_back({nodeOf[run.dir], std::uint32_t(ref), std::uint32_t(ref >> 32)});
            r.m_fileStats.push_back(stats[size_t(k)]);
        }
    }
    r.m_nameBytes = shared.nameBytes.load() + size_t(start.size());
    for (auto& w : workers) {
        std::vector<NameArena::Ref>().swap(w->files);
        std::vector<ScanResult::Stat>().swap(w->fileStats);
    }

    r.markLongPaths();
    r.m_walkDurationMs = clock.elapsed();
    return result;
}
