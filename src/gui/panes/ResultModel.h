// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "scan/ScanResult.h"

#include <QAbstractTableModel>
#include <QColor>
#include <memory>
#include <unordered_map>

// One list of a scan result as the rows of a list box or of a one-column grid, row 0 the first entry. Nothing is
// stored per row: a pane of ten million files costs no more than an empty one. A grid's cells may carry colours
// of their own (CellBackColor, CellForeColor), kept only for the few cells that have them.
class ResultModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    ResultModel(ScanResult::List list, QObject* parent = nullptr);

    ScanResult::List list() const { return m_list; }
    // Null empties the grid. Cell colours go with the old rows.
    void setResult(std::shared_ptr<const ScanResult> result);
    const std::shared_ptr<const ScanResult>& result() const { return m_result; }

    // An invalid colour leaves that part as the grid draws it.
    void setCellColours(int row, const QColor& back, const QColor& fore = {});
    void clearCellColours();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    struct CellColours
    {
        QColor back;
        QColor fore;
    };

    const ScanResult::List m_list;
    std::shared_ptr<const ScanResult> m_result;
    int m_rows = 0;
    std::unordered_map<int, CellColours> m_colours;
};
