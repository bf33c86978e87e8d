// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/MediaPlayer.h"

#include <QObject>
#include <QPointer>
#include <QWidget>
#include <memory>

class QAudioOutput;
class QFile;
class QMediaPlayer;

// Plays inside the window through Qt Multimedia: the sound to the default output, the picture to a video
// widget that fills the area the window gives.
class QtMediaPlayer : public QObject, public MediaPlayer
{
    Q_OBJECT
public:
    explicit QtMediaPlayer(QObject* parent = nullptr);
    ~QtMediaPlayer() override;

    void setUrl(const QString& path) override;
    void close() override;
    void showIn(QWidget* area) override;

    // For callers that need to know whether it really plays: the state says Playing even for media that
    // cannot be decoded, the media status and the position do not lie.
    QMediaPlayer* backend() { return player(); }
    QWidget* videoWidget() const { return m_video; }

private:
    // Made on first use: most runs never play anything, and opening the sound output costs start-up time
    // (and a warning where no sound server runs).
    QMediaPlayer* player();
    // Lets go of a file the player was reading from an open descriptor.
    void release();

    QMediaPlayer* m_player = nullptr;
    QAudioOutput* m_audio = nullptr;
    QPointer<QWidget> m_video;
    std::unique_ptr<QFile> m_file;
};
