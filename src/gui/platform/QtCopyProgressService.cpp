// SPDX-License-Identifier: GPL-3.0-or-later

#include "QtCopyProgressService.h"

#include "common/RuntimeError.h"

#include <QApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>

QtCopyProgressService::~QtCopyProgressService()
{
    delete m_dialog;
}

bool QtCopyProgressService::progress(qint64 done, qint64 total, const QString& current)
{
    Q_UNUSED(current) // a simple progress window: how far, not which file
    if (!m_dialog) {
        m_dialog = new QProgressDialog(QStringLiteral("Copying..."), QStringLiteral("Cancel"), 0, 1000,
                                       QApplication::activeWindow());
        m_dialog->setWindowTitle(QStringLiteral("Copying..."));
        m_dialog->setWindowModality(Qt::ApplicationModal);
        m_dialog->setAutoReset(false);
        m_dialog->setAutoClose(false);
        m_dialog->setMinimumDuration(500);
    }
    if (m_dialog->wasCanceled())
        return false;
    // Per mille, so that a count beyond the range of an int still moves the bar.
    m_dialog->setValue(total > 0 ? int(done * 1000 / total) : 1000);
    return !m_dialog->wasCanceled();
}

ItemCopy::Reply QtCopyProgressService::confirmReplace(const QString& target)
{
    const QFileInfo info(target);
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Confirm File Replace"),
                    QStringLiteral("This folder already contains a file named '") + info.fileName() +
                        QStringLiteral("'.\n\nWould you like to replace the existing file?"),
                    QMessageBox::NoButton, m_dialog ? static_cast<QWidget*>(m_dialog) : QApplication::activeWindow());
    QAbstractButton* yes = box.addButton(QMessageBox::Yes);
    QAbstractButton* yesToAll = box.addButton(QMessageBox::YesToAll);
    QAbstractButton* no = box.addButton(QMessageBox::No);
    box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(qobject_cast<QPushButton*>(yes));
    box.exec();
    if (box.clickedButton() == yes)
        return ItemCopy::Reply::Yes;
    if (box.clickedButton() == yesToAll)
        return ItemCopy::Reply::YesToAll;
    if (box.clickedButton() == no)
        return ItemCopy::Reply::No;
    return ItemCopy::Reply::Cancel;
}

void QtCopyProgressService::problem(const QString& path, RuntimeError::Number error)
{
    QMessageBox::critical(m_dialog ? static_cast<QWidget*>(m_dialog) : QApplication::activeWindow(),
                          QStringLiteral("Error Copying File or Folder"),
                          QStringLiteral("Cannot copy ") + QFileInfo(path).fileName() + QStringLiteral(": ") +
                              RuntimeError::description(error) + QLatin1Char('.'));
}

void QtCopyProgressService::finish()
{
    delete m_dialog;
}
