// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

class QWidget;

// The player inside a browser window's player frame.
class MediaPlayer
{
public:
    virtual ~MediaPlayer() = default;
    // Starts playing the file at `path`, as setting the player's URL does.
    virtual void setUrl(const QString& path) = 0;
    // Stops playing and lets go of the file.
    virtual void close() = 0;
    // Where the picture of a video goes: a widget of the window that is about to play, which the player fills.
    virtual void showIn(QWidget* area) { (void)area; }
};
