// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "common/RuntimeError.h"

#include <QByteArray>
#include <functional>

// Copies of listed items into the collection folder. Each file is copied beside its target and renamed over it
// at the end, so no half-written file is ever left under the target's name. Paths are native bytes.
namespace ItemCopy {

// Copies one file to `target`, replacing a file already there; the run-time error number, or 0. A failure leaves
// the old target exactly as it was; a source that is the target itself, or a link to it, is left alone and counts
// as copied. The copy keeps the source's modification time and permissions, without set-user-ID, set-group-ID or
// sticky bits.
RuntimeError::Number copyFile(const QByteArray& source, const QByteArray& target);

// True when `path` names a file (not a folder) that exists.
bool fileExists(const QByteArray& path);

enum class Reply { Yes, YesToAll, No, Cancel };

// What a folder copy asks and tells while it runs; the window shows a progress window and its questions.
struct TreeCallbacks
{
    // A file of that name is in the way: replace it?
    std::function<Reply(const QByteArray& target)> confirmReplace;
    // `done` of `total` files copied; `current` is being copied now. Returning false cancels.
    std::function<bool(qint64 done, qint64 total, const QByteArray& current)> progress;
    // Something could not be copied (with its run-time error number); the copy goes on with the rest.
    std::function<void(const QByteArray& path, RuntimeError::Number error)> problem;
};

struct TreeOutcome
{
    qint64 copied = 0;
    qint64 skipped = 0; // answered No, or could not be copied
    bool cancelled = false;
};

// Copies the folder `source`, with everything under it, into `destination` (as destination/name-of-source),
// merging with what is there. Links are copied as links; pipes, sockets and devices are not copied, nor opened.
// The copied folders keep their modification times.
TreeOutcome copyTree(const QByteArray& source, const QByteArray& destination, const TreeCallbacks& callbacks);

} // namespace ItemCopy
