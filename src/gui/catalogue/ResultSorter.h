// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

class CatalogueResults;

// Orders the rows of a finished search by one column on a thread of its own, so sorting ten million hits never
// holds up the window. It sorts runs of rows and merges them, looking between steps whether it should stop: a
// new sort or a new search stops the old one within a few milliseconds.
class ResultSorter : public QObject
{
    Q_OBJECT
public:
    enum class Key { Name, Folder, Size, Modified, Volume, Scanned };

    explicit ResultSorter(QObject* parent = nullptr);
    ~ResultSorter() override;

    void start(std::shared_ptr<const CatalogueResults> results, Key key, bool descending);
    void stop();
    bool running() const { return m_thread.joinable() && !m_done; }

    // The row order for `results` by `key`; returns an empty vector when stopped.
    static std::vector<std::uint32_t> order(const CatalogueResults& results, Key key, bool descending,
                                            const std::atomic_bool* stop = nullptr);

signals:
    void sorted(std::shared_ptr<const CatalogueResults> results, std::shared_ptr<std::vector<std::uint32_t>> order);

private:
    std::thread m_thread;
    std::atomic_bool m_stop{false};
    std::atomic_bool m_done{true};
};
