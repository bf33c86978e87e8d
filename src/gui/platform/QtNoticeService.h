// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/NoticeService.h"

#include <QMessageBox>
#include <QPointer>

// Notices in a message box that is not modal: the windows go on taking input while it is shown, and a notice
// that comes while one is open takes its place instead of opening a second box.
class QtNoticeService : public NoticeService
{
public:
    // `objectName` names the box, so what shows it can be told apart (the shell's notices, the recordings').
    explicit QtNoticeService(const QString& objectName = QStringLiteral("Notice")) : m_objectName(objectName) {}
    ~QtNoticeService() override;
    void notice(const QString& text) override;

private:
    QString m_objectName;
    QPointer<QMessageBox> m_box;
};
