// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QRect>

class QWidget;

// The design gives every size in twips, 1440 to the logical inch. Logical pixels keep the layout the same at
// any scaling; Qt multiplies them by the device pixel ratio.
namespace Twips {

int toPx(int twips);
QRect toPx(const QRect& twips);
int fromPx(int px);

// The screen's TwipsPerPixelX and TwipsPerPixelY: 15 at 96 dots per inch.
double perPixelX();
double perPixelY();

// Places `w` at a rectangle given in twips, relative to its parent.
void place(QWidget* w, const QRect& twips);

} // namespace Twips
