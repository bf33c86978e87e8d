// SPDX-License-Identifier: GPL-3.0-or-later

#include "SqliteCatalogue.h"

#include "catalogue/EntryBlock.h"
#include "catalogue/NameMatcher.h"
#include "catalogue/ScanSource.h"
#include "catalogue/SqliteStatement.h"
#include "catalogue/StoredScanReader.h"
#include "export/CollectionFolder.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <atomic>
#include <sqlite3.h>
#include <system_error>
#include <thread>

namespace {

// Each step takes the schema from the version before it to its own; a catalogue is brought up step by step.
const char* const Migrations[] = {
    // 1: scans and their entries.
    "CREATE TABLE scan("
    " id INTEGER PRIMARY KEY, scanned_at INTEGER NOT NULL, duration_ms INTEGER NOT NULL,"
    " start_path BLOB NOT NULL, separator TEXT NOT NULL,"
    " mount_point BLOB NOT NULL, label TEXT NOT NULL, fs_type TEXT NOT NULL, uuid TEXT NOT NULL,"
    " type_code INTEGER NOT NULL, capacity INTEGER NOT NULL, free INTEGER NOT NULL,"
    " short INTEGER NOT NULL, complete INTEGER NOT NULL, imported INTEGER NOT NULL,"
    " folder_count INTEGER NOT NULL, file_count INTEGER NOT NULL, total_bytes INTEGER NOT NULL,"
    " listing_name TEXT NOT NULL);"
    "CREATE INDEX scan_by_folder ON scan(start_path, scanned_at);"
    "CREATE TABLE block(scan_id INTEGER NOT NULL, seq INTEGER NOT NULL, data BLOB NOT NULL,"
    " PRIMARY KEY(scan_id, seq));",
    // 2: the trigram index over the names; filled for the scans already there by SqliteCatalogue::migrate.
    "CREATE TABLE gram(scan_id INTEGER NOT NULL, gram INTEGER NOT NULL, blocks BLOB NOT NULL,"
    " PRIMARY KEY(scan_id, gram));",
};
static_assert(std::size(Migrations) == SqliteCatalogue::SchemaVersion);

// The pieces of the names block by block, written out as one posting list per piece.
class GramCollector
{
public:
    // Every name of `source` but the start folder's, which is never a hit, in the blocks the entries are stored
    // in; false when `stop` was set before the end.
    bool collect(const ScanSource& source, const std::atomic_bool& stop)
    {
        const qint64 folders = source.folderCount();
        const qint64 total = folders + source.fileCount();
        for (qint64 k = 1; k < total; ++k) {
            if (k % EntryBlock::Size == 0) {
                endBlock(k / EntryBlock::Size - 1);
                if (stop.load(std::memory_order_relaxed))
                    return false;
            }
            addName(k < folders ? source.folder(k).name : source.file(k - folders).name);
        }
        endBlock((total - 1) / EntryBlock::Size);
        finish();
        return true;
    }

    void addName(std::string_view name)
    {
        NameMatcher::fold(name, m_folded);
        m_nameGrams.clear();
        NameMatcher::appendGrams(m_folded, m_nameGrams);
        // A block's distinct pieces, kept apart by one bit per possible piece rather than by sorting each block.
        for (const std::uint32_t g : m_nameGrams) {
            std::uint64_t& word = m_inBlock[g >> 6];
            const std::uint64_t bit = std::uint64_t(1) << (g & 63);
            if (!(word & bit)) {
                word |= bit;
                m_blockGrams.push_back(g);
            }
        }
    }
    void endBlock(qint64 seq)
    {
        for (const std::uint32_t g : m_blockGrams) {
            m_pairs.push_back((std::uint64_t(g) << 32) | std::uint64_t(seq));
            m_inBlock[g >> 6] = 0;
        }
        m_blockGrams.clear();
        m_sorted = false;
    }
    // Grouped by piece, each piece's blocks ascending; the order of the pieces does not matter. In place, as
    // the pairs are the largest thing a recording holds (about eight per entry): one pass deals them out to
    // 4,096 runs by a mix of their piece's bits (names share their first letters, so the top bits alone would
    // fill a few runs), then each run, small enough to stay in the cache, is sorted on its own.
    void finish()
    {
        if (m_sorted)
            return;
        constexpr std::size_t Buckets = std::size_t(1) << 12;
        // Pieces are 24 bits above the 32 bits of the block number.
        const auto run = [](std::uint64_t p) { return std::size_t(((p >> 44) ^ (p >> 32)) & (Buckets - 1)); };
        std::vector<std::size_t> end(Buckets, 0);
        for (const std::uint64_t p : m_pairs)
            ++end[run(p)];
        std::vector<std::size_t> next(Buckets, 0);
        for (std::size_t d = 1; d < Buckets; ++d)
            next[d] = next[d - 1] + end[d - 1];
        for (std::size_t d = 0; d < Buckets; ++d)
            end[d] += next[d];
        const std::vector<std::size_t> begin = next;
        for (std::size_t d = 0; d < Buckets; ++d) {
            while (next[d] < end[d]) {
                std::uint64_t v = m_pairs[next[d]];
                for (std::size_t b = run(v); b != d; b = run(v))
                    std::swap(v, m_pairs[next[b]++]);
                m_pairs[next[d]++] = v;
            }
        }
        for (std::size_t d = 0; d < Buckets; ++d)
            std::sort(m_pairs.begin() + std::ptrdiff_t(begin[d]), m_pairs.begin() + std::ptrdiff_t(end[d]));
        m_sorted = true;
    }

