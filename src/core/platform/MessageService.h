// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "common/Answer.h"

#include <QString>

// Modal message boxes given as the program has always given them: a text, a style number that picks the
// buttons and the icon (0 OK; 16 OK + stop; 19 Yes/No/Cancel + stop; 36 Yes/No + question; 48 OK + exclamation;
// 52 Yes/No + exclamation; 64 OK + information; 68 Yes/No + information) and a title. An empty title shows the
// program's title.
class MessageService
{
public:
    virtual ~MessageService() = default;
    virtual Answer message(const QString& text, int style = 0, const QString& title = {}) = 0;
};
