// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <atomic>
#include <climits>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

enum class DirState : std::uint8_t { Pending, Read, Unreadable, Vanished, NotEntered };

// How a folder too deep for a path is reached again: by its name below its parent's link. The topmost link of a
// chain names a whole path: the start folder's, which may itself be too long for one call, and a name below it.
struct FolderLink
{
    std::shared_ptr<const FolderLink> parent;
    std::string name;
};

// Where a folder is reached: by its path or, once its path grows too long, through its link; a deep folder may
// also hold a descriptor of its own while the walk can spare one.
struct FolderPlace
{
    int fd = -1;
    std::string path;
    std::shared_ptr<const FolderLink> link;
};

// Reads the entries of one folder at a time for the walk. Each platform has its own implementation file,
// chosen by the build; the walk itself knows no platform.
class FolderReader
{
public:
#ifdef _WIN32
    static constexpr char Separator = '\\';
#else
    static constexpr char Separator = '/';
#endif

    // What every reader of one walk shares about its start folder; settled by prepare() before any reader runs.
    struct Start
    {
        std::uint64_t device = 0;
        std::uint64_t mountId = 0;
        bool mountIds = false;   // the system gives each entry's mount ID
        bool mountsBelow = true; // a mount point lies below the start folder, or the mount table is unknown
        // Device and inode of each mount point's root below the start folder, for systems without mount IDs.
        std::set<std::pair<std::uint64_t, std::uint64_t>> mountRoots;
        // Descriptors that pending folders may still hold; the rest of the limit stays free for the readers'
        // own and for the rest of the program.
        std::atomic<long> spareDescriptors{0};
    };

    class Sink
    {
    public:
        virtual ~Sink() = default;
        // `mtime`: seconds since 1970 UTC, LLONG_MIN when not known (a folder's is not read here).
        virtual void add(std::string_view name, std::uint64_t size, std::int64_t mtime, bool dir, bool otherDevice) = 0;
        // The listed folder's own modification time, once it is open.
        virtual void folderTime(std::int64_t mtime) { (void)mtime; }
    };

    // The folder `path` names, absolute or relative to the current folder, as an absolute path without links,
    // "." or ".." in it, at any length; empty, with errno set, when no folder is there.
    static QByteArray absoluteFolder(const QByteArray& path);
    // The current folder as an absolute path, at any length; empty, with errno set, when it cannot be named.
    static QByteArray currentFolder();
#ifndef _WIN32
    // Opens `path` as open() would with `flags`, at any length.
    static int openPath(const char* path, int flags);
#endif

    // Raises the descriptor limit as far as it goes and settles `start` for a walk with `readers` readers.
    static void prepare(const QByteArray& startPath, int readers, Start& start);

    explicit FolderReader(Start& start);
    ~FolderReader();
    FolderReader(const FolderReader&) = delete;
    FolderReader& operator=(const FolderReader&) = delete;

    // Opens the folder at `place` (taking over its descriptor, if any) and hands each entry to `sink`.
    // Returns false, with `state` set, when the folder cannot be opened; true otherwise, with `state` set to
    // Unreadable when it opened but could not be listed. `error` is the system's error for an unreadable folder.
    bool list(const FolderPlace& place, bool isStart, DirState& state, int& error, Sink& sink);
    // Makes `child`, a folder entry of the folder last listed, ready to be read later.
    void openChild(const FolderPlace& parent, std::string_view name, FolderPlace& child, DirState& state, int& error);
    // Done with the folder last listed.
    void close();
    // Gives back what a folder that will not be read holds.
    void release(FolderPlace& place);

private:
    // Opens a deep folder again: below its parent when this reader opened that last, else from the top of its
    // chain of links.
    int reopen(const std::shared_ptr<const FolderLink>& link);
    int openChain(const FolderLink& link);

    Start& m_start;
    int m_fd = -1;
    bool m_fdWasSpare = false; // m_fd was held by a pending folder: closing it gives a spare descriptor back
    std::vector<char> m_dents;
    std::string m_chunk;
    // The parent last opened again, kept open: the folders of a wide folder come one after the other.
    std::shared_ptr<const FolderLink> m_parentLink;
    int m_parentFd = -1;
};