    bool write(sqlite3* db, qint64 scanId)
    {
        finish();
        SqliteStatement insert(db, "INSERT INTO gram(scan_id, gram, blocks) VALUES (?, ?, ?)");
        std::vector<std::uint32_t> blocks;
        std::string encoded;
        for (std::size_t i = 0; i < m_pairs.size();) {
            const std::uint32_t g = std::uint32_t(m_pairs[i] >> 32);
            blocks.clear();
            for (; i < m_pairs.size() && std::uint32_t(m_pairs[i] >> 32) == g; ++i)
                blocks.push_back(std::uint32_t(m_pairs[i]));
            EntryBlock::encodeAscending(blocks, encoded);
            insert.bind(1, scanId);
            insert.bind(2, qint64(g));
            insert.bindBlob(3, encoded);
            insert.step();
            if (!insert.done())
                return false;
            insert.reset();
        }
        m_pairs.clear();
        return true;
    }

private:
    std::string m_folded;
    std::vector<std::uint32_t> m_nameGrams;
    std::vector<std::uint64_t> m_inBlock = std::vector<std::uint64_t>(std::size_t(1) << 18); // 2^24 pieces
    std::vector<std::uint32_t> m_blockGrams;
    std::vector<std::uint64_t> m_pairs;
    bool m_sorted = true;
};

void setError(QString* error, const QString& text)
{
    if (error)
        *error = text;
}

} // namespace

std::unique_ptr<SqliteCatalogue> SqliteCatalogue::open(const QString& path, QString* error, int schemaVersion)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    sqlite3* db = nullptr;
    const QByteArray native = QFile::encodeName(path);
    if (sqlite3_open_v2(native.constData(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                        nullptr) != SQLITE_OK) {
        setError(error, QStringLiteral("Cannot open the catalogue %1: %2")
                            .arg(path, db ? QString::fromUtf8(sqlite3_errmsg(db)) : QStringLiteral("out of memory")));
        sqlite3_close(db);
        return nullptr;
    }
    std::unique_ptr<SqliteCatalogue> c(new SqliteCatalogue(db));
    // Another program recording a scan holds the write lock for a few seconds at most.
    sqlite3_busy_timeout(db, 10000);
    // WAL: searches go on while a scan is recorded; NORMAL sync keeps every commit whole after a crash.
    if (!c->exec("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; PRAGMA cache_size=-32768;", error) ||
        !c->migrate(std::clamp(schemaVersion, 1, SchemaVersion), error))
        return nullptr;
    return c;
}

bool SqliteCatalogue::setCacheSize(int kib, QString* error)
{
    return exec(("PRAGMA cache_size=-" + std::to_string(std::max(kib, 1))).c_str(), error);
}

QString SqliteCatalogue::defaultPath()
{
    return CollectionFolder().filePath(QStringLiteral("catalogue.sqlite"));
}

SqliteCatalogue::~SqliteCatalogue()
{
    sqlite3_close(m_db);
}

QString SqliteCatalogue::lastError() const
{
    return QString::fromUtf8(sqlite3_errmsg(m_db));
}

bool SqliteCatalogue::exec(const char* sql, QString* error)
{
    char* message = nullptr;
    if (sqlite3_exec(m_db, sql, nullptr, nullptr, &message) == SQLITE_OK)
        return true;
    setError(error, QStringLiteral("Catalogue: %1").arg(QString::fromUtf8(message ? message : "unknown error")));
    sqlite3_free(message);
    return false;
}

