// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QHash>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

struct BrowserBehaviour;
struct BrowserTexts;

// Where everything of a browser window goes, in twips from the design: one rectangle per control, by object name
// and relative to the control's parent, and the values the resize rule puts back. The builder places every
// control from `places`; a layout for another window size can be made by scaling them.
struct BrowserLayout
{
    // One property the non-maximised window puts back on every resize.
    struct Restore
    {
        enum Property { Left, Top, Width, Height };
        QString control;
        Property property;
        int twips;
    };

    // What one window has of its own.
    struct Own
    {
        QSize clientTwips;
        int label2Left = 1605;
        QRect modeFrame;
        QRect playerFrame;
        int pathFrameTop = 6870;
    };

    QSize clientTwips;
    QPoint originTwips{45, 330};
    // The window's outer width without and with the file-name pane: the file-names toggle switches between them.
    int narrowWidth = 10530;
    int wideWidth = 13560;
    QHash<QString, QRect> places;
    QList<Restore> restore;

    // The design rectangle of the control named `name`; a null rectangle for a control placed otherwise.
    QRect rect(const QString& name) const { return places.value(name); }

    static BrowserLayout make(const BrowserTexts& texts, const BrowserBehaviour& behaviour, const Own& own);
};
