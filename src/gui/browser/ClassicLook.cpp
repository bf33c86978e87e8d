// SPDX-License-Identifier: GPL-3.0-or-later

#include "ClassicLook.h"

#include <QLabel>

namespace ClassicLook {

QFont uiFont(qreal pointSize)
{
    QFont f;
    f.setFamilies({QStringLiteral("MS Sans Serif"), QStringLiteral("Microsoft Sans Serif"), QStringLiteral("Arial"),
                   QStringLiteral("Liberation Sans"), QStringLiteral("Nimbus Sans"), QStringLiteral("Helvetica")});
    f.setStyleHint(QFont::SansSerif);
    f.setPointSizeF(pointSize);
    return f;
}

QFont serifFont(qreal pointSize)
{
    QFont f;
    f.setFamilies({QStringLiteral("Times New Roman"), QStringLiteral("Liberation Serif"),
                   QStringLiteral("Nimbus Roman"), QStringLiteral("Times")});
    f.setStyleHint(QFont::Serif);
    f.setPointSizeF(pointSize);
    return f;
}

void fitLabels(QWidget* root)
{
    const auto labels = root->findChildren<QLabel*>();
    for (QLabel* label : labels) {
        if (label->wordWrap() || label->text().isEmpty())
            continue;
        const int needed = label->sizeHint().width();
        const int extra = needed - label->width();
        if (extra <= 0)
            continue;
        const Qt::Alignment a = label->alignment();
        int x = label->x();
        if (a & Qt::AlignRight)
            x -= extra;
        else if (a & Qt::AlignHCenter)
            x -= extra / 2;
        label->setGeometry(qMax(0, x), label->y(), needed, label->height());
    }
}

} // namespace ClassicLook
