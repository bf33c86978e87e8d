// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QLabel>

// A label (or picture) that answers clicks and double-clicks, as the design's labels and images do.
class ClickableLabel : public QLabel
{
    Q_OBJECT
public:
    using QLabel::QLabel;

signals:
    void clicked();
    void doubleClicked();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
};
