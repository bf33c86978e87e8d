// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "scan/ScanResult.h"

#include <QAbstractListModel>
#include <memory>

// One list of a scan result as the rows of a list box. Texts are made when the view asks for them, so the model
// holds nothing per row.
class ResultListModel : public QAbstractListModel
{
    Q_OBJECT
public:
    ResultListModel(ScanResult::List list, QObject* parent = nullptr);

    ScanResult::List list() const { return m_list; }
    // Null empties the list.
    void setResult(std::shared_ptr<const ScanResult> result);
    const std::shared_ptr<const ScanResult>& result() const { return m_result; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    const ScanResult::List m_list;
    std::shared_ptr<const ScanResult> m_result;
    int m_rows = 0;
};
