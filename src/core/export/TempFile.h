// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

// The hidden files (".quillary-" and six letters or digits) that saves and copies write beside their targets
// before renaming them into place. Each is locked while it is being written, so a save can tell one that a
// running process still holds from one that a killed process left behind, and remove only the latter.
namespace TempFile {

#ifndef _WIN32
// Makes a new empty file in `folder`, locked for as long as the returned descriptor stays open, and remembers
// its name for removeTracked(). Returns the descriptor, or -1 with errno set; `path` receives the name.
int create(const QByteArray& folder, QByteArray& path);

// A name create() gave has been renamed into place or removed; it is no longer this process's to remove.
void forget(const QByteArray& path);

// Removes from `folder` the files of this naming pattern that changed before now and that no process holds
// locked: what saves and copies killed part-way left behind. Returns how many went.
int removeStale(const QByteArray& folder);

// Removes every file create() made that has not been forgotten yet; create() makes none after it. Safe in a
// handler of SIGTERM, SIGINT or SIGHUP, which create() holds back while it makes a file.
void removeTracked();
#endif

} // namespace TempFile
