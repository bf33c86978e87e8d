// SPDX-License-Identifier: GPL-3.0-or-later

#include "DriveCaption.h"

#include "volumes/VolumeService.h"

namespace DriveCaption {

QString driveTypeInfo(DriveType type)
{
    switch (type) {
    case DriveType::Unknown:
        return QStringLiteral("Unknown");
    case DriveType::Removable:
        return QStringLiteral("Removable");
    case DriveType::Fixed:
        return QStringLiteral("Fixed");
    case DriveType::Network:
        return QStringLiteral("Network");
    case DriveType::CdDvd:
        return QStringLiteral("CD/ DVD");
    case DriveType::RamDisk:
        return QStringLiteral("RAM Disk");
    }
    return {}; // a code no drive type has
}

QString getDriveName(const VolumeService& volumes, const QString& driveText)
{
    bool found = false;
    const Volume v = volumes.find(driveText, &found);
    if (!found || !v.ready)
        return QStringLiteral("EMPTY");
    return v.label;
}

QString captionForPath(const VolumeService& volumes, const QString& path)
{
    const Volume v = volumes.volumeOf(path);
    return caption(v.driveText(), driveTypeInfo(v.type), v.ready ? v.label : QStringLiteral("EMPTY"));
}

QString caption(const QString& driveText, const QString& type, const QString& label)
{
    // Kept as the caption has always been: any drive that is not fixed and has a label, or whose label cannot
    // be read, is captioned as a CD/DVD volume; a drive without a label as a hard drive.
    if (label.isEmpty() || type == QLatin1String("Fixed"))
        return QLatin1Char(' ') + driveText.toUpper() + QStringLiteral(": HD DRIVE ");
    return QStringLiteral(" CD/ DVD Volume: ") + label.toUpper() + QLatin1Char(' ');
}

} // namespace DriveCaption
