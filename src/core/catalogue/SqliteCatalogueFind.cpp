// SPDX-License-Identifier: GPL-3.0-or-later

// Searching and comparing recorded scans.

#include "SqliteCatalogue.h"

#include "catalogue/EntryBlock.h"
#include "catalogue/NameMatcher.h"
#include "catalogue/SqliteStatement.h"
#include "catalogue/StoredScanReader.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <sqlite3.h>
#include <thread>

using namespace CatalogueRecords;

struct SqliteCatalogue::FindState
{
    FindState(const FindQuery& q, const HitSink& s) : query(q), sink(s), matcher(q.text, q.glob) {}

    const FindQuery& query;
    const HitSink& sink;
    NameMatcher matcher;
    std::vector<FindHit> batch;
    qint64 found = 0;
    bool stop = false;

    bool cancelled() const { return query.cancel && query.cancel->load(std::memory_order_relaxed); }
    bool flush()
    {
        if (!batch.empty() && !sink(batch))
            stop = true;
        batch.clear();
        return !stop;
    }
    // Counts the hits added to the batch since it held `before`; at the limit, hands on up to it and stops.
    bool counted(std::size_t before)
    {
        found += qint64(batch.size() - before);
        if (query.limit < 0 || found < query.limit)
            return true;
        batch.resize(batch.size() - size_t(found - query.limit));
        found = query.limit;
        flush();
        stop = true;
        return false;
    }
    // Hands on a run of hits that follows those in the batch. What the sink leaves of them stays in `hits`,
    // for the thread that made them to free.
    bool handOver(std::vector<FindHit>& hits)
    {
        if (!flush())
            return false;
        if (query.limit >= 0 && found + qint64(hits.size()) >= query.limit) {
            hits.resize(size_t(query.limit - found));
            stop = true;
        }
        found += qint64(hits.size());
        if (!hits.empty() && !sink(hits))
            stop = true;
        return !stop;
    }
};

namespace {

// From this many blocks on, a search spreads a scan's blocks over two threads, in chunks of about a sixteenth
// of them: big enough that handing a chunk over costs nothing next to searching it, at most MaxChunkBlocks so
// that hits keep streaming in.
constexpr qint64 MinBlocksOnTwoThreads = 32;
constexpr qint64 MaxChunkBlocks = 256;
// Once a scan has given this many hits, its folders' paths are laid out for the rest (see layOutPaths).
constexpr std::size_t LayOutPathsAfter = 8192;
// Chunks read ahead of the one to hand on next: enough to keep both threads busy, few enough to hold little.
constexpr std::size_t ChunksAhead = 8;

// The newest scan of each start folder on each volume; the rest is history.
std::vector<ScanInfo> newestOfEach(const std::vector<ScanInfo>& scans)
{
    std::set<std::pair<QString, QByteArray>> seen;
    std::vector<ScanInfo> out;
    for (const ScanInfo& s : scans) { // newest first
        const QString volume = s.volume.uuid.isEmpty()
                                   ? s.volume.label + QChar(0x1F) + QString::fromLatin1(s.volume.mountPoint.toHex())
                                   : s.volume.uuid;
        if (seen.insert({volume, s.startPath}).second)
            out.push_back(s);
    }
    return out;
}

bool passesFilters(const FindQuery& q, qint64 bytes, qint64 mtime)
{
    if (q.minSize != NoSize && (bytes == NoSize || bytes < q.minSize))
        return false;
    if (q.maxSize != NoSize && (bytes == NoSize || bytes > q.maxSize))
        return false;
    if (q.newerThan != NoTime && (mtime == NoTime || mtime < q.newerThan))
        return false;
    if (q.olderThan != NoTime && (mtime == NoTime || mtime >= q.olderThan))
        return false;
    return true;
}

void intersect(std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b)
{
    std::vector<std::uint32_t> out;
    std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(out));
    a.swap(out);
}

// Turns the blocks of one scan into hits. Two threads may share it: only the one that reads the database
// loads the folders.
struct BlockSearch
{
    enum class Collected { All, Failed, NeedsFolders };

