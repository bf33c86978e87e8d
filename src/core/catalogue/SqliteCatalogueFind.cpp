// SPDX-License-Identifier: GPL-3.0-or-later

// Searching and comparing recorded scans.

#include "SqliteCatalogue.h"

#include "catalogue/EntryBlock.h"
#include "catalogue/NameMatcher.h"
#include "catalogue/SqliteStatement.h"
#include "catalogue/StoredScanReader.h"

#include <algorithm>
#include <map>
#include <set>
#include <sqlite3.h>

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
    bool failed = false;

    bool fail()
    {
        stop = failed = true;
        return false;
    }
    bool cancelled() const { return query.cancel && query.cancel->load(std::memory_order_relaxed); }
    bool flush()
    {
        if (!batch.empty() && !sink(batch))
            stop = true;
        batch.clear();
        return !stop;
    }
};

namespace {

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

    const auto visit = [&](qint64 seq, EntryBlock& block) {
        if (state.cancelled()) {
            state.stop = true;
            return false;
        }
        for (int i = 0; i < block.count(); ++i) {
            const qint64 k = seq * EntryBlock::Size + i;
            if (k < first || k > last)
                continue;
            const bool folder = k <= scan->folderCount;
            QByteArray path;
            int nameOffset = 0;
            if (q.matchPath) {
                if (!reader.loadFolders(error))
                    return state.fail();
                path = folder ? reader.folderPath(std::uint32_t(k))
                              : reader.childPath(block.entry(i).parent, block.name(i), &nameOffset);
                if (folder)
                    nameOffset = int(path.size() - qsizetype(block.name(i).size()));
                if (!state.matcher.matches(std::string_view(path.constData(), size_t(path.size()))))
                    continue;
            } else if (!state.matcher.matches(block.name(i))) {
                continue;
            }
            const EntryBlock::Entry e = block.entry(i);
            if (!passesFilters(q, e.bytes, e.mtime))
                continue;
            if (path.isEmpty()) {
                if (!reader.loadFolders(error))
                    return state.fail();
                if (folder) {
                    path = reader.folderPath(std::uint32_t(k));
                    nameOffset = int(path.size() - qsizetype(e.name.size()));
                } else {
                    path = reader.childPath(e.parent, e.name, &nameOffset);
                }
            }
            FindHit hit;
            hit.scan = scan;
            hit.folder = folder;
            hit.path = std::move(path);
            hit.nameOffset = nameOffset;
            hit.bytes = e.bytes;
            hit.mtime = e.mtime;
            state.batch.push_back(std::move(hit));
            ++state.found;
            if (q.limit >= 0 && state.found >= q.limit) {
                state.flush();
                state.stop = true;
                return false;
            }
        }
        // Hand hits on block by block once they are many, so a window sees them arrive.
        if (state.batch.size() >= 256 && !state.flush())
            return false;
        return true;
    };

    const std::vector<std::uint32_t>& required = state.matcher.requiredGrams();
    if (q.matchPath || m_version < 2 || required.empty()) {
        return reader.forEachBlock(firstSeq, lastSeq, visit, error) && !state.failed;
    }

    // The blocks that hold every piece of the text; rarest first would be quicker still, but the lists are
    // read whole either way and intersecting is cheap next to reading blocks.
    std::vector<std::uint32_t> candidates, list;
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
    std::string bytes;
    EntryBlock block;
    for (const std::uint32_t seq : candidates) {
        if (seq < firstSeq || seq > lastSeq)
            continue;
        if (!reader.readBlock(seq, bytes, error) || !block.parse(bytes, reader.baseTime()))
            return false;
        if (!visit(seq, block))
            break;
    }
    return !state.failed;
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
