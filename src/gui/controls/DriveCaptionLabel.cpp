// SPDX-License-Identifier: GPL-3.0-or-later

#include "DriveCaptionLabel.h"

#include <QPainter>

namespace {

const QString HardDriveEnd = QStringLiteral(": HD DRIVE ");
const QString VolumeStart = QStringLiteral(" CD/ DVD Volume: ");

} // namespace

DriveCaptionLabel::DriveCaptionLabel(QWidget* parent) : QLabel(parent)
{
    setAlignment(Qt::AlignCenter);
}

void DriveCaptionLabel::setCaption(const QString& caption)
{
    setText(caption);
    setToolTip(caption);
}

QString DriveCaptionLabel::shownText() const
{
    const QString caption = text();
    const QFontMetrics metrics = fontMetrics();
    const int room = contentsRect().width() - 2 * margin();
    if (metrics.horizontalAdvance(caption) <= room)
        return caption;
    QString head;
    QString tail;
    if (caption.endsWith(HardDriveEnd)) {
        head = caption.left(1);
        tail = HardDriveEnd;
    } else if (caption.startsWith(VolumeStart)) {
        head = VolumeStart;
        tail = caption.right(1);
    }
    const QString middle = caption.mid(head.size(), caption.size() - head.size() - tail.size());
    const int left = room - metrics.horizontalAdvance(head + tail);
    return head + metrics.elidedText(middle, Qt::ElideMiddle, qMax(0, left)) + tail;
}

void DriveCaptionLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    drawFrame(&painter);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(contentsRect(), int(alignment()), shownText());
}
