// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "volumes/VolumeService.h"

#include <QString>

// The drive caption above the folder tree (" /: HD DRIVE ", " CD/ DVD Volume: STICK ") and the routines
// behind it. Shared by both browser windows and by the headless lister, whose SOURCE line carries it.
namespace DriveCaption {

// "Unknown", "Removable", "Fixed", "Network", "CD/ DVD", "RAM Disk".
QString driveTypeInfo(DriveType type);

// The label of the volume named by `driveText` (decoration included); "EMPTY" when it cannot be read.
QString getDriveName(const VolumeService& volumes, const QString& driveText);

// The caption from its parts: the drive text, its type text and its label ("EMPTY" when unreadable).
QString caption(const QString& driveText, const QString& typeText, const QString& label);

// The caption of the volume that holds `path`, built as the window builds it for that volume's drive text.
QString captionForPath(const VolumeService& volumes, const QString& path);

} // namespace DriveCaption
