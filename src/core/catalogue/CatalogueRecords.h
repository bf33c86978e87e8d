// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>
#include <atomic>
#include <climits>
#include <cstdint>
#include <memory>
#include <vector>

// The plain records the catalogue takes and gives. Sizes are bytes, times are seconds since 1970 UTC (scan
// times milliseconds); what is not known is NoSize / NoTime, as in an imported listing, which has paths and
// folder sizes only.
namespace CatalogueRecords {
constexpr qint64 NoSize = -1;
constexpr qint64 NoTime = LLONG_MIN;
} // namespace CatalogueRecords

// The volume a scan was taken from, as it was at that moment.
struct VolumeInfo
{
    QByteArray mountPoint; // native bytes; "C:\" for a listing written on Windows
    QString label;
    QString fsType;
    QString uuid;     // the file system's UUID where the system has one (/dev/disk/by-uuid), else empty
    int typeCode = 0; // 0 Unknown, 1 Removable, 2 Fixed, 3 Network, 4 CD/DVD, 5 RAM Disk
    qint64 capacity = CatalogueRecords::NoSize;
    qint64 freeBytes = CatalogueRecords::NoSize;
};

struct ScanInfo
{
    qint64 id = 0;
    qint64 scannedAtMs = 0; // UTC
    qint64 durationMs = 0;
    QByteArray startPath; // native bytes, no trailing separator unless a root
    char separator = '/';
    VolumeInfo volume;
    bool shortFlavour = false;
    bool complete = true;   // false when a Short scan stopped at its file limit
    bool imported = false;  // from listing files: no file sizes, no dates
    qint64 folderCount = 0; // below the start folder
    qint64 fileCount = 0;
    qint64 totalBytes = 0;
    QString listingName; // NAME of the listing set it was saved as, when it came from a save
};

// Which entries `Catalogue::find` returns. Text and glob match names, or whole paths with `matchPath`, in the
// windows' case rule: each UTF-16 unit upper-cased on its own (so "ß" stays "ß"); bytes that are not UTF-8
// match only themselves.
struct FindQuery
{
    enum class Kinds { Both, Files, Folders };

    QString text; // a substring, or with `glob` a whole-name pattern of * and ?; empty matches everything
    bool glob = false;
    bool matchPath = false;
    Kinds kinds = Kinds::Both;
    qint64 minSize = CatalogueRecords::NoSize;
    qint64 maxSize = CatalogueRecords::NoSize;
    qint64 newerThan = CatalogueRecords::NoTime; // mtime >= this; entries without a date never pass a date filter
    qint64 olderThan = CatalogueRecords::NoTime; // mtime < this
    QString volume;                              // a label (any case) or a UUID; empty: every volume
    bool allScans = false;                       // false: only the newest scan of each start folder on each volume
    std::vector<qint64> scanIds;                 // when not empty, exactly these scans
    qint64 limit = -1;                           // at most this many hits; negative: no limit
    const std::atomic_bool* cancel = nullptr;
};

struct FindHit
{
    std::shared_ptr<const ScanInfo> scan;
    bool folder = false;
    QByteArray path;    // full path, native bytes
    int nameOffset = 0; // the name is path.mid(nameOffset), the folder path.left(max(nameOffset - 1, 0))
    qint64 bytes = CatalogueRecords::NoSize;
    qint64 mtime = CatalogueRecords::NoTime;

    QByteArray name() const { return path.mid(nameOffset); }
};

struct DiffItem
{
    enum class Change { Added, Removed, Changed };

    Change change = Change::Changed;
    bool folder = false;
    QByteArray path; // full path in the newer scan (the older one for a removed entry)
    qint64 oldBytes = CatalogueRecords::NoSize;
    qint64 newBytes = CatalogueRecords::NoSize;
    qint64 oldMtime = CatalogueRecords::NoTime;
    qint64 newMtime = CatalogueRecords::NoTime;
};

// Two scans compared by the paths below their start folders: files added, removed and changed (size or
// modification time), and folders whose size changed.
struct CatalogueDiff
{
    ScanInfo older;
    ScanInfo newer;
    std::vector<DiffItem> items; // files added, removed, changed, then folders, each group by path
    qint64 filesAdded = 0;
    qint64 filesRemoved = 0;
    qint64 filesChanged = 0;
    qint64 foldersChanged = 0;
    qint64 bytesDelta = 0; // newer total minus older total
};
