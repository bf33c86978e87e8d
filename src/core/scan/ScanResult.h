// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "scan/NameArena.h"

#include <QByteArray>
#include <QString>
#include <climits>
#include <cstdint>
#include <string_view>
#include <vector>

// The outcome of one walk: the four parallel lists a browser window shows and the listings are written from.
// Entry i of the folder-path list and of the folder-name list describe the same folder, likewise for files.
//
// The result is compact so that whole drives fit: every name once in an arena, each folder a 16-byte node with
// its parent's index, each file a 12-byte entry; paths are built on demand. Node 0 is the start folder (its
// name is its full path); node i + 1 is folder entry i, so the folder lists are simply the nodes in order. A
// folder whose files were listed but that was never entered (the Short limit struck inside it) follows them.
class ScanResult
{
public:
    enum class List { FolderPaths, FolderNames, FilePaths, FileNames };
    enum class Flavour { Short, Long };

    static constexpr int ShortFileLimit = 32767;
    static constexpr qsizetype MaxSplitPathLength = 32767;
    static constexpr std::string_view NoFolderFound = "NO FOLDER FOUND";
    static QString limitMessage();

    // State a window keeps from one scan to the next (see carriedKb / carriedName).
    struct Carry
    {
        qint32 folderKb = 0;
        QByteArray lastName;
    };

    ScanResult() = default;
    ScanResult(const ScanResult&) = delete;
    ScanResult& operator=(const ScanResult&) = delete;

    Flavour flavour() const { return m_flavour; }
    const QByteArray& startPath() const { return m_startPath; }
    char separator() const { return m_separator; }

    // Number of entries in a list; the folder lists hold the one entry "NO FOLDER FOUND" when no folder was found.
    qint64 count(List list) const;
    qint64 folderCount() const { return m_folderCount; }
    qint64 fileCount() const { return qint64(m_files.size()); }
    bool noFolderFound() const { return folderCount() < 1; }
    bool limitReached() const { return m_limitReached; }

    // Size in bytes and modification time (seconds since 1970 UTC) of a folder or file; a folder's size is all
    // that is below it. What the walk could not read is NoSize / NoTime, as is everything of a result that was
    // built without them.
    struct Stat
    {
        std::uint64_t bytes;
        std::int64_t mtime;
    };
    static constexpr qint64 NoSize = -1;
    static constexpr qint64 NoTime = LLONG_MIN;

    // The folder tree as the walk left it: node 0 is the start folder, node i + 1 folder entry i, and any node
    // past folderCount() a folder whose files were listed but which was never entered. Each file is in a node.
    qint64 nodeCount() const { return qint64(m_dirs.size()); }
    std::uint32_t nodeParent(qint64 node) const { return m_dirs[size_t(node)].parent; }
    std::string_view nodeName(qint64 node) const
    {
        return node == 0 ? std::string_view() : m_names.get(m_dirs[size_t(node)].name);
    }
    qint64 nodeBytes(qint64 node) const
    {
        return size_t(node) < m_dirStats.size() ? qint64(m_dirStats[size_t(node)].bytes) : NoSize;
    }
    qint64 nodeMtime(qint64 node) const
    {
        return size_t(node) < m_dirStats.size() ? m_dirStats[size_t(node)].mtime : NoTime;
    }
    std::uint32_t fileNode(qint64 file) const { return m_files[size_t(file)].dir; }
    qint64 fileBytes(qint64 file) const
    {
        return size_t(file) < m_fileStats.size() ? qint64(m_fileStats[size_t(file)].bytes) : NoSize;
    }
    qint64 fileMtime(qint64 file) const
    {
        return size_t(file) < m_fileStats.size() ? m_fileStats[size_t(file)].mtime : NoTime;
    }

