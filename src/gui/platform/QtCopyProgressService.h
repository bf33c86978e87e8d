// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/CopyProgressService.h"

#include <QPointer>

class QProgressDialog;

class QtCopyProgressService : public CopyProgressService
{
public:
    ~QtCopyProgressService() override;
    bool progress(qint64 done, qint64 total, const QString& current) override;
    ItemCopy::Reply confirmReplace(const QString& target) override;
    void problem(const QString& path, RuntimeError::Number error) override;
    void finish() override;

private:
    QPointer<QProgressDialog> m_dialog;
};
