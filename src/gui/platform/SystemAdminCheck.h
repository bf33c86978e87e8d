// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/AdminCheck.h"

// Administrator means the effective user id 0 on Unix, membership of the Administrators group on Windows.
class SystemAdminCheck : public AdminCheck
{
public:
    bool isUserAnAdmin() const override;
};
