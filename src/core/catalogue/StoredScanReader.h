// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/CatalogueRecords.h"
#include "catalogue/EntryBlock.h"

#include <QByteArray>
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
    // One block; false with an error when it is missing or damaged.
    bool readBlock(qint64 seq, std::string& bytes, QString* error);

    // The full path of folder `index` (0: the start folder); reads the folder blocks on first use.
    bool loadFolders(QString* error);
    const QByteArray& folderPath(std::uint32_t index);
    // `name` appended to folder `parent`'s path with the separator between them (a root has its own).
    QByteArray childPath(std::uint32_t parent, std::string_view name, int* nameOffset = nullptr);

private:
    sqlite3* m_db;
    const ScanInfo& m_scan;
    bool m_foldersLoaded = false;
    std::vector<std::uint32_t> m_parents;
    std::vector<std::string> m_names;
    std::vector<QByteArray> m_paths;
    std::vector<bool> m_pathKnown;
};