    const FindQuery& q;
    const NameMatcher& matcher;
    const std::shared_ptr<const ScanInfo>& scan;
    StoredScanReader& reader;
    qint64 first, last; // the entries searched

    bool cancelled() const { return q.cancel && q.cancel->load(std::memory_order_relaxed); }

    QByteArray path(qint64 k, bool folder, std::uint32_t parent, std::string_view name, int* nameOffset) const
    {
        if (!folder)
            return reader.childPath(parent, name, nameOffset);
        QByteArray p = reader.folderPath(std::uint32_t(k));
        *nameOffset = int(p.size() - qsizetype(name.size()));
        return p;
    }

    // Appends the block's hits to `out`, in order. A hit needs the folders' paths: without `load`, the first
    // hit before they are loaded ends it with NeedsFolders.
    Collected collect(qint64 seq, EntryBlock& block, std::vector<FindHit>& out, bool load, QString* error) const
    {
        const auto folders = [&] {
            if (reader.foldersLoaded())
                return Collected::All;
            if (!load)
                return Collected::NeedsFolders;
            return reader.loadFolders(error) ? Collected::All : Collected::Failed;
        };
        for (int i = 0; i < block.count(); ++i) {
            const qint64 k = seq * EntryBlock::Size + i;
            if (k < first || k > last)
                continue;
            const bool folder = k <= scan->folderCount;
            QByteArray hitPath;
            int nameOffset = 0;
            if (q.matchPath) {
                if (const Collected c = folders(); c != Collected::All)
                    return c;
                hitPath = path(k, folder, block.entry(i).parent, block.name(i), &nameOffset);
                if (!matcher.matches(std::string_view(hitPath.constData(), size_t(hitPath.size()))))
                    continue;
            } else if (!matcher.matches(block.name(i))) {
                continue;
            }
            const EntryBlock::Entry e = block.entry(i);
            if (!passesFilters(q, e.bytes, e.mtime))
                continue;
            if (hitPath.isEmpty()) {
                if (const Collected c = folders(); c != Collected::All)
                    return c;
                hitPath = path(k, folder, e.parent, e.name, &nameOffset);
            }
            FindHit& hit = out.emplace_back();
            hit.scan = scan;
            hit.folder = folder;
            hit.path = std::move(hitPath);
            hit.nameOffset = nameOffset;
            hit.bytes = e.bytes;
            hit.mtime = e.mtime;
        }
        return Collected::All;
    }
};

// The stored bytes of the blocks a search reads, in order: a range of them, or the listed ones.
class BlockFeed
{
public:
    BlockFeed(sqlite3* db, const ScanInfo& scan, qint64 firstSeq, qint64 lastSeq,
              const std::vector<std::uint32_t>* listed)
        : m_db(db), m_scan(scan.id), m_listed(listed),
          m_query(db, listed ? "SELECT seq, data FROM block WHERE scan_id = ? AND seq = ?"
                             : "SELECT seq, data FROM block WHERE scan_id = ? AND seq BETWEEN ? AND ? ORDER BY seq")
    {
        if (!listed) {
            m_query.bind(1, m_scan);
            m_query.bind(2, firstSeq);
            m_query.bind(3, lastSeq);
        }
    }

    // The next block; its bytes stay valid until the next call. False at the end, or on an error, which is
    // then in `*error` and `failed()`.
    bool next(qint64& seq, std::string_view& bytes, QString* error)
    {
        if (m_listed) {
            if (m_next == m_listed->size())
                return false;
            seq = (*m_listed)[m_next++];
            m_query.reset(); // which clears the bindings too
            m_query.bind(1, m_scan);
            m_query.bind(2, seq);
            if (!m_query.step()) {
                m_failed = true;
                if (error)
                    *error = m_query.done() ? StoredScanReader::damaged(m_scan, seq)
                                            : QString::fromUtf8(sqlite3_errmsg(m_db));
                return false;
            }
        } else if (!m_query.step()) {
            m_failed = !m_query.done();
            if (m_failed && error)
                *error = QString::fromUtf8(sqlite3_errmsg(m_db));
            return false;
        }
        seq = m_query.integer(0);
        bytes = m_query.blob(1);
        return true;
    }
    bool failed() const { return m_failed; }

private:
    sqlite3* m_db;
    qint64 m_scan;
    const std::vector<std::uint32_t>* m_listed;
    SqliteStatement m_query;
    std::size_t m_next = 0;
    bool m_failed = false;
};

