// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "scan/ScanResult.h"

#include <QByteArray>
#include <atomic>
#include <memory>

// Counters a window may read while a walk runs on another thread.
struct WalkProgress
{
    std::atomic<qint64> folders{0};
    std::atomic<qint64> files{0};
};

struct WalkOptions
{
    ScanResult::Flavour flavour = ScanResult::Flavour::Long;
    int threads = 0; // 0: one per core
    const std::atomic_bool* cancel = nullptr;
    WalkProgress* progress = nullptr;
    ScanResult::Carry carry; // what the window's previous scan left
};

// The walk behind "List All Folders & Files".
//
// Folders come out in post-order (a folder after everything below it), files in pre-order (a folder's files
// before those of its sub-folders), and the start folder's own files at the first folder without sub-folders
// reached before any folder is complete. The start folder itself is never listed. In the Short flavour the walk
// stops at 32,767 files; the folders that were open at that moment are still listed, with their full sizes.
//
// How: the folders are read by a pool of threads (one per core) into a tree, each folder sorted as it is read;
// then one pass over that tree lays out the lists in the order above and sums the folder sizes bottom-up, so no
// sub-tree is summed twice. Links are never followed and other file systems are not entered, so no loop is
// possible; nothing recurses, so depth is limited only by memory.
class FolderWalk
{
public:
    // `startPath` is the folder as native bytes, without a trailing separator unless it is a root.
    // Returns null only when cancelled.
    static std::unique_ptr<ScanResult> run(const QByteArray& startPath, const WalkOptions& options = {});

    // The order the walk takes a folder's entries in: by upper-case form, character by character, and by raw
    // bytes where those are equal. Exposed for tests.
    static bool lessByName(std::string_view a, std::string_view b);
};
