// SPDX-License-Identifier: GPL-3.0-or-later

#include "Pictures.h"

#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

namespace Pictures {

namespace {

QPixmap canvas(int w, int h)
{
    const qreal ratio = qApp ? qApp->devicePixelRatio() : 1.0;
    QPixmap pm(qRound(w * ratio), qRound(h * ratio));
    pm.setDevicePixelRatio(ratio);
    pm.fill(Qt::transparent);
    return pm;
}

} // namespace

QPixmap banner(int w, int h)
{
    QPixmap pm = canvas(w, h);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient g(0, 0, 0, h);
    g.setColorAt(0, QColor(40, 90, 160));
    g.setColorAt(1, QColor(20, 50, 110));
    p.setPen(QPen(QColor(10, 30, 70), 1));
    p.setBrush(g);
    p.drawRoundedRect(QRectF(0.5, 0.5, w - 1, h - 1), 6, 6);

    // A quill: a curved vane and its shaft.
    const qreal s = h * 0.8;
    p.save();
    p.translate(h * 0.15, h * 0.1);
    QPainterPath vane;
    vane.moveTo(s * 0.15, s * 0.95);
    vane.cubicTo(s * 0.2, s * 0.5, s * 0.5, s * 0.15, s * 0.9, s * 0.05);
    vane.cubicTo(s * 0.75, s * 0.45, s * 0.5, s * 0.7, s * 0.15, s * 0.95);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(250, 250, 235));
    p.drawPath(vane);
    p.setPen(QPen(QColor(200, 170, 90), 1.5));
    p.drawLine(QPointF(s * 0.1, s * 1.0), QPointF(s * 0.75, s * 0.2));
    p.restore();

    QFont f = p.font();
    f.setBold(true);
    f.setPixelSize(qMax(8, int(h * 0.42)));
    p.setFont(f);
    p.setPen(Qt::white);
    const QRectF text(h * 0.95, 0, w - h * 1.05, h * 0.68);
    p.drawText(text, Qt::AlignLeft | Qt::AlignBottom, QStringLiteral("Quillary"));
    f.setBold(false);
    f.setPixelSize(qMax(6, int(h * 0.2)));
    p.setFont(f);
    p.setPen(QColor(200, 220, 255));
    p.drawText(QRectF(h * 0.95, h * 0.68, w - h * 1.05, h * 0.3), Qt::AlignLeft | Qt::AlignTop,
               QStringLiteral("www.quillary.example"));
    return pm;
}

QPixmap go(int size)
{
    QPixmap pm = canvas(size, size);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(20, 100, 30), 1.5));
    p.setBrush(QColor(60, 170, 70));
    p.drawEllipse(QRectF(1.5, 1.5, size - 3, size - 3));
    QPolygonF arrow;
    const qreal c = size / 2.0;
    arrow << QPointF(c - size * 0.22, c - size * 0.08) << QPointF(c, c - size * 0.08) << QPointF(c, c - size * 0.24)
          << QPointF(c + size * 0.26, c) << QPointF(c, c + size * 0.24) << QPointF(c, c + size * 0.08)
          << QPointF(c - size * 0.22, c + size * 0.08);
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    p.drawPolygon(arrow);
    return pm;
}

QPixmap backToOptions(int size)
{
    QPixmap pm = canvas(size, size);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(90, 90, 90), 1));
    p.setBrush(QColor(255, 255, 192));
    p.drawRoundedRect(QRectF(0.5, 0.5, size - 1, size - 1), 3, 3);
    // Two option rows and an arrow pointing back to them.
    p.setBrush(QColor(192, 255, 255));
    for (int i = 0; i < 2; ++i) {
        const qreal y = size * (0.2 + i * 0.3);
        p.drawEllipse(QRectF(size * 0.5, y, size * 0.16, size * 0.16));
        p.drawRect(QRectF(size * 0.7, y + size * 0.04, size * 0.2, size * 0.08));
    }
    p.setPen(QPen(QColor(30, 60, 150), qMax(1.5, size / 12.0), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const qreal y = size * 0.8;
    p.drawLine(QPointF(size * 0.15, y), QPointF(size * 0.85, y));
    p.drawLine(QPointF(size * 0.15, y), QPointF(size * 0.3, y - size * 0.12));
    p.drawLine(QPointF(size * 0.15, y), QPointF(size * 0.3, y + size * 0.12));
    return pm;
}

QPixmap about(int size)
{
    QPixmap pm = canvas(size, size);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(20, 60, 140), 1.5));
    p.setBrush(QColor(70, 130, 210));
    p.drawEllipse(QRectF(1.5, 1.5, size - 3, size - 3));
    QFont f = p.font();
    f.setBold(true);
    f.setFamily(QStringLiteral("serif"));
    f.setPixelSize(int(size * 0.7));
    p.setFont(f);
    p.setPen(Qt::white);
    p.drawText(QRectF(0, 0, size, size), Qt::AlignCenter, QStringLiteral("i"));
    return pm;
}

QPixmap folder(int size)
{
    QPixmap pm = canvas(size, size);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(150, 110, 20), 1));
    p.setBrush(QColor(240, 200, 80));
    QPainterPath path;
    path.moveTo(size * 0.05, size * 0.25);
    path.lineTo(size * 0.4, size * 0.25);
    path.lineTo(size * 0.5, size * 0.35);
    path.lineTo(size * 0.95, size * 0.35);
    path.lineTo(size * 0.95, size * 0.85);
    path.lineTo(size * 0.05, size * 0.85);
    path.closeSubpath();
    p.drawPath(path);
    return pm;
}

QPixmap file(int size)
{
    QPixmap pm = canvas(size, size);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(90, 90, 90), 1));
    p.setBrush(Qt::white);
    QPainterPath path;
    path.moveTo(size * 0.2, size * 0.08);
    path.lineTo(size * 0.62, size * 0.08);
    path.lineTo(size * 0.8, size * 0.26);
    path.lineTo(size * 0.8, size * 0.92);
    path.lineTo(size * 0.2, size * 0.92);
    path.closeSubpath();
    p.drawPath(path);
    p.setPen(QPen(QColor(150, 150, 150), 1));
    for (int i = 0; i < 3; ++i) {
        const qreal y = size * (0.45 + i * 0.14);
        p.drawLine(QPointF(size * 0.3, y), QPointF(size * 0.7, y));
    }
    return pm;
}

} // namespace Pictures
