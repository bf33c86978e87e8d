// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QComboBox>

class VolumeService;

// The drive selector (Drive1). Its list is read again each time it is opened, so a stick mounted after start-up
// is there and one taken away is gone; the current entry stays current and no drive change is reported.
class DriveSelector : public QComboBox
{
    Q_OBJECT
public:
    DriveSelector(const VolumeService& volumes, QWidget* parent = nullptr);

    // Lists the volumes as they are now, keeping the current entry.
    void refresh();
    void showPopup() override;

private:
    const VolumeService& m_volumes;
};
