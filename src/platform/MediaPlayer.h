#pragma once

#include <QString>

// The player inside a browser window's player frame.
class MediaPlayer
{
public:
    virtual ~MediaPlayer() = default;
    virtual void setUrl(const QString& path) = 0;
    virtual void close() = 0;
};
