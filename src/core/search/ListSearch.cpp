// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListSearch.h"

#include "common/NativeText.h"

#include <algorithm>
#include <atomic>
#include <thread>

namespace {

struct Needle
{
    explicit Needle(const QString& text) : upper(NativeText::upperUnits(text))
    {
        ascii = true;
        for (const QChar c : upper)
            if (c.unicode() >= 0x80)
                ascii = false;
        if (ascii)
            bytes = upper.toLatin1().toStdString();
    }
    bool test(std::string_view item) const
    {
        if (NativeText::isAscii(item))
            return ascii && NativeText::containsAsciiUpper(item, bytes);
        // Upper-casing may turn a non-ASCII letter into an ASCII one (dotless i, long s), so these go the long way.
        return NativeText::upperUnits(NativeText::toDisplay(item)).contains(upper);
    }
    QString upper;
    std::string bytes;
    bool ascii;
};

} // namespace

ScanResult::List ListSearch::searchedList(SearchResult::Kind kind)
{
    return kind == SearchResult::Kind::Folders ? ScanResult::List::FolderNames : ScanResult::List::FileNames;
}

bool ListSearch::matches(std::string_view item, const QString& text)
{
    return !text.isEmpty() && Needle(text).test(item);
}

SearchResult ListSearch::run(std::shared_ptr<const ScanResult> scan, SearchResult::Kind kind, const QString& text,
                             int threads)
{
    SearchResult result;
    result.kind = kind;
    result.source = std::move(scan);
    if (text.isEmpty() || !result.source)
        return result;
    const ScanResult& r = *result.source;
    const ScanResult::List list = searchedList(kind);
    const qint64 total = r.count(list);
    const Needle needle(text);

    // Fixed-size chunks, each searched by whichever thread is free, then joined in list order.
    constexpr qint64 Chunk = 1 << 16;
    const qint64 chunks = (total + Chunk - 1) / Chunk;
    std::vector<std::vector<std::uint32_t>> found(size_t(std::max<qint64>(chunks, 0)));
    std::atomic<qint64> next{0};
    const auto work = [&] {
        QByteArray scratch;
        for (qint64 c; (c = next.fetch_add(1)) < chunks;) {
            std::vector<std::uint32_t>& out = found[size_t(c)];
            const qint64 end = std::min(total, (c + 1) * Chunk);
            for (qint64 row = c * Chunk; row < end; ++row) {
                std::string_view item;
                if (list == ScanResult::List::FileNames && !r.hasStaleNames()) {
                    item = r.fileName(row);
                } else {
                    scratch.clear();
                    r.appendEntry(list, row, scratch);
                    item = std::string_view(scratch.constData(), size_t(scratch.size()));
                }
                if (needle.test(item))
                    out.push_back(std::uint32_t(row));
            }
        }
    };
    int n = threads > 0 ? threads : int(std::thread::hardware_concurrency());
    n = int(std::clamp<qint64>(std::min<qint64>(n, chunks), 1, 16));
    std::vector<std::thread> pool;
    for (int t = 1; t < n; ++t)
        pool.emplace_back(work);
    work();
    for (std::thread& t : pool)
        t.join();

    std::size_t matches = 0;
    for (const auto& part : found)
        matches += part.size();
    result.rows.reserve(matches);
    for (const auto& part : found)
        result.rows.insert(result.rows.end(), part.begin(), part.end());
    return result;
}

QString ListSearch::resultLine(qint64 serial, const QString& itemText)
{
    return QStringLiteral("# ") + QStringLiteral("%1").arg(serial, 5, 10, QLatin1Char('0')) + QStringLiteral(". ") +
           itemText;
}

QString ListSearch::countCaption(SearchResult::Kind kind, qint64 count)
{
    return (kind == SearchResult::Kind::Folders ? QStringLiteral(" Folders Found: ")
                                                : QStringLiteral(" Files Found: ")) +
           QString::number(count) + QLatin1Char(' ');
}

QString SearchResult::line(qint64 i) const
{
    return ListSearch::resultLine(serial(i), source->text(ListSearch::searchedList(kind), qint64(rows[size_t(i)])));
}

QString SearchResult::countCaption() const
{
    return ListSearch::countCaption(kind, count());
}
