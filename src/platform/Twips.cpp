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

} // namespace

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