bool SqliteCatalogue::migrate(int target, QString* error)
{
    SqliteStatement q(m_db, "PRAGMA user_version");
    m_version = q.step() ? int(q.integer(0)) : 0;
    if (m_version > SchemaVersion) {
        setError(
            error,
            QStringLiteral("The catalogue was written by a newer version of Quillary (schema %1).").arg(m_version));
        return false;
    }
    while (m_version < target) {
        const int next = m_version + 1;
        if (!exec("BEGIN IMMEDIATE", error))
            return false;
        bool ok = exec(Migrations[next - 1], error);
        if (ok && next == 2) {
            SqliteStatement ids(m_db, "SELECT id FROM scan");
            std::vector<qint64> all;
            while (ids.step())
                all.push_back(ids.integer(0));
            for (const qint64 id : all)
                ok = ok && indexScan(id, error);
        }
        const std::string setVersion = "PRAGMA user_version=" + std::to_string(next);
        ok = ok && exec(setVersion.c_str(), error) && exec("COMMIT", error);
        if (!ok) {
            exec("ROLLBACK", nullptr);
            return false;
        }
        m_version = next;
    }
    return true;
}

bool SqliteCatalogue::indexScan(qint64 scanId, QString* error)
{
    const std::optional<ScanInfo> info = scanById(scanId, error);
    if (!info)
        return false;
    StoredScanReader reader(m_db, *info);
    GramCollector grams;
    const bool ok = reader.forEachBlock(
        0, (reader.entryCount() - 1) / EntryBlock::Size,
        [&](qint64 seq, EntryBlock& block) {
            for (const std::string_view name : block.names())
                grams.addName(name);
            grams.endBlock(seq);
            return true;
        },
        error);
    if (ok && !grams.write(m_db, scanId)) {
        setError(error, lastError());
        return false;
    }
    return ok;
}

