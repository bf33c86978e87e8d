// SPDX-License-Identifier: GPL-3.0-or-later

#include "DiffDialog.h"

#include "CatalogueResultModel.h"
#include "DiffModel.h"
#include "common/NativeText.h"

#include <QDateTime>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QTableView>
#include <QVBoxLayout>

namespace {

QString when(const ScanInfo& scan)
{
    return QDateTime::fromMSecsSinceEpoch(scan.scannedAtMs).toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

} // namespace

DiffDialog::DiffDialog(CatalogueDiff diff, QWidget* parent) : QDialog(parent), m_model(new DiffModel(this))
{
    setObjectName(QStringLiteral("DiffDialog"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Changes in %1").arg(NativeText::toDisplay(diff.newer.startPath)));
    auto* heading = new QLabel(summary(diff), this);
    heading->setObjectName(QStringLiteral("diffSummary"));
    heading->setWordWrap(true);
    heading->setTextInteractionFlags(Qt::TextSelectableByMouse);

    m_model->setDiff(std::move(diff));
    auto* table = new QTableView(this);
    table->setObjectName(QStringLiteral("diffTable"));
    table->setAccessibleName(tr("Changes between the two scans"));
    table->setModel(m_model);
    table->setSortingEnabled(true);
    table->sortByColumn(DiffModel::Change, Qt::AscendingOrder);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setAlternatingRowColors(true);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 6);
    table->horizontalHeader()->setSectionResizeMode(DiffModel::Path, QHeaderView::Stretch);
    table->setWordWrap(false);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addWidget(table, 1);
    layout->addWidget(buttons);
    resize(900, 520);
}

QString DiffDialog::summary(const CatalogueDiff& diff)
{
    const qint64 delta = diff.bytesDelta;
    const QString bytes = delta == 0 ? tr("no change in size")
                                     : (delta > 0 ? QStringLiteral("+") : QStringLiteral("-")) +
                                           CatalogueResultModel::sizeText(delta < 0 ? -delta : delta);
    return tr("%1 scanned %2 against %3: %4 files added, %5 removed, %6 changed; %7 folders changed in size; %8.")
        .arg(NativeText::toDisplay(diff.newer.startPath), when(diff.newer), when(diff.older))
        .arg(diff.filesAdded)
        .arg(diff.filesRemoved)
        .arg(diff.filesChanged)
        .arg(diff.foldersChanged)
        .arg(bytes);
}
