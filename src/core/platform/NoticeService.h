// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

// A notice that does not stop the user: shown beside the windows, which go on taking input. A second notice while
// one is still shown replaces its text rather than stacking another.
class NoticeService
{
public:
    virtual ~NoticeService() = default;
    virtual void notice(const QString& text) = 0;
};