    // Entry `row` of `list` as native bytes, appended to `out` (the fast path of listings and searches).
    void appendEntry(List list, qint64 row, QByteArray& out) const;
    QByteArray entry(List list, qint64 row) const;
    // Entries [from, to) of `list`, each followed by `eol`: what a listing file is made of, with each folder's
    // path built once for all its files.
    void appendLines(List list, qint64 from, qint64 to, std::string_view eol, QByteArray& out) const;
    QString text(List list, qint64 row) const;

    // The parts of an entry, for callers that build texts of their own.
    std::string_view folderName(qint64 folder) const { return m_names.get(m_dirs[size_t(folder) + 1].name); }
    qint32 folderKb(qint64 folder) const { return m_dirs[size_t(folder) + 1].kb; }
    std::string_view fileName(qint64 file) const { return m_names.get(m_files[size_t(file)].name()); }
    QByteArray folderPath(qint64 folder) const { return dirPath(std::uint32_t(folder + 1)); }
    QByteArray filePath(qint64 file) const;

    // True when some name entries stand in for paths too long to take apart (see shownName).
    bool hasStaleNames() const { return !m_staleNames.empty(); }

    // A folder the walk found but could not read: its path as native bytes and the system's error number.
    struct UnreadableFolder
    {
        QByteArray path;
        int error;
    };
    // Sorted by path; the folders are listed all the same, with what could be read of them.
    const std::vector<UnreadableFolder>& unreadableFolders() const { return m_unreadable; }

    // What the next scan of the same window starts from: the size and name its last entry computation left.
    Carry carryOut() const { return m_carryOut; }

    // When the walk began (UTC) and how long it took, for the catalogue; 0 for a result built otherwise.
    qint64 walkStartedAtMs() const { return m_walkStartedAtMs; }
    qint64 walkDurationMs() const { return m_walkDurationMs; }

    // Heap bytes held in all; of those, the bytes of the entries and their index (names and the arena's unused
    // tail left out), and the bytes the names take in the arena, length prefixes included.
    std::size_t memoryUsage() const;
    std::size_t indexBytes() const;
    std::size_t nameBytes() const { return m_nameBytes; }

private:
    friend class FolderWalk;
    friend class ScanResultBuilder;

    struct DirNode
    {
        NameArena::Ref name;
        std::uint32_t parent;
        qint32 kb;
    };
    struct FileEntry
    {
        std::uint32_t dir;
        std::uint32_t nameLo;
        std::uint32_t nameHi;
        NameArena::Ref name() const { return (NameArena::Ref(nameHi) << 32) | nameLo; }
    };
    static_assert(sizeof(DirNode) == 16 && sizeof(FileEntry) == 12 && sizeof(Stat) == 16);

    QByteArray dirPath(std::uint32_t dir) const;
    void appendDirPath(std::uint32_t dir, QByteArray& out) const;
    // The name shown for an entry of the name lists: its own, or for a path too long to take apart, the one
    // shown before it. `seq` counts folder entries first, then file entries.
    std::string_view shownName(std::uint64_t seq) const;
    // Finds the entries whose paths are too long to take apart and sets the carry for the next scan.
    void markLongPaths();

    Flavour m_flavour = Flavour::Long;
    char m_separator = '/';
    QByteArray m_startPath;
    NameArena m_names;
    std::vector<DirNode> m_dirs;
    std::vector<FileEntry> m_files;
    std::vector<Stat> m_dirStats;  // beside m_dirs, when the walk made the result
    std::vector<Stat> m_fileStats; // beside m_files, likewise
    // Entries whose path is longer than 32,767 characters, with the entry whose name stands in for theirs
    // (UINT64_MAX: the name carried in from the previous scan). Sorted by entry; almost always empty.
    std::vector<std::pair<std::uint64_t, std::uint64_t>> m_staleNames;
    QByteArray m_carriedName;
    std::vector<UnreadableFolder> m_unreadable;
    Carry m_carryOut;
    qint64 m_folderCount = 0;
    qint64 m_walkStartedAtMs = 0;
    qint64 m_walkDurationMs = 0;
    bool m_limitReached = false;
    std::size_t m_nameBytes = 0;
};
