// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

// Whether the process runs with administrator rights.
class AdminCheck
{
public:
    virtual ~AdminCheck() = default;
    virtual bool isUserAnAdmin() const = 0;
};
