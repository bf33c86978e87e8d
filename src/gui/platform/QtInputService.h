// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/InputService.h"

class QtInputService : public InputService
{
public:
    QString inputBox(const QString& prompt, const QString& title = {}, const QString& defaultText = {}) override;
};
