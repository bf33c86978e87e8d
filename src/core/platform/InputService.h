// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

// A one-line text prompt. Cancel gives the empty text, as a classic input box does.
class InputService
{
public:
    virtual ~InputService() = default;
    virtual QString inputBox(const QString& prompt, const QString& title = {}, const QString& defaultText = {}) = 0;
};