std::optional<qint64> SqliteCatalogue::record(const ScanInfo& info, const ScanSource& source, QString* error,
                                              const Progress& progress)
{
    std::lock_guard lock(m_mutex);
    if (!exec("BEGIN IMMEDIATE", error))
        return std::nullopt;
    const auto fail = [&](const QString& why) -> std::optional<qint64> {
        setError(error, why);
        exec("ROLLBACK", nullptr);
        return std::nullopt;
    };

    const qint64 folders = source.folderCount();
    const qint64 files = source.fileCount();
    if (folders < 1)
        return fail(QStringLiteral("Catalogue: a scan without its start folder cannot be recorded."));
    qint64 totalBytes = info.totalBytes;
    if (totalBytes <= 0) {
        const qint64 rootBytes = source.folder(0).bytes;
        totalBytes = rootBytes > 0 ? rootBytes : 0;
    }
    {
        SqliteStatement ins(m_db, "INSERT INTO scan(scanned_at, duration_ms, start_path, separator, mount_point,"
                                  " label, fs_type, uuid, type_code, capacity, free, short, complete, imported,"
                                  " folder_count, file_count, total_bytes, listing_name)"
                                  " VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
        ins.bind(1, info.scannedAtMs);
        ins.bind(2, info.durationMs);
        ins.bindBlob(3, std::string_view(info.startPath.constData(), size_t(info.startPath.size())));
        ins.bind(4, QString(QLatin1Char(info.separator)));
        ins.bindBlob(5, std::string_view(info.volume.mountPoint.constData(), size_t(info.volume.mountPoint.size())));
        ins.bind(6, info.volume.label);
        ins.bind(7, info.volume.fsType);
        ins.bind(8, info.volume.uuid);
        ins.bind(9, qint64(info.volume.typeCode));
        ins.bind(10, info.volume.capacity);
        ins.bind(11, info.volume.freeBytes);
        ins.bind(12, qint64(info.shortFlavour));
        ins.bind(13, qint64(info.complete));
        ins.bind(14, qint64(info.imported));
        ins.bind(15, folders - 1);
        ins.bind(16, files);
        ins.bind(17, totalBytes);
        ins.bind(18, info.listingName);
        ins.step();
        if (!ins.done())
            return fail(QStringLiteral("Catalogue: %1").arg(lastError()));
    }
    const qint64 scanId = sqlite3_last_insert_rowid(m_db);

    const qint64 total = folders + files;
    const bool indexed = m_version >= 2;
    EntryBlock::Writer writer(info.scannedAtMs / 1000);
    GramCollector grams;
    // Where the source allows it, the search index is built on a second thread while this one writes the
    // entries: the two take about as long, so the recording takes half the time. Whatever way this function
    // is left, that thread is stopped and joined first.
    struct SideThread
    {
        std::atomic_bool stop = false;
        bool done = false;
        std::thread thread;
        ~SideThread()
        {
            stop = true;
            if (thread.joinable())
                thread.join();
        }
    } side;
    bool aside = indexed && source.readsConcurrently();
    if (aside) {
        try {
            side.thread = std::thread([&] { side.done = grams.collect(source, side.stop); });
        } catch (const std::system_error&) {
            aside = false; // no thread to be had: the index is built here, as for other sources
        }
    }

    SqliteStatement insert(m_db, "INSERT INTO block(scan_id, seq, data) VALUES (?, ?, ?)");
    std::string bytes;
    qint64 seq = 0;
    for (qint64 k = 0; k < total; ++k) {
        const ScanSource::Entry e = k < folders ? source.folder(k) : source.file(k - folders);
        writer.add(e.parent, k == 0 ? std::string_view() : e.name, e.bytes, e.mtime);
        if (indexed && !aside && k > 0) // the start folder is never a hit
            grams.addName(e.name);
        if (writer.count() == EntryBlock::Size || k + 1 == total) {
            writer.finish(bytes);
            insert.bind(1, scanId);
            insert.bind(2, seq);
            insert.bindBlob(3, bytes);
            insert.step();
            if (!insert.done())
                return fail(QStringLiteral("Catalogue: %1").arg(lastError()));
            insert.reset();
            if (indexed && !aside)
                grams.endBlock(seq);
            ++seq;
            if (progress && !progress(k + 1, total))
                return fail(QStringLiteral("Catalogue: recording cancelled."));
        }
    }
    if (aside) {
        side.thread.join();
        if (!side.done)
            return fail(QStringLiteral("Catalogue: recording cancelled."));
    }
    if (indexed && !grams.write(m_db, scanId))
        return fail(QStringLiteral("Catalogue: %1").arg(lastError()));
    if (!exec("COMMIT", error)) {
        exec("ROLLBACK", nullptr);
        return std::nullopt;
    }
    return scanId;
}

namespace {

ScanInfo scanFromRow(const SqliteStatement& q)
{
    ScanInfo s;
    s.id = q.integer(0);
    s.scannedAtMs = q.integer(1);
    s.durationMs = q.integer(2);
    s.startPath = q.bytes(3);
    const QString sep = q.text(4);
    s.separator = sep.isEmpty() ? '/' : char(sep.at(0).toLatin1());
    s.volume.mountPoint = q.bytes(5);
    s.volume.label = q.text(6);
    s.volume.fsType = q.text(7);
    s.volume.uuid = q.text(8);
    s.volume.typeCode = int(q.integer(9));
    s.volume.capacity = q.integer(10);
    s.volume.freeBytes = q.integer(11);
    s.shortFlavour = q.integer(12) != 0;
    s.complete = q.integer(13) != 0;
    s.imported = q.integer(14) != 0;
    s.folderCount = q.integer(15);
    s.fileCount = q.integer(16);
    s.totalBytes = q.integer(17);
    s.listingName = q.text(18);
    return s;
}

constexpr const char* ScanColumns =
    "SELECT id, scanned_at, duration_ms, start_path, separator, mount_point, label, fs_type, uuid, type_code,"
    " capacity, free, short, complete, imported, folder_count, file_count, total_bytes, listing_name FROM scan";

} // namespace

std::optional<ScanInfo> SqliteCatalogue::scanById(qint64 id, QString* error)
{
    SqliteStatement q(m_db, std::string(ScanColumns) + " WHERE id = ?");
    q.bind(1, id);
    if (!q.step()) {
        setError(error, QStringLiteral("There is no scan %1 in the catalogue.").arg(id));
        return std::nullopt;
    }
    return scanFromRow(q);
}

std::optional<std::vector<ScanInfo>> SqliteCatalogue::scans(QString* error)
{
    std::lock_guard lock(m_mutex);
    return loadScans(error);
}

std::optional<std::vector<ScanInfo>> SqliteCatalogue::loadScans(QString* error)
{
    SqliteStatement q(m_db, std::string(ScanColumns) + " ORDER BY scanned_at DESC, id DESC");
    std::vector<ScanInfo> out;
    while (q.step())
        out.push_back(scanFromRow(q));
    if (!q.done()) {
        setError(error, QStringLiteral("Catalogue: %1").arg(lastError()));
        return std::nullopt;
    }
    return out;
}

bool SqliteCatalogue::remove(const std::vector<qint64>& ids, QString* error)
{
    std::lock_guard lock(m_mutex);
    if (!exec("BEGIN IMMEDIATE", error))
        return false;
    for (const qint64 id : ids) {
        if (!scanById(id, error)) {
            exec("ROLLBACK", nullptr);
            return false;
        }
        for (const char* sql : {"DELETE FROM block WHERE scan_id = ?", "DELETE FROM scan WHERE id = ?",
                                "DELETE FROM gram WHERE scan_id = ?"}) {
            if (m_version < 2 && std::string_view(sql).find("gram") != std::string_view::npos)
                continue;
            SqliteStatement del(m_db, sql);
            del.bind(1, id);
            del.step();
            if (!del.done()) {
                setError(error, QStringLiteral("Catalogue: %1").arg(lastError()));
                exec("ROLLBACK", nullptr);
                return false;
            }
        }
    }
    return exec("COMMIT", error);
}
