// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QPointer>
#include <QThread>
#include <functional>
#include <memory>
#include <optional>

// Runs `work` on a thread of its own and hands its answer to `done` on `context`'s thread; `done` is dropped
// when `context` is gone by then. Whoever starts one waits for the thread before the data `work` uses goes.
template <typename T>
QPointer<QThread> runInBackground(QObject* context, std::function<T()> work, std::function<void(T)> done)
{
    auto answer = std::make_shared<std::optional<T>>();
    QThread* thread = QThread::create([work = std::move(work), answer] { *answer = work(); });
    QObject::connect(thread, &QThread::finished, context, [answer, done = std::move(done)] {
        if (*answer)
            done(std::move(**answer));
    });
    QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    thread->start();
    return thread;
}
