// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/ShellService.h"

// Opens through QDesktopServices; locates with the platform's file manager (Explorer's /select, the
// freedesktop FileManager1 interface, Finder's open -R).
class DesktopShellService : public ShellService
{
public:
    bool open(const QString& path) override;
    bool locate(const QString& path) override;
};
