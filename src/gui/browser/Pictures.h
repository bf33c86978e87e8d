// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QPixmap>

// The program's pictures, drawn in code at the device pixel ratio of the screen so they stay sharp at 200%.
namespace Pictures {

QPixmap banner(int widthPx, int heightPx); // the maker's banner (Options' Image1, LongBrowser's Image1)
QPixmap go(int sizePx);                    // the "GO" button's icon
QPixmap backToOptions(int sizePx);         // Image6
QPixmap about(int sizePx);                 // Image2
QPixmap folder(int sizePx);                // Image3
QPixmap file(int sizePx);                  // Image4

} // namespace Pictures
