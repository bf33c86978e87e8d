// SPDX-License-Identifier: GPL-3.0-or-later

#include "GoToCell.h"

#include "UnhandledError.h"
#include "panes/ResultPanes.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <cmath>
#include <limits>

GoToCell::GoToCell(const GoToControls& goTo, const PaneControls& paneControls, ResultPanes& panes,
                   const Services& services, BrowserHost& host, QObject* parent)
    : QObject(parent), m_goToControls(goTo), m_paneControls(paneControls), m_panes(panes), m_services(services),
      m_host(host)
{
    connect(m_goToControls.GoToFolder, &QPushButton::clicked, this, [this] { GoToFolder_Click(); });
    connect(m_goToControls.GoToFilePath, &QPushButton::clicked, this, [this] { GoToFilePath_Click(); });
    connect(m_goToControls.GoToFile, &QPushButton::clicked, this, [this] { GoToFile_Click(); });
    for (int pane = 2; pane <= 4; ++pane) {
        connect(m_paneControls.MSFlexGrid[pane]->selectionModel(), &QItemSelectionModel::currentChanged, this,
                [this, pane](const QModelIndex&, const QModelIndex& previous) {
                    if (previous.isValid())
                        leaveCell(pane, previous.row());
                });
    }
}

qint32 GoToCell::toLong(const QString& text, RuntimeError::Number* error)
{
    *error = RuntimeError::None;
    const QString trimmed = text.trimmed();
    bool ok = false;
    const double value = trimmed.toDouble(&ok);
    if (!ok || trimmed.isEmpty() || !std::isfinite(value)) {
        *error = RuntimeError::TypeMismatch;
        return 0;
    }
    const double rounded = std::nearbyint(value);
    if (rounded < double(std::numeric_limits<qint32>::min()) || rounded > double(std::numeric_limits<qint32>::max())) {
        *error = RuntimeError::Overflow;
        return 0;
    }
    return qint32(rounded);
}

void GoToCell::GoToFolder_Click()
{
    goTo(m_goToControls.Text4, 2);
}

void GoToCell::GoToFilePath_Click()
{
    goTo(m_goToControls.Text3, 3);
}

void GoToCell::GoToFile_Click()
{
    // Brings the file-name grid into view first, every time, whatever the number turns out to be.
    if (m_host.hasDesignSize())
        m_host.showFileNames();
    goTo(m_goToControls.Text5, 4);
}

void GoToCell::goTo(const QLineEdit* box, int pane)
{
    RuntimeError::Number error = RuntimeError::None;
    const qint32 number = toLong(box->text(), &error);
    if (error == RuntimeError::None && number == std::numeric_limits<qint32>::min())
        error = RuntimeError::Overflow; // number - 1
    if (error != RuntimeError::None) {
        failUnhandled(m_services, error);
        return;
    }
    const int row = number - 1;
    const int rows = m_panes.rowCount(pane);
    if (row < 0 || row >= rows) {
        m_services.messages->message(QStringLiteral("You can enter cell number between 1 and ") +
                                         QString::number(rows) + QStringLiteral(" only."),
                                     MessageStyle::Exclamation);
        return;
    }
    QTableView* grid = m_paneControls.MSFlexGrid[pane];
    grid->scrollTo(grid->model()->index(row, 0), QAbstractItemView::PositionAtTop);
    m_panes.setCurrentRow(pane, row);
    m_panes.setCellColours(pane, row, QColor(), QColor(255, 0, 0));
    m_panes.click(pane);
}

void GoToCell::leaveCell(int pane, int row)
{
    m_panes.setCellColours(pane, row, QColor(255, 255, 255), QColor(0, 0, 0));
}
