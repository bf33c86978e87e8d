// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QFont>

class QWidget;

// The windows' fonts and a guard against clipped captions.
namespace ClassicLook {

// The small sans-serif face the windows were laid out for, or the closest metric-compatible one installed.
QFont uiFont(qreal pointSize = 8.25);
QFont serifFont(qreal pointSize);

// Widens every one-line label below `root` whose caption does not fit its design width, keeping the side its
// alignment anchors (right-aligned labels grow to the left, centred ones to both sides). Other fonts than the
// design's are wider, and a clipped caption would hide the status texts.
void fitLabels(QWidget* root);

} // namespace ClassicLook
