// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/MessageService.h"

class QWidget;

// Message boxes through QMessageBox, parented to the active window so they stay on top of it.
class QtMessageService : public MessageService
{
public:
    Answer message(const QString& text, MessageStyle style = MessageStyle::Plain, const QString& title = {}) override;
};
