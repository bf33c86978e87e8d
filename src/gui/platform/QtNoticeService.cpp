// SPDX-License-Identifier: GPL-3.0-or-later

#include "QtNoticeService.h"

#include <QApplication>

QtNoticeService::~QtNoticeService()
{
    delete m_box;
}

void QtNoticeService::notice(const QString& text)
{
    if (!m_box) {
        m_box = new QMessageBox(QMessageBox::Warning, QApplication::applicationDisplayName(), text, QMessageBox::Ok,
                                QApplication::activeWindow());
        m_box->setObjectName(m_objectName);
        m_box->setWindowModality(Qt::NonModal);
        m_box->setAttribute(Qt::WA_DeleteOnClose);
    }
    m_box->setText(text);
    m_box->show();
    m_box->raise();
}
