// SPDX-License-Identifier: GPL-3.0-or-later

#include "CatalogueSearch.h"

#include "CatalogueResults.h"

#include <QElapsedTimer>
#include <QMetaObject>

namespace {
// Hits wait at most this long before they are handed over, so a slow search still shows them as they come.
constexpr qint64 HandOverMs = 40;
} // namespace

CatalogueSearch::CatalogueSearch(Opener opener, QObject* parent)
    : QObject(parent), m_opener(std::move(opener)), m_thread([this] { run(); })
{
}

CatalogueSearch::~CatalogueSearch()
{
    {
        std::lock_guard lock(m_mutex);
        m_quit = true;
        m_cancel = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

quint64 CatalogueSearch::start(FindQuery query)
{
    quint64 number = 0;
    {
        std::lock_guard lock(m_mutex);
        number = ++m_lastNumber;
        m_pending = std::move(query);
        m_pendingNumber = number;
        m_cancel = true; // the one under way, if any
    }
    m_wake.notify_one();
    return number;
}

void CatalogueSearch::cancel()
{
    std::lock_guard lock(m_mutex);
    m_pending.reset();
    m_cancel = true;
}

void CatalogueSearch::run()
{
    for (;;) {
        FindQuery query;
        quint64 number = 0;
        {
            std::unique_lock lock(m_mutex);
            m_wake.wait(lock, [this] { return m_quit || m_pending; });
            if (m_quit)
                return;
            query = std::move(*m_pending);
            number = m_pendingNumber;
            m_pending.reset();
            m_cancel = false;
        }
        search(number, query);
    }
}

void CatalogueSearch::search(quint64 number, const FindQuery& given)
{
    QElapsedTimer clock;
    clock.start();
    QString error;
    if (!m_catalogue)
        m_catalogue = m_opener(&error);

    const auto deliver = [this, number](std::shared_ptr<CatalogueResults> batch) {
        QMetaObject::invokeMethod(
            this, [this, number, batch] { emit hits(number, batch); }, Qt::QueuedConnection);
    };
    if (m_catalogue) {
        FindQuery query = given;
        query.cancel = &m_cancel;
        auto batch = std::make_shared<CatalogueResults>();
        QElapsedTimer sinceHandOver;
        sinceHandOver.start();
        bool first = true;
        const bool ok = m_catalogue->find(
            query,
            [&](std::vector<FindHit>& found) {
                for (const FindHit& hit : found)
                    batch->add(hit);
                if (first || sinceHandOver.elapsed() >= HandOverMs) {
                    deliver(std::exchange(batch, std::make_shared<CatalogueResults>()));
                    sinceHandOver.restart();
                    first = false;
                }
                return !m_cancel.load(std::memory_order_relaxed);
            },
            &error);
        if (!batch->empty() && !m_cancel)
            deliver(batch);
        if (!ok && error.isEmpty())
            error = tr("The search failed.");
        if (!ok && !error.isEmpty())
            m_catalogue.reset(); // opened afresh for the next search
    }
    if (m_cancel)
        error.clear();
    const qint64 elapsed = clock.elapsed();
    QMetaObject::invokeMethod(
        this, [this, number, elapsed, error] { emit finished(number, elapsed, error); }, Qt::QueuedConnection);
}
