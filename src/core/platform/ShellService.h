// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

// The desktop shell: open an item with its associated program, or show it selected in the file manager.
// Both return false when nothing could be started.
class ShellService
{
public:
    virtual ~ShellService() = default;
    virtual bool open(const QString& path) = 0;
    virtual bool locate(const QString& path) = 0;
};
