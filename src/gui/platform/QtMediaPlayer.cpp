// SPDX-License-Identifier: GPL-3.0-or-later

#include "QtMediaPlayer.h"

#include "common/NativeText.h"

#include <QAudioOutput>
#include <QMediaPlayer>
#include <QUrl>
#include <QVBoxLayout>
#include <QVideoWidget>

namespace {

// Qt 6.4's FFmpeg backend crashes on a machine without an audio device; GStreamer plays there, silently. The
// choice must be made before the first player exists.
bool preferGStreamer()
{
#if defined(Q_OS_LINUX)
    if (qEnvironmentVariableIsEmpty("QT_MEDIA_BACKEND"))
        qputenv("QT_MEDIA_BACKEND", "gstreamer");
#endif
    return true;
}

} // namespace

QtMediaPlayer::QtMediaPlayer(QObject* parent) : QObject(parent) {}

QtMediaPlayer::~QtMediaPlayer()
{
    if (m_player)
        m_player->stop();
}

QMediaPlayer* QtMediaPlayer::player()
{
    if (!m_player) {
        [[maybe_unused]] static const bool backendChosen = preferGStreamer();
        m_player = new QMediaPlayer(this);
        m_audio = new QAudioOutput(this);
        m_player->setAudioOutput(m_audio);
        if (m_video)
            m_player->setVideoOutput(m_video);
    }
    return m_player;
}

void QtMediaPlayer::showIn(QWidget* area)
{
    if (!area)
        return;
    QVideoWidget* video = area->findChild<QVideoWidget*>(QString(), Qt::FindDirectChildrenOnly);
    if (!video) {
        video = new QVideoWidget(area);
        auto* layout = new QVBoxLayout(area);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(video);
    }
    if (video != m_video) {
        m_video = video;
        if (m_player)
            m_player->setVideoOutput(video);
    }
}

void QtMediaPlayer::setUrl(const QString& path)
{
    player()->stop();
    // An empty address stops the player and plays nothing.
    if (path.isEmpty()) {
        m_player->setSource(QUrl());
        return;
    }
    m_player->setSource(NativeText::fileUrl(path));
    m_player->play();
}

void QtMediaPlayer::close()
{
    if (!m_player)
        return; // nothing was ever played
    m_player->stop();
    m_player->setSource(QUrl());
}
