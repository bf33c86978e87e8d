// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

// What the action classes need of the browser window that holds them, beyond the controls they are given.
class BrowserHost
{
public:
    virtual ~BrowserHost() = default;
    // Neither minimised, maximised nor full screen: the window has its design size.
    virtual bool hasDesignSize() const = 0;
    // The wide state of the file-names toggle: the window at its wide width, Label8 offering to hide the names.
    virtual void showFileNames() = 0;
};
