// SPDX-License-Identifier: GPL-3.0-or-later

#include "DriveCaption.h"

#include "volumes/VolumeService.h"

namespace DriveCaption {

QString driveTypeInfo(int code)
{
    switch (code) {
    case 0:
        return QStringLiteral("Unknown");
    case 1:
        return QStringLiteral("Removable");
    case 2:
        return QStringLiteral("Fixed");
    case 3:
        return QStringLiteral("Network");
    case 4:
        return QStringLiteral("CD/ DVD");
    case 5:
        return QStringLiteral("RAM Disk");
    default:
        return {};
    }
}

QString getDriveName(const VolumeService& volumes, const QString& driveText)
{
    bool found = false;
    const Volume v = volumes.find(driveText, &found);
    if (!found || !v.ready)
        return QStringLiteral("EMPTY");
    return v.label;
}

QString showDriveCaption(const VolumeService& volumes, const QString& driveText)
{
    return caption(driveText, driveTypeInfo(volumes.find(driveText).typeCode), getDriveName(volumes, driveText));
}

QString captionForPath(const VolumeService& volumes, const QString& path)
{
    const Volume v = volumes.volumeOf(path);
    return caption(v.driveText(), driveTypeInfo(v.typeCode), v.ready ? v.label : QStringLiteral("EMPTY"));
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
