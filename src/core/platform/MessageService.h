// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "common/Answer.h"
#include "platform/MessageStyle.h"

#include <QString>

// Modal message boxes: a text, the buttons and icon, and a title. An empty title shows the program's title.
class MessageService
{
public:
    virtual ~MessageService() = default;
    virtual Answer message(const QString& text, MessageStyle style = MessageStyle::Plain,
                           const QString& title = {}) = 0;
};