// A run of consecutive blocks, copied out of the database so another thread can search them.
struct Chunk
{
    std::string bytes;
    std::vector<std::pair<qint64, std::size_t>> blocks; // number, end of its bytes
    std::vector<FindHit> hits;
    qint64 damaged = -1;       // the block that would not parse
    bool needsFolders = false; // a hit came before the folders were loaded: searched again after
    bool done = false;
    bool byHelper = false; // the hits were made on the helper thread, which frees them too

    void clear()
    {
        bytes.clear();
        blocks.clear();
        hits.clear();
        damaged = -1;
        needsFolders = done = byHelper = false;
    }
};

void searchChunk(const BlockSearch& search, Chunk& chunk)
{
    EntryBlock block;
    std::size_t from = 0;
    for (const auto& [seq, end] : chunk.blocks) {
        if (search.cancelled())
            return;
        if (!block.parse(std::string_view(chunk.bytes).substr(from, end - from), search.reader.baseTime())) {
            chunk.damaged = seq;
            return;
        }
        if (search.collect(seq, block, chunk.hits, false, nullptr) == BlockSearch::Collected::NeedsFolders) {
            chunk.hits.clear();
            chunk.needsFolders = true;
            return;
        }
        from = end;
    }
}

// Searches the blocks of `feed` on this thread and one more, `chunkBlocks` blocks at a time. This thread
// reads the database (a connection serves one thread) and loads the folders when the first hit needs them,
// hands each chunk's hits to `deliver` in block order, and searches chunks too whenever it would otherwise
// wait: the hits come in the order one thread finds them. False on an error; `deliver` answers false to stop.
bool searchOnTwoThreads(BlockFeed& feed, const BlockSearch& search, std::size_t chunkBlocks,
                        const std::function<bool(std::vector<FindHit>&)>& deliver, QString* error)
{
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::unique_ptr<Chunk>> ahead;  // read and not handed on yet, in block order
    std::deque<Chunk*> waiting;                // of those, the ones no thread has taken yet
    std::vector<std::unique_ptr<Chunk>> spare; // handed on and cleared, kept for their memory
    // Handed on, with hits the helper made. It frees them itself: memory freed by the thread that took it
    // is a lock less for each of millions of hits.
    std::vector<std::unique_ptr<Chunk>> spent;
    bool closing = false;
    const auto take = [&]() -> Chunk* {
        if (waiting.empty())
            return nullptr;
        Chunk* c = waiting.front();
        waiting.pop_front();
        return c;
    };
    const auto searchAndMark = [&](Chunk* c, std::unique_lock<std::mutex>& lock, bool byHelper) {
        lock.unlock();
        searchChunk(search, *c);
        lock.lock();
        c->done = true;
        c->byHelper = byHelper;
        changed.notify_all();
    };
    // Whatever way this function is left, the helper is stopped and joined first.
    struct Helper
    {
        std::mutex& mutex;
        std::condition_variable& changed;
        bool& closing;
        std::thread thread;
        ~Helper()
        {
            {
                std::lock_guard lock(mutex);
                closing = true;
            }
            changed.notify_all();
            if (thread.joinable())
                thread.join();
        }
    } helper{mutex, changed, closing, {}};
    try {
        helper.thread = std::thread([&] {
            std::unique_lock lock(mutex);
            while (!closing) {
                if (!spent.empty()) {
                    std::unique_ptr<Chunk> c = std::move(spent.back());
                    spent.pop_back();
                    lock.unlock();
                    c->clear();
                    lock.lock();
                    spare.push_back(std::move(c));
                } else if (Chunk* c = take()) {
                    searchAndMark(c, lock, true);
                } else {
                    changed.wait(lock);
                }
            }
        });
    } catch (const std::system_error&) {
        // no thread to be had: this one searches every chunk itself
    }

    bool more = true;
    std::size_t handedOn = 0;
    std::unique_lock lock(mutex);
    for (;;) {
        if (!ahead.empty() && ahead.front()->done) {
            std::unique_ptr<Chunk> ready = std::move(ahead.front());
            ahead.pop_front();
            lock.unlock();
            if (ready->needsFolders) {
                if (!search.reader.loadFolders(error))
                    return false;
                ready->needsFolders = ready->byHelper = false;
                searchChunk(search, *ready);
            }
            handedOn += ready->hits.size();
            if (handedOn >= LayOutPathsAfter)
                search.reader.layOutPaths();
            if (!deliver(ready->hits))
                return true;
            if (ready->damaged >= 0) {
                if (error)
                    *error = StoredScanReader::damaged(search.scan->id, ready->damaged);
                return false;
            }
            if (!ready->byHelper)
                ready->clear();
            lock.lock();
            (ready->byHelper ? spent : spare).push_back(std::move(ready));
            changed.notify_all();
        } else if (search.cancelled()) {
            return true;
        } else if (more && ahead.size() < ChunksAhead) {
            std::unique_ptr<Chunk> chunk;
            if (spare.empty()) {
                chunk = std::make_unique<Chunk>();
            } else {
                chunk = std::move(spare.back());
                spare.pop_back();
            }
            lock.unlock();
            qint64 seq = 0;
            std::string_view bytes;
            while (chunk->blocks.size() < chunkBlocks && (more = feed.next(seq, bytes, error))) {
                chunk->bytes.append(bytes);
                chunk->blocks.emplace_back(seq, chunk->bytes.size());
            }
            if (feed.failed())
                return false;
            lock.lock();
            if (!chunk->blocks.empty()) {
                waiting.push_back(chunk.get());
                ahead.push_back(std::move(chunk));
                changed.notify_all();
            }
        } else if (ahead.empty()) {
            return true;
        } else if (Chunk* c = take()) {
            searchAndMark(c, lock, false);
        } else {
            changed.wait(lock, [&] { return ahead.front()->done; });
        }
    }
}

} // namespace

