// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>
#include <climits>
#include <cstdint>
#include <string_view>

// What a recording reads: the folders and files of one scan, by index. Folder 0 is the start folder (its name
// is not used); every other folder and every file names its parent folder by index. A walk's result and an
// imported listing set both present themselves this way, so the catalogue stores them alike.
class ScanSource
{
public:
    struct Entry
    {
        std::uint32_t parent = 0;
        std::string_view name; // valid until the next call on the source
        qint64 bytes = -1;
        qint64 mtime = LLONG_MIN;
    };

    virtual ~ScanSource() = default;
    // Counting the start folder.
    virtual qint64 folderCount() const = 0;
    virtual qint64 fileCount() const = 0;
    virtual Entry folder(qint64 index) const = 0;
    virtual Entry file(qint64 index) const = 0;
    // True when two threads may read entries at once (names then stay valid as long as the source): a recording
    // then builds its search index on a thread of its own beside the one that writes the entries.
    virtual bool readsConcurrently() const { return false; }
};
