// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/Catalogue.h"

#include <memory>
#include <mutex>
#include <string>

struct sqlite3;
class SqliteStatement;

// The catalogue as one SQLite file, `catalogue.sqlite` in the collection folder, in WAL mode so searches read
// while a scan is being recorded.
//
// A scan is a row of `scan` and its entries: the start folder, its folders, then its files, numbered in that
// order and stored EntryBlock::Size to a row of `block`. `gram` holds, for every three-byte piece of the
// upper-cased names, the blocks that contain it (ascending block numbers as differences), so a search reads
// only the blocks that can hold a match. Texts shorter than three bytes, path and pattern searches without a
// long enough literal read every block of the scans searched; many blocks are searched on two threads.
class SqliteCatalogue : public Catalogue
{
public:
    static constexpr int SchemaVersion = 2;

    // Opens or creates the catalogue at `path` and brings its schema up to date. `schemaVersion` below the
    // current one leaves it at that version (tests make old catalogues this way).
    static std::unique_ptr<SqliteCatalogue> open(const QString& path, QString* error = nullptr,
                                                 int schemaVersion = SchemaVersion);
    // catalogue.sqlite in the collection folder.
    static QString defaultPath();

    ~SqliteCatalogue() override;

    int schemaVersion() const { return m_version; }
    // Keeps at most `kib` KiB of the catalogue's pages in memory (32 MiB as opened). A search reads each block
    // once, so a connection kept open only to search gains little from many.
    bool setCacheSize(int kib, QString* error = nullptr);

    std::optional<qint64> record(const ScanInfo& info, const ScanSource& source, QString* error = nullptr,
                                 const Progress& progress = {}) override;
    std::optional<std::vector<ScanInfo>> scans(QString* error = nullptr) override;
    bool remove(const std::vector<qint64>& ids, QString* error = nullptr) override;
    bool find(const FindQuery& query, const HitSink& sink, QString* error = nullptr) override;
    std::optional<CatalogueDiff> diff(qint64 olderId, qint64 newerId, QString* error = nullptr) override;

private:
    explicit SqliteCatalogue(sqlite3* db) : m_db(db) {}
    bool exec(const char* sql, QString* error);
    bool migrate(int target, QString* error);
    bool indexScan(qint64 scanId, QString* error);
    QString lastError() const;
    std::optional<ScanInfo> scanById(qint64 id, QString* error);
    std::optional<std::vector<ScanInfo>> loadScans(QString* error);
    struct FindState;
    bool findInScan(const std::shared_ptr<const ScanInfo>& scan, FindState& state, QString* error);

    sqlite3* m_db = nullptr;
    int m_version = 0;
    std::mutex m_mutex;
};