bool SqliteCatalogue::find(const FindQuery& query, const HitSink& sink, QString* error)
{
    std::lock_guard lock(m_mutex);
    // One read transaction: the search sees one state of the catalogue even while another program records.
    if (!exec("BEGIN", error))
        return false;
    const auto done = [&](bool ok) {
        exec("COMMIT", nullptr);
        return ok;
    };
    std::optional<std::vector<ScanInfo>> all = loadScans(error);
    if (!all)
        return done(false);
    std::vector<ScanInfo> targets;
    if (!query.scanIds.empty()) {
        for (const ScanInfo& s : *all)
            if (std::find(query.scanIds.begin(), query.scanIds.end(), s.id) != query.scanIds.end())
                targets.push_back(s);
    } else {
        for (const ScanInfo& s : *all)
            if (query.volume.isEmpty() || s.volume.label.compare(query.volume, Qt::CaseInsensitive) == 0 ||
                (!s.volume.uuid.isEmpty() && s.volume.uuid.compare(query.volume, Qt::CaseInsensitive) == 0))
                targets.push_back(s);
        if (!query.allScans)
            targets = newestOfEach(targets);
    }
    FindState state(query, sink);
    for (const ScanInfo& s : targets) {
        if (state.stop || state.cancelled())
            break;
        if (!findInScan(std::make_shared<const ScanInfo>(s), state, error))
            return done(false);
    }
    if (!state.stop)
        state.flush();
    return done(true);
}

