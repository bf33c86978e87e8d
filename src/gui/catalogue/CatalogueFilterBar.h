// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>
#include <optional>

class QCheckBox;
class QComboBox;
class QLineEdit;
struct FindQuery;

// The search's filters in one row: kind, size range, modification date, volume, and whether older scans of a
// folder are searched too. Sizes take k, M and G (1024-based); a size that cannot be read turns its box red and
// leaves that bound out.
class CatalogueFilterBar : public QWidget
{
    Q_OBJECT
public:
    explicit CatalogueFilterBar(QWidget* parent = nullptr);

    // Fills the filter fields of `query`, measuring dates from `nowSeconds` (UTC).
    void apply(FindQuery& query, qint64 nowSeconds) const;
    // True when any filter narrows the search.
    bool narrows() const;
    // Volumes by what the user reads (label or mount point) and what finds them (UUID, else the label).
    void setVolumes(const QList<std::pair<QString, QString>>& labelAndUuid);

    static std::optional<qint64> parseSize(const QString& text);

signals:
    void changed();

private:
    void sizeEdited(QLineEdit* box);

    QComboBox* m_kind;
    QLineEdit* m_minSize;
    QLineEdit* m_maxSize;
    QComboBox* m_date;
    QComboBox* m_volume;
    QCheckBox* m_allScans;
};
