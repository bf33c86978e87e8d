// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/Catalogue.h"
#include "scan/ScanResult.h"

#include <QString>
#include <optional>

// Records a walk's result in a catalogue, with the volume it came from as it is now. Used wherever a scan is
// finished: a saved listing, the lister, `quillary-catalogue add`.
namespace ScanRecorder {

struct Walk
{
    const ScanResult* result = nullptr;
    qint64 startedAtMs = 0; // UTC; 0: the walk's own times
    qint64 durationMs = 0;
    QString listingName; // when it came from a save
};

std::optional<qint64> record(Catalogue& catalogue, const Walk& walk, QString* error = nullptr,
                             const Catalogue::Progress& progress = {});

// The same into the catalogue of the collection folder, opened for this one recording.
std::optional<qint64> recordInCollection(const Walk& walk, QString* error = nullptr);

} // namespace ScanRecorder
