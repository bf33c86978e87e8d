// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/Catalogue.h"

#include <QObject>
#include <QString>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

class CatalogueResults;

// Runs catalogue searches on a thread of its own, one at a time: a new query stops the one under way at its next
// block of entries, so typing never waits for an old search. Hits come back in batches, the first as soon as
// there is one and later ones at most every few dozen milliseconds, each tagged with the search it belongs to.
class CatalogueSearch : public QObject
{
    Q_OBJECT
public:
    using Opener = std::function<std::unique_ptr<Catalogue>(QString* error)>;

    explicit CatalogueSearch(Opener opener, QObject* parent = nullptr);
    ~CatalogueSearch() override;

    // Starts `query` (its cancel flag is the search's own) and returns its number.
    quint64 start(FindQuery query);
    void cancel();

signals:
    void hits(quint64 search, std::shared_ptr<CatalogueResults> batch);
    // `error` is empty when the search ran to its end or was stopped by a newer one.
    void finished(quint64 search, qint64 elapsedMs, const QString& error);

private:
    void run();
    void search(quint64 number, const FindQuery& query);

    Opener m_opener;
    std::unique_ptr<Catalogue> m_catalogue;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::optional<FindQuery> m_pending;
    quint64 m_pendingNumber = 0;
    quint64 m_lastNumber = 0;
    bool m_quit = false;
    std::atomic_bool m_cancel{false};
    std::thread m_thread;
};
