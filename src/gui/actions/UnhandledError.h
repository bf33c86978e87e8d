// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "common/RuntimeError.h"
#include "platform/MessageService.h"
#include "platform/ProgramEnd.h"
#include "platform/Services.h"

// A run-time error that no handler traps: its box under the program's title, then the end of the program.
// Callers return straight after, doing nothing more.
inline void failUnhandled(const Services& services, RuntimeError::Number number)
{
    services.messages->message(RuntimeError::unhandledText(number), MessageStyle::Critical);
    services.programEnd->end();
}
