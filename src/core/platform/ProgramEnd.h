// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

// Ends the whole program at once, every window with it. Code that calls end() returns straight away and does
// nothing more; ended() lets the start-up tell whether the program was ended before its event loop runs.
class ProgramEnd
{
public:
    virtual ~ProgramEnd() = default;
    virtual void end() = 0;
    virtual bool ended() const = 0;
};
