// SPDX-License-Identifier: GPL-3.0-or-later

#include "SystemAdminCheck.h"

#ifdef Q_OS_WIN
#include <shlobj.h>
#include <windows.h>
#else
#include <unistd.h>
#endif

bool SystemAdminCheck::isUserAnAdmin() const
{
#ifdef Q_OS_WIN
    return IsUserAnAdmin() != FALSE;
#else
    return geteuid() == 0;
#endif
}
