// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QFrame>

// A frame that answers a click on its own surface, around its children (the player frame closes that way).
class ClickableFrame : public QFrame
{
    Q_OBJECT
public:
    using QFrame::QFrame;

signals:
    void clicked();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
};
