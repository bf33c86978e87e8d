// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "scan/FolderWalk.h"

#include <QObject>
#include <atomic>
#include <memory>
#include <thread>

// One walk at a time on a thread of its own, so the window that started it keeps painting. The result comes
// back on the thread that owns the job, through its event loop.
class ScanJob : public QObject
{
    Q_OBJECT
public:
    explicit ScanJob(QObject* parent = nullptr);
    // Cancels a walk still running and waits for its thread, which notices within one folder.
    ~ScanJob() override;

    // `options.cancel` and `options.progress` are the job's own; whatever the caller put there is ignored.
    void start(const QByteArray& startPath, WalkOptions options);
    // The walk's result is dropped; finished() is not emitted for it.
    void cancel();
    bool running() const { return m_thread.joinable(); }

    qint64 foldersFound() const { return m_state ? m_state->progress.folders.load() : 0; }
    qint64 filesFound() const { return m_state ? m_state->progress.files.load() : 0; }

signals:
    void finished(std::shared_ptr<const ScanResult> result);

private:
    // Shared with the walk thread, which may outlive a cancel by a few folders.
    struct State
    {
        std::atomic_bool cancel{false};
        WalkProgress progress;
    };

    void delivered(const std::shared_ptr<State>& state, std::shared_ptr<const ScanResult> result);
    void stopThread();

    std::shared_ptr<State> m_state;
    std::thread m_thread;
};
