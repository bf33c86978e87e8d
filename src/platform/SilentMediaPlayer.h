#pragma once

#include "MediaPlayer.h"

#include <QString>

// Keeps the last address and plays nothing; stands in until the player frame gets real playback.
class SilentMediaPlayer : public MediaPlayer
{
public:
    void setUrl(const QString& path) override { m_url = path; }
    void close() override { m_url.clear(); }

private:
    QString m_url;
};
