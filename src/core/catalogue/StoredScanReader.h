// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/CatalogueRecords.h"
#include "catalogue/EntryBlock.h"

#include <QByteArray>
#include <atomic>
#include <functional>
#include <string>
#include <vector>

struct sqlite3;

// Reads one recorded scan back: its blocks by number or by range, and its folders' paths, built once each.
// Entry numbers: 0 the start folder, 1..folderCount the folders, then the files.
class StoredScanReader
{
public:
    StoredScanReader(sqlite3* db, const ScanInfo& scan) : m_db(db), m_scan(scan) {}

    qint64 firstFile() const { return m_scan.folderCount + 1; }
    qint64 entryCount() const { return firstFile() + m_scan.fileCount; }
    qint64 baseTime() const { return m_scan.scannedAtMs / 1000; }

    // Calls `visit` with every block in [first, last] that exists, in order; `visit` answers false to stop.
    bool forEachBlock(qint64 first, qint64 last, const std::function<bool(qint64 seq, EntryBlock&)>& visit,
                      QString* error);

    // Reads the folder blocks and builds every folder's path, once; the paths below are valid after it. From
    // then on the reader only reads, so several threads may build paths at once; another thread may also ask
    // `foldersLoaded()` while this one loads them.
    bool loadFolders(QString* error);
    bool foldersLoaded() const { return m_foldersLoaded.load(std::memory_order_acquire); }
    // The full path of folder `index` (0: the start folder).
    std::string_view folderPath(std::uint32_t index) const;
    // `name` appended to folder `parent`'s path with the separator between them (a root has its own), in one
    // allocation: a search makes one of these per hit.
    QByteArray childPath(std::uint32_t parent, std::string_view name, int* nameOffset = nullptr) const;

private:
    sqlite3* m_db;
    const ScanInfo& m_scan;
    std::atomic_bool m_foldersLoaded = false;
    // Every folder's path back to back in one string, so millions of paths cost no allocation each.
    std::string m_paths;
    std::vector<std::size_t> m_pathStart;
    std::vector<std::uint32_t> m_pathLength;
};
