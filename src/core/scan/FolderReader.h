// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <climits>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

enum class DirState : std::uint8_t { Pending, Read, Unreadable, Vanished, NotEntered };

// Where a folder is reached: by its path, or, when it lies too deep for a path, by an open descriptor.
struct FolderPlace
{
    int fd = -1;
    std::string path;
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

    // What every reader of one walk needs to know about its start folder; settled by prepare() before any
    // reader runs, read-only afterwards.
    struct Start
    {
        std::uint64_t device = 0;
        bool mountsKnown = false;                    // the mount table could be read
        std::unordered_set<std::string> mountPoints; // mount points below the start folder
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

    static void prepare(const QByteArray& startPath, Start& start);
    // Gives back what a folder that will not be read holds.
    static void release(FolderPlace& place);

    explicit FolderReader(const Start& start);
    ~FolderReader();
    FolderReader(const FolderReader&) = delete;
    FolderReader& operator=(const FolderReader&) = delete;

    // Opens the folder at `place` (taking over its descriptor, if any) and hands each entry to `sink`.
    // Returns false, with `state` set, when the folder cannot be opened; true otherwise, with `state` set to
    // Unreadable when the folder opened but could not be listed.
    bool list(const FolderPlace& place, bool isStart, DirState& state, Sink& sink);
    // Makes `child`, an entry of the folder last listed, ready to be read later.
    void openChild(const FolderPlace& parent, std::string_view name, FolderPlace& child, DirState& state);
    // Done with the folder last listed.
    void close();

private:
    const Start& m_start;
    int m_fd = -1;
#ifdef __linux__
    std::vector<char> m_dents;
#endif
};
