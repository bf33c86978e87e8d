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

// Reads one recorded scan back: its blocks by number or by range, and its entries' paths.
// Entry numbers: 0 the start folder, 1..folderCount the folders, then the files.
class StoredScanReader
{
public:
    StoredScanReader(sqlite3* db, const ScanInfo& scan) : m_db(db), m_scan(scan) {}

    qint64 firstFile() const { return m_scan.folderCount + 1; }
    qint64 entryCount() const { return firstFile() + m_scan.fileCount; }
    qint64 baseTime() const { return m_scan.scannedAtMs / 1000; }

    // What a search or a read says of a block that is missing or will not parse.
    static QString damaged(qint64 scan, qint64 seq);
    // Calls `visit` with every block in [first, last] that exists, in order; `visit` answers false to stop.
    bool forEachBlock(qint64 first, qint64 last, const std::function<bool(qint64 seq, EntryBlock&)>& visit,
                      QString* error);

    // Reads the folder blocks once: names, parents and the length of every path. The paths below need it; from
    // then on the reader only reads, so several threads may build paths at once, and another thread may ask
    // `foldersLoaded()` while this one loads them.
    bool loadFolders(QString* error);
    // After loadFolders: every folder's path laid out once, a few milliseconds for 100,000 folders, after which
    // a path costs one copy instead of a walk up its chain of folders; worth it once hits are many. Other
    // threads may be building paths meanwhile.
    void layOutPaths();
    bool foldersLoaded() const { return m_foldersLoaded.load(std::memory_order_acquire); }
    // The full path of folder `index` (0: the start folder).
    QByteArray folderPath(std::uint32_t index) const;
    // `name` appended to folder `parent`'s path with the separator between them (a root has its own).
    QByteArray childPath(std::uint32_t parent, std::string_view name, int* nameOffset = nullptr) const;

private:
    // A path is put together from the names up its chain of folders, straight into a string of the right size:
    // one allocation per hit, and nothing built for folders no hit is in. Or copied from m_paths.
    struct Folder
    {
        std::size_t nameStart = 0;
        std::uint32_t nameLength = 0;
        std::uint32_t parent = 0;
        std::uint32_t pathLength = 0;
        bool separatorBefore = false; // between the parent's path and the name
        char lastByte = 0;            // of the path
    };
    // Writes folder `index`'s path at `out`, which has room for it: copied when laid out, else walked.
    void writePath(std::uint32_t index, char* out) const;
    void walkPath(std::uint32_t index, char* out) const;

    sqlite3* m_db;
    const ScanInfo& m_scan;
    std::atomic_bool m_foldersLoaded = false;
    std::string m_names; // the folders' names back to back
    std::vector<Folder> m_folders;
    std::vector<std::uint32_t> m_order; // the folders, parents before children
    // From layOutPaths: every folder's path back to back.
    std::string m_paths;
    std::vector<std::size_t> m_pathStart;
    std::atomic_bool m_laidOut = false;
};
