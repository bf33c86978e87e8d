// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/CatalogueRecords.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

class ScanSource;

// Every saved scan, searchable with its drive unplugged and comparable over time. Callers know only this
// interface, so the catalogue may live elsewhere (a database server) without touching them.
//
// Failures come back as values: an empty optional or false, with the reason in `*error` when one is given.
// One object is used by one thread at a time; several objects may open the same catalogue at once.
class Catalogue
{
public:
    // Told how far a long operation got; answering false stops it (a recording then leaves nothing behind).
    using Progress = std::function<bool(qint64 done, qint64 total)>;
    // Hits in batches, in the order found; answering false stops the search.
    using HitSink = std::function<bool(std::vector<FindHit>& batch)>;

    struct ImportOptions
    {
        QString encoding;       // empty: UTF-8 where the bytes are valid UTF-8, else Windows-1252
        qint64 scannedAtMs = 0; // 0: the date written in the listing
    };

    virtual ~Catalogue() = default;

    // Records one scan, all or nothing; returns its id. `info.id` is ignored.
    virtual std::optional<qint64> record(const ScanInfo& info, const ScanSource& source, QString* error = nullptr,
                                         const Progress& progress = {}) = 0;
    // Newest first.
    virtual std::optional<std::vector<ScanInfo>> scans(QString* error = nullptr) = 0;
    // Unknown ids are an error; nothing is removed then.
    virtual bool remove(const std::vector<qint64>& ids, QString* error = nullptr) = 0;
    virtual bool find(const FindQuery& query, const HitSink& sink, QString* error = nullptr) = 0;
    virtual std::optional<CatalogueDiff> diff(qint64 olderId, qint64 newerId, QString* error = nullptr) = 0;

    // Reads a set of listing files (any one of the four names the set, or all four) and records what they
    // hold: paths and folder sizes, no file sizes or dates.
    std::optional<qint64> importListing(const QStringList& files, const ImportOptions& options,
                                        QString* error = nullptr, const Progress& progress = {});

    // The two newest scans of `startPath` (native bytes), older first; empty when there are fewer than two.
    std::optional<std::pair<qint64, qint64>> lastTwoScans(const QByteArray& startPath, QString* error = nullptr);
};
