// SPDX-License-Identifier: GPL-3.0-or-later

#include "ScanJob.h"

#include <QMetaObject>

ScanJob::ScanJob(QObject* parent) : QObject(parent) {}

ScanJob::~ScanJob()
{
    cancel();
}

void ScanJob::start(const QByteArray& startPath, WalkOptions options)
{
    cancel();
    auto state = std::make_shared<State>();
    m_state = state;
    options.cancel = &state->cancel;
    options.progress = &state->progress;
    m_thread = std::thread([this, state, startPath, options] {
        std::shared_ptr<const ScanResult> result = FolderWalk::run(startPath, options);
        // Queued to this object: if it is destroyed first, Qt drops the call with it. The destructor joins this
        // thread, so `this` is valid while the call is posted.
        QMetaObject::invokeMethod(
            this, [this, state, result = std::move(result)]() mutable { delivered(state, std::move(result)); },
            Qt::QueuedConnection);
    });
}

void ScanJob::cancel()
{
    if (m_state)
        m_state->cancel = true;
    stopThread();
}

void ScanJob::stopThread()
{
    if (m_thread.joinable())
        m_thread.join();
}

void ScanJob::delivered(const std::shared_ptr<State>& state, std::shared_ptr<const ScanResult> result)
{
    // A call from a walk that was cancelled, or replaced by a newer one, arrives late; it is not ours to report.
    if (state != m_state || state->cancel || !result)
        return;
    stopThread();
    emit finished(std::move(result));
}
