// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "scan/ScanResult.h"

#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

// The outcome of one search: the rows of the searched list that matched, in list order. It keeps the scan it
// searched, because results outlive a new scan and still show what they found.
struct SearchResult
{
    enum class Kind { Folders, Files };

    std::shared_ptr<const ScanResult> source;
    Kind kind = Kind::Files;
    std::vector<std::uint32_t> rows;

    qint64 count() const { return qint64(rows.size()); }
    qint64 serial(qint64 i) const { return qint64(rows[size_t(i)]) + 1; }
    // "# 00042. " + the item's text as its list shows it.
    QString line(qint64 i) const;
    // " Folders Found: 3 " / " Files Found: 3 ".
    QString countCaption() const;
};

// Searching the folder-name or file-name list for a piece of text: an item matches when the upper-cased text
// occurs anywhere in its upper-cased list text. No wildcards, no word boundaries.
class ListSearch
{
public:
    static ScanResult::List searchedList(SearchResult::Kind kind);

    // An empty text finds nothing. Runs on one thread per core for long lists.
    static SearchResult run(std::shared_ptr<const ScanResult> scan, SearchResult::Kind kind, const QString& text,
                            int threads = 0);

    static bool matches(std::string_view item, const QString& upperText);

    static QString resultLine(qint64 serial, const QString& itemText);
    static QString countCaption(SearchResult::Kind kind, qint64 count);
};
