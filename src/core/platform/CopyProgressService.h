// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "export/ItemCopy.h"

#include <QString>

// The window a folder copy keeps up while it runs, as the desktop shell's own copy does: how far it has got,
// the question before a file in the way is replaced, and what could not be copied.
class CopyProgressService
{
public:
    virtual ~CopyProgressService() = default;
    // `done` of `total` files copied so far; false once the user has cancelled.
    virtual bool progress(qint64 done, qint64 total, const QString& current) = 0;
    // A file of that name is already there: Yes, Yes to All, No or Cancel.
    virtual ItemCopy::Reply confirmReplace(const QString& target) = 0;
    // Something could not be copied; the copy goes on with the rest.
    virtual void problem(const QString& path, RuntimeError::Number error) = 0;
    // The copy is over: the window goes.
    virtual void finish() = 0;
};