bool SqliteCatalogue::findInScan(const std::shared_ptr<const ScanInfo>& scan, FindState& state, QString* error)
{
    const FindQuery& q = state.query;
    StoredScanReader reader(m_db, *scan);
    const qint64 first = q.kinds == FindQuery::Kinds::Files ? reader.firstFile() : 1;
    const qint64 last = q.kinds == FindQuery::Kinds::Folders ? scan->folderCount : reader.entryCount() - 1;
    if (first > last)
        return true;
    const qint64 firstSeq = first / EntryBlock::Size;
    const qint64 lastSeq = last / EntryBlock::Size;
    const BlockSearch search{q, state.matcher, scan, reader, first, last};

    const std::vector<std::uint32_t>& required = state.matcher.requiredGrams();
    const bool everyBlock = q.matchPath || m_version < 2 || required.empty();
    // Otherwise the blocks that hold every piece of the text; rarest first would be quicker still, but the
    // lists are read whole either way and intersecting is cheap next to reading blocks.
    std::vector<std::uint32_t> candidates, list;
    if (!everyBlock) {
        SqliteStatement postings(m_db, "SELECT blocks FROM gram WHERE scan_id = ? AND gram = ?");
        for (std::size_t g = 0; g < required.size(); ++g) {
            postings.bind(1, scan->id);
            postings.bind(2, qint64(required[g]));
            if (!postings.step())
                return true; // a piece no name has: nothing here
            EntryBlock::decodeAscending(postings.blob(0), g == 0 ? candidates : list);
            postings.reset();
            if (g > 0)
                intersect(candidates, list);
            if (candidates.empty())
                return true;
        }
        candidates.erase(std::remove_if(candidates.begin(), candidates.end(),
                                        [&](std::uint32_t seq) { return seq < firstSeq || seq > lastSeq; }),
                         candidates.end());
    }
    BlockFeed feed(m_db, *scan, firstSeq, lastSeq, everyBlock ? nullptr : &candidates);

    // Many blocks: two threads search them, which nearly halves the time of a short text's search over
    // millions of names.
    const qint64 blocks = everyBlock ? lastSeq - firstSeq + 1 : qint64(candidates.size());
    if (blocks >= MinBlocksOnTwoThreads && std::thread::hardware_concurrency() > 1) {
        const auto chunkBlocks = std::size_t(std::clamp(blocks / 16, qint64(2), MaxChunkBlocks));
        const bool ok = searchOnTwoThreads(
            feed, search, chunkBlocks, [&](std::vector<FindHit>& hits) { return state.handOver(hits); }, error);
        if (state.cancelled())
            state.stop = true;
        return ok;
    }

    qint64 seq = 0;
    std::string_view bytes;
    EntryBlock block;
    while (feed.next(seq, bytes, error)) {
        if (state.cancelled()) {
            state.stop = true;
            return true;
        }
        if (!block.parse(bytes, reader.baseTime())) {
            if (error)
                *error = StoredScanReader::damaged(scan->id, seq);
            return false;
        }
        const std::size_t before = state.batch.size();
        if (search.collect(seq, block, state.batch, true, error) == BlockSearch::Collected::Failed)
            return false;
        if (!state.counted(before))
            return true;
        // Hand hits on block by block once they are many, so a window sees them arrive.
        if (state.batch.size() >= 256 && !state.flush())
            return true;
    }
    return !feed.failed();
}

namespace {

struct DiffRecord
{
    std::string rel;
    bool folder;
    qint64 bytes;
    qint64 mtime;
    QByteArray path;
};

bool differs(qint64 a, qint64 b, qint64 unknown)
{
    return a != unknown && b != unknown && a != b;
}

} // namespace

