// SPDX-License-Identifier: GPL-3.0-or-later

#include "CatalogueFilterBar.h"

#include "catalogue/CatalogueRecords.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>

using namespace CatalogueRecords;

namespace {

enum DateRange { AnyTime, PastDay, PastWeek, PastMonth, PastYear, OlderThanYear };
constexpr qint64 Day = 24 * 60 * 60;

QComboBox* combo(const QString& objectName, const QString& accessibleName, const QStringList& items, QWidget* parent)
{
    auto* box = new QComboBox(parent);
    box->setObjectName(objectName);
    box->setAccessibleName(accessibleName);
    box->addItems(items);
    return box;
}

QLineEdit* sizeBox(const QString& objectName, const QString& accessibleName, const QString& hint, QWidget* parent)
{
    auto* box = new QLineEdit(parent);
    box->setObjectName(objectName);
    box->setAccessibleName(accessibleName);
    box->setPlaceholderText(hint);
    box->setClearButtonEnabled(true);
    box->setMaximumWidth(100);
    return box;
}

} // namespace

CatalogueFilterBar::CatalogueFilterBar(QWidget* parent) : QWidget(parent)
{
    m_kind = combo(QStringLiteral("kindFilter"), tr("Kind of item"),
                   {tr("Files and folders"), tr("Files"), tr("Folders")}, this);
    m_minSize = sizeBox(QStringLiteral("minSizeFilter"), tr("Smallest size"), tr("Min size"), this);
    m_minSize->setToolTip(tr("Smallest size, in bytes or with k, M or G: 10M"));
    m_maxSize = sizeBox(QStringLiteral("maxSizeFilter"), tr("Largest size"), tr("Max size"), this);
    m_maxSize->setToolTip(tr("Largest size, in bytes or with k, M or G: 2G"));
    m_date = combo(
        QStringLiteral("dateFilter"), tr("Modified"),
        {tr("Any time"), tr("Past day"), tr("Past week"), tr("Past month"), tr("Past year"), tr("Over a year ago")},
        this);
    m_volume = combo(QStringLiteral("volumeFilter"), tr("Volume"), {tr("All volumes")}, this);
    m_volume->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_allScans = new QCheckBox(tr("&Older scans too"), this);
    m_allScans->setObjectName(QStringLiteral("allScansFilter"));
    m_allScans->setToolTip(tr("Search every scan of a folder, not only its newest"));

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_kind);
    layout->addWidget(m_minSize);
    layout->addWidget(new QLabel(QStringLiteral("–"), this));
    layout->addWidget(m_maxSize);
    layout->addWidget(m_date);
    layout->addWidget(m_volume);
    layout->addWidget(m_allScans);
    layout->addStretch(1);

    const auto changedNow = [this] { emit changed(); };
    connect(m_kind, &QComboBox::currentIndexChanged, this, changedNow);
    connect(m_date, &QComboBox::currentIndexChanged, this, changedNow);
    connect(m_volume, &QComboBox::currentIndexChanged, this, changedNow);
    connect(m_allScans, &QCheckBox::toggled, this, changedNow);
    connect(m_minSize, &QLineEdit::textChanged, this, [this] { sizeEdited(m_minSize); });
    connect(m_maxSize, &QLineEdit::textChanged, this, [this] { sizeEdited(m_maxSize); });
}

std::optional<qint64> CatalogueFilterBar::parseSize(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("^\\s*(\\d+(?:[.,]\\d+)?)\\s*([kKmMgGtT]?)[bB]?\\s*$"));
    const QRegularExpressionMatch m = pattern.match(text);
    if (!m.hasMatch())
        return std::nullopt;
    QString number = m.captured(1);
    number.replace(QLatin1Char(','), QLatin1Char('.'));
    bool ok = false;
    const double value = number.toDouble(&ok);
    if (!ok)
        return std::nullopt;
    const QChar unit = m.captured(2).isEmpty() ? QChar() : m.captured(2).at(0).toUpper();
    const int shift = unit == QLatin1Char('K')   ? 10
                      : unit == QLatin1Char('M') ? 20
                      : unit == QLatin1Char('G') ? 30
                      : unit == QLatin1Char('T') ? 40
                                                 : 0;
    const double bytes = value * double(qint64(1) << shift);
    if (bytes > 9.0e18)
        return std::nullopt;
    return qint64(bytes);
}

void CatalogueFilterBar::sizeEdited(QLineEdit* box)
{
    const bool bad = !box->text().trimmed().isEmpty() && !parseSize(box->text());
    box->setStyleSheet(bad ? QStringLiteral("QLineEdit { color: #b00020; }") : QString());
    emit changed();
}

bool CatalogueFilterBar::narrows() const
{
    return m_kind->currentIndex() != 0 || parseSize(m_minSize->text()) || parseSize(m_maxSize->text()) ||
           m_date->currentIndex() != AnyTime || m_volume->currentIndex() > 0;
}

void CatalogueFilterBar::apply(FindQuery& query, qint64 nowSeconds) const
{
    query.kinds = m_kind->currentIndex() == 1   ? FindQuery::Kinds::Files
                  : m_kind->currentIndex() == 2 ? FindQuery::Kinds::Folders
                                                : FindQuery::Kinds::Both;
    query.minSize = parseSize(m_minSize->text()).value_or(NoSize);
    query.maxSize = parseSize(m_maxSize->text()).value_or(NoSize);
    switch (m_date->currentIndex()) {
    case PastDay:
        query.newerThan = nowSeconds - Day;
        break;
    case PastWeek:
        query.newerThan = nowSeconds - 7 * Day;
        break;
    case PastMonth:
        query.newerThan = nowSeconds - 30 * Day;
        break;
    case PastYear:
        query.newerThan = nowSeconds - 365 * Day;
        break;
    case OlderThanYear:
        query.olderThan = nowSeconds - 365 * Day;
        break;
    default:
        break;
    }
    query.volume = m_volume->currentIndex() > 0 ? m_volume->currentData().toString() : QString();
    query.allScans = m_allScans->isChecked();
}

void CatalogueFilterBar::setVolumes(const QList<std::pair<QString, QString>>& labelAndUuid)
{
    const QString chosen = m_volume->currentData().toString();
    const QSignalBlocker quiet(m_volume);
    m_volume->clear();
    m_volume->addItem(tr("All volumes"));
    for (const auto& [label, uuid] : labelAndUuid) {
        const QString key = uuid.isEmpty() ? label : uuid;
        if (m_volume->findData(key) < 0)
            m_volume->addItem(label, key);
    }
    const int again = chosen.isEmpty() ? 0 : m_volume->findData(chosen);
    m_volume->setCurrentIndex(again < 0 ? 0 : again);
    if (again < 0)
        emit changed();
}
