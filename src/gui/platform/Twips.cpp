// SPDX-License-Identifier: GPL-3.0-or-later

#include "Twips.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace Twips {

namespace {

double logicalDpi()
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    const double dpi = screen ? screen->logicalDotsPerInch() : 96.0;
    return dpi > 0 ? dpi : 96.0;
}

double perPixel(bool horizontal)
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    double dpi = 96.0;
    if (screen)
        dpi = horizontal ? screen->logicalDotsPerInchX() : screen->logicalDotsPerInchY();
    return 1440.0 / (dpi > 0 ? dpi : 96.0);
}

} // namespace

double perPixelX()
{
    return perPixel(true);
}

double perPixelY()
{
    return perPixel(false);
}

int toPx(int twips)
{
    return qRound(twips * logicalDpi() / 1440.0);
}

QRect toPx(const QRect& twips)
{
    return QRect(toPx(twips.x()), toPx(twips.y()), toPx(twips.width()), toPx(twips.height()));
}

int fromPx(int px)
{
    return qRound(px * 1440.0 / logicalDpi());
}

void place(QWidget* w, const QRect& twips)
{
    w->setGeometry(toPx(twips));
}

} // namespace Twips
