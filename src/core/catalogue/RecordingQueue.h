// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "scan/ScanResult.h"

#include <QString>
#include <QThreadPool>
#include <functional>
#include <memory>

// Records saved scans in the collection folder's catalogue one after another on a thread of its own, so a window
// stays responsive while a scan of millions of entries is written. Each recording is one transaction: a program
// ended half-way leaves the catalogue as it was. Destroying the queue waits for the recordings already queued.
class RecordingQueue
{
public:
    // Called on the queue's thread when a recording fails, with the reason.
    using Failed = std::function<void(const QString& reason)>;

    RecordingQueue();
    ~RecordingQueue();
    RecordingQueue(const RecordingQueue&) = delete;
    RecordingQueue& operator=(const RecordingQueue&) = delete;

    // The result is kept alive until it is recorded; the window may start a new scan meanwhile.
    void add(std::shared_ptr<const ScanResult> result, const QString& listingName, Failed failed);

private:
    QThreadPool m_pool;
};
