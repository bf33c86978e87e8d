// SPDX-License-Identifier: GPL-3.0-or-later

#include "QtMediaPlayer.h"

#include "common/NativeText.h"

#include <QAudioOutput>
#include <QFile>
#include <QMediaPlayer>
#include <QUrl>
#include <QVBoxLayout>
#include <QVideoWidget>
#include <algorithm>

#ifndef Q_OS_WIN
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

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

// A FIFO, a device or a socket that carries a media name would hold the player, and with it the window, until
// something writes to it; only a regular file is handed over. It is looked at without being opened. What
// cannot be looked at (a stale path) goes to the player as it is, which fails on it by itself.
bool mayHandOver(const QString& path)
{
#ifdef Q_OS_WIN
    Q_UNUSED(path)
    return true;
#else
    struct stat st;
    if (::stat(NativeText::fromDisplay(path).constData(), &st) != 0)
        return true;
    return S_ISREG(st.st_mode);
#endif
}

// Bytes that are not UTF-8 show as U+DC80..U+DCFF.
bool isUtf8(const QString& path)
{
    return std::none_of(path.cbegin(), path.cend(),
                        [](QChar c) { return c.unicode() >= 0xDC80 && c.unicode() <= 0xDCFF; });
}

} // namespace

QtMediaPlayer::QtMediaPlayer(QObject* parent) : QObject(parent) {}

QtMediaPlayer::~QtMediaPlayer()
{
    if (m_player) {
        m_player->stop();
        release();
    }
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
    // An empty address stops the player and plays nothing; so does what is not a file.
    if (path.isEmpty() || !mayHandOver(path)) {
        release();
        return;
    }
#ifndef Q_OS_WIN
    // The GStreamer backend turns a file URL back into text before the file is opened, and a name that is not
    // UTF-8 does not survive that. Such a file is opened here, by its own bytes, and played from the open file.
    if (!isUtf8(path)) {
        release();
        const int fd = ::open(NativeText::fromDisplay(path).constData(), O_RDONLY | O_CLOEXEC);
        auto file = std::make_unique<QFile>();
        if (fd >= 0 && file->open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
            m_file = std::move(file);
            m_player->setSourceDevice(m_file.get(), NativeText::fileUrl(path));
            m_player->play();
            return;
        }
        if (fd >= 0)
            ::close(fd);
    }
#endif
    release();
    m_player->setSource(NativeText::fileUrl(path));
    m_player->play();
}

void QtMediaPlayer::release()
{
    if (m_file) {
        m_player->setSource(QUrl());
        m_file.reset();
    }
}

void QtMediaPlayer::close()
{
    if (!m_player)
        return; // nothing was ever played
    m_player->stop();
    m_player->setSource(QUrl());
    m_file.reset();
}
