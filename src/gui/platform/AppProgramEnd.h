// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/ProgramEnd.h"

// Hides every window at once and leaves the event loop; before the loop runs, main() asks ended().
class AppProgramEnd : public ProgramEnd
{
public:
    void end() override;
    bool ended() const override { return m_ended; }

private:
    bool m_ended = false;
};