std::optional<CatalogueDiff> SqliteCatalogue::diff(qint64 olderId, qint64 newerId, QString* error)
{
    std::lock_guard lock(m_mutex);
    if (!exec("BEGIN", error))
        return std::nullopt;
    const auto end = [&] { exec("COMMIT", nullptr); };
    CatalogueDiff out;
    std::vector<DiffRecord> sides[2];
    for (int side = 0; side < 2; ++side) {
        const std::optional<ScanInfo> s = scanById(side == 0 ? olderId : newerId, error);
        if (!s) {
            end();
            return std::nullopt;
        }
        (side == 0 ? out.older : out.newer) = *s;
        StoredScanReader reader(m_db, *s);
        if (!reader.loadFolders(error)) {
            end();
            return std::nullopt;
        }
        const qint64 prefix = s->startPath.size();
        std::vector<DiffRecord>& recs = sides[side];
        recs.reserve(size_t(reader.entryCount()));
        const bool ok = reader.forEachBlock(
            0, (reader.entryCount() - 1) / EntryBlock::Size,
            [&](qint64 seq, EntryBlock& block) {
                for (int i = 0; i < block.count(); ++i) {
                    const qint64 k = seq * EntryBlock::Size + i;
                    if (k == 0)
                        continue;
                    const EntryBlock::Entry e = block.entry(i);
                    const bool folder = k <= s->folderCount;
                    QByteArray path = folder ? reader.folderPath(std::uint32_t(k)) : reader.childPath(e.parent, e.name);
                    qint64 from = prefix;
                    if (from < path.size() && path.at(from) == s->separator)
                        ++from;
                    std::string rel(path.constData() + from, size_t(path.size() - from));
                    if (s->separator != '/')
                        std::replace(rel.begin(), rel.end(), s->separator, '/');
                    recs.push_back({std::move(rel), folder, e.bytes, e.mtime, std::move(path)});
                }
                return true;
            },
            error);
        if (!ok) {
            end();
            return std::nullopt;
        }
        std::sort(recs.begin(), recs.end(), [](const DiffRecord& a, const DiffRecord& b) {
            return a.folder != b.folder ? b.folder : a.rel < b.rel;
        });
    }
    end();

    std::vector<DiffItem> added, removed, changed, folders;
    const auto item = [](DiffItem::Change c, const DiffRecord* o, const DiffRecord* n) {
        DiffItem d;
        d.change = c;
        d.folder = (n ? n : o)->folder;
        d.path = (n ? n : o)->path;
        if (o) {
            d.oldBytes = o->bytes;
            d.oldMtime = o->mtime;
        }
        if (n) {
            d.newBytes = n->bytes;
            d.newMtime = n->mtime;
        }
        return d;
    };
    const std::vector<DiffRecord>& a = sides[0];
    const std::vector<DiffRecord>& b = sides[1];
    const auto less = [](const DiffRecord& x, const DiffRecord& y) {
        return x.folder != y.folder ? y.folder : x.rel < y.rel;
    };
    std::size_t i = 0, j = 0;
    while (i < a.size() || j < b.size()) {
        if (j == b.size() || (i < a.size() && less(a[i], b[j]))) {
            if (!a[i].folder)
                removed.push_back(item(DiffItem::Change::Removed, &a[i], nullptr));
            ++i;
        } else if (i == a.size() || less(b[j], a[i])) {
            if (!b[j].folder)
                added.push_back(item(DiffItem::Change::Added, nullptr, &b[j]));
            ++j;
        } else {
            if (a[i].folder) {
                if (differs(a[i].bytes, b[j].bytes, NoSize))
                    folders.push_back(item(DiffItem::Change::Changed, &a[i], &b[j]));
            } else if (differs(a[i].bytes, b[j].bytes, NoSize) || differs(a[i].mtime, b[j].mtime, NoTime)) {
                changed.push_back(item(DiffItem::Change::Changed, &a[i], &b[j]));
            }
            ++i;
            ++j;
        }
    }
    out.filesAdded = qint64(added.size());
    out.filesRemoved = qint64(removed.size());
    out.filesChanged = qint64(changed.size());
    out.foldersChanged = qint64(folders.size());
    out.bytesDelta = out.newer.totalBytes - out.older.totalBytes;
    for (auto* group : {&added, &removed, &changed, &folders})
        for (DiffItem& d : *group)
            out.items.push_back(std::move(d));
    return out;
}
