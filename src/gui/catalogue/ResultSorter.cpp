// SPDX-License-Identifier: GPL-3.0-or-later

#include "ResultSorter.h"

#include "CatalogueResults.h"

#include <QMetaObject>
#include <algorithm>
#include <numeric>

namespace {

constexpr std::size_t Run = 1 << 15;

// Names compare as people expect from a file list: letters without regard to case, then by their bytes.
int compareText(std::string_view a, std::string_view b)
{
    const std::size_t n = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < n; ++i) {
        unsigned char x = static_cast<unsigned char>(a[i]);
        unsigned char y = static_cast<unsigned char>(b[i]);
        if (x >= 'A' && x <= 'Z')
            x = x - 'A' + 'a';
        if (y >= 'A' && y <= 'Z')
            y = y - 'A' + 'a';
        if (x != y)
            return x < y ? -1 : 1;
    }
    if (a.size() != b.size())
        return a.size() < b.size() ? -1 : 1;
    return a.compare(b) < 0 ? -1 : (a == b ? 0 : 1);
}

int compareNumber(qint64 a, qint64 b)
{
    return a < b ? -1 : (a > b ? 1 : 0);
}

int compareRows(const CatalogueResults& r, ResultSorter::Key key, std::uint32_t a, std::uint32_t b)
{
    int c = 0;
    switch (key) {
    case ResultSorter::Key::Name:
        c = compareText(r.name(a), r.name(b));
        if (c == 0 && !r.sameFolder(a, b))
            c = compareText(r.folder(a), r.folder(b));
        break;
    case ResultSorter::Key::Folder:
        if (!r.sameFolder(a, b))
            c = compareText(r.folder(a), r.folder(b));
        if (c == 0)
            c = compareText(r.name(a), r.name(b));
        break;
    case ResultSorter::Key::Size:
        c = compareNumber(r.bytes(a), r.bytes(b));
        break;
    case ResultSorter::Key::Modified:
        c = compareNumber(r.mtime(a), r.mtime(b));
        break;
    case ResultSorter::Key::Volume:
        c = r.scan(a).volume.label.compare(r.scan(b).volume.label, Qt::CaseInsensitive);
        break;
    case ResultSorter::Key::Scanned:
        c = compareNumber(r.scan(a).scannedAtMs, r.scan(b).scannedAtMs);
        break;
    }
    return c;
}

} // namespace

ResultSorter::ResultSorter(QObject* parent) : QObject(parent) {}

ResultSorter::~ResultSorter()
{
    stop();
}

void ResultSorter::stop()
{
    m_stop = true;
    if (m_thread.joinable())
        m_thread.join();
    m_stop = false;
}

void ResultSorter::start(std::shared_ptr<const CatalogueResults> results, Key key, bool descending)
{
    stop();
    m_done = false;
    m_thread = std::thread([this, results, key, descending] {
        auto sortedRows = std::make_shared<std::vector<std::uint32_t>>(order(*results, key, descending, &m_stop));
        m_done = true;
        if (m_stop || (sortedRows->empty() && !results->empty()))
            return;
        QMetaObject::invokeMethod(
            this, [this, results, sortedRows] { emit sorted(results, sortedRows); }, Qt::QueuedConnection);
    });
}

std::vector<std::uint32_t> ResultSorter::order(const CatalogueResults& results, Key key, bool descending,
                                               const std::atomic_bool* stop)
{
    const std::size_t n = results.size();
    std::vector<std::uint32_t> rows(n);
    std::iota(rows.begin(), rows.end(), 0u);
    const auto less = [&](std::uint32_t a, std::uint32_t b) {
        const int c = compareRows(results, key, a, b);
        // Equal keys keep the order they were found in, either way round, so a sort is repeatable.
        if (c == 0)
            return a < b;
        return descending ? c > 0 : c < 0;
    };
    const auto stopped = [stop] { return stop && stop->load(std::memory_order_relaxed); };
    for (std::size_t at = 0; at < n; at += Run) {
        if (stopped())
            return {};
        std::sort(rows.begin() + qsizetype(at), rows.begin() + qsizetype(std::min(n, at + Run)), less);
    }
    std::vector<std::uint32_t> merged(n);
    for (std::size_t width = Run; width < n; width *= 2) {
        for (std::size_t at = 0; at < n; at += 2 * width) {
            const std::size_t mid = std::min(n, at + width), end = std::min(n, at + 2 * width);
            auto a = rows.begin() + qsizetype(at);
            const auto aEnd = rows.begin() + qsizetype(mid);
            auto b = aEnd;
            const auto bEnd = rows.begin() + qsizetype(end);
            auto out = merged.begin() + qsizetype(at);
            // Merged by hand, so a stop is seen every few thousand rows even in the last, largest merge.
            std::size_t step = 0;
            while (a != aEnd && b != bEnd) {
                if ((++step & 0xFFF) == 0 && stopped())
                    return {};
                *out++ = less(*b, *a) ? *b++ : *a++;
            }
            out = std::copy(a, aEnd, out);
            std::copy(b, bEnd, out);
        }
        rows.swap(merged);
    }
    return rows;
}
