// SPDX-License-Identifier: GPL-3.0-or-later

#include "Catalogue.h"

#include "catalogue/ListingImport.h"

std::optional<qint64> Catalogue::importListing(const QStringList& files, const ImportOptions& options, QString* error,
                                               const Progress& progress)
{
    const std::unique_ptr<ListingImport> listing = ListingImport::load(files, options.encoding, error);
    if (!listing)
        return std::nullopt;
    ScanInfo info = listing->info();
    if (options.scannedAtMs)
        info.scannedAtMs = options.scannedAtMs;
    return record(info, *listing, error, progress);
}

std::optional<std::pair<qint64, qint64>> Catalogue::lastTwoScans(const QByteArray& startPath, QString* error)
{
    const std::optional<std::vector<ScanInfo>> all = scans(error);
    if (!all)
        return std::nullopt;
    std::vector<qint64> ids;
    for (const ScanInfo& s : *all) // newest first
        if (s.startPath == startPath && ids.size() < 2)
            ids.push_back(s.id);
    if (ids.size() < 2) {
        if (error)
            *error =
                QStringLiteral("The catalogue holds fewer than two scans of %1.").arg(QString::fromUtf8(startPath));
        return std::nullopt;
    }
    return std::make_pair(ids[1], ids[0]);
}
