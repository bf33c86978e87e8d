// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/CatalogueRecords.h"

#include <QByteArray>

// What the catalogue keeps of a volume, and whether a recorded one is there now.
namespace VolumeProbe {

// The volume that holds `path`: mount point, label, file-system type, UUID (the /dev/disk/by-uuid link that
// leads to its device), drive type code, capacity and free space.
VolumeInfo describe(const QByteArray& path);

// True when the scan's start folder is reachable now on the volume it was taken from: the folder exists and,
// where the scan knows the volume's UUID, the volume holding it has that UUID.
bool isMounted(const ScanInfo& scan);

} // namespace VolumeProbe
