// SPDX-License-Identifier: GPL-3.0-or-later

#include "DriveSelector.h"

#include "volumes/VolumeService.h"

DriveSelector::DriveSelector(const VolumeService& volumes, QWidget* parent) : QComboBox(parent), m_volumes(volumes) {}

void DriveSelector::refresh()
{
    const QString current = currentText();
    QStringList texts;
    for (const Volume& v : m_volumes.volumes())
        texts.append(v.driveText());
    // The drive the window shows stays listed while it is current, even once it is gone: the tree and the
    // lists still show it, and choosing another drive lets it go.
    if (!current.isEmpty() && !texts.contains(current))
        texts.append(current);
    const QSignalBlocker block(this);
    clear();
    addItems(texts);
    setCurrentIndex(findText(current));
}

void DriveSelector::showPopup()
{
    refresh();
    QComboBox::showPopup();
}
