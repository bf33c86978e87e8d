// SPDX-License-Identifier: GPL-3.0-or-later

#include "RecordingQueue.h"

#include "catalogue/ScanRecorder.h"

RecordingQueue::RecordingQueue()
{
    // One at a time: recordings into one database would only wait for each other's write lock.
    m_pool.setMaxThreadCount(1);
    m_pool.setExpiryTimeout(-1);
}

RecordingQueue::~RecordingQueue()
{
    m_pool.waitForDone();
}

void RecordingQueue::add(std::shared_ptr<const ScanResult> result, const QString& listingName, Failed failed)
{
    m_pool.start([result = std::move(result), listingName, failed = std::move(failed)] {
        QString error;
        if (!ScanRecorder::recordInCollection({result.get(), 0, 0, listingName}, &error) && failed)
            failed(error);
    });
}
