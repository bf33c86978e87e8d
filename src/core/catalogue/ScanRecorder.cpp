// SPDX-License-Identifier: GPL-3.0-or-later

#include "ScanRecorder.h"

#include "catalogue/ScanResultSource.h"
#include "catalogue/SqliteCatalogue.h"
#include "catalogue/VolumeProbe.h"

std::optional<qint64> ScanRecorder::record(Catalogue& catalogue, const Walk& walk, QString* error,
                                           const Catalogue::Progress& progress)
{
    const ScanResult& r = *walk.result;
    ScanInfo info;
    info.scannedAtMs = walk.startedAtMs ? walk.startedAtMs : r.walkStartedAtMs();
    info.durationMs = walk.startedAtMs ? walk.durationMs : r.walkDurationMs();
    info.startPath = r.startPath();
    info.separator = r.separator();
    info.volume = VolumeProbe::describe(r.startPath());
    info.shortFlavour = r.flavour() == ScanResult::Flavour::Short;
    info.complete = !r.limitReached();
    info.totalBytes = std::max<qint64>(r.nodeBytes(0), 0);
    info.listingName = walk.listingName;
    return catalogue.record(info, ScanResultSource(r), error, progress);
}

std::optional<qint64> ScanRecorder::recordInCollection(const Walk& walk, QString* error)
{
    const std::unique_ptr<SqliteCatalogue> c = SqliteCatalogue::open(SqliteCatalogue::defaultPath(), error);
    if (!c)
        return std::nullopt;
    return record(*c, walk, error);
}
