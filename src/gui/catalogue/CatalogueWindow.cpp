// SPDX-License-Identifier: GPL-3.0-or-later

#include "CatalogueWindow.h"

#include "BackgroundTask.h"
#include "CatalogueFilterBar.h"
#include "CatalogueResultModel.h"
#include "CatalogueResults.h"
#include "DiffDialog.h"
#include "ScanTreeModel.h"
#include "common/NativeText.h"
#include "platform/MessageService.h"
#include "platform/ProgramEnd.h"
#include "platform/ShellService.h"
#include "scan/FolderReader.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDateTime>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QProgressDialog>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>
#include <QThread>
#include <QTreeView>
#include <QVBoxLayout>
#include <atomic>
#include <map>

namespace {

// Quiet after the last key for this long before searching: short enough that the first hits show within
// 150 ms of the key, long enough that a quick typist does not start a search per letter.
constexpr int TypingPauseMs = 60;

const QString Title = QStringLiteral("Quillary Catalogue");

QSettings settings()
{
    return QSettings(QStringLiteral("Quillary"), QStringLiteral("Catalogue"));
}

QString scanTime(const ScanInfo& scan)
{
    return QDateTime::fromMSecsSinceEpoch(scan.scannedAtMs).toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

// The four files of a listing set share their NAME; files of several sets are imported set by set.
QList<QStringList> listingSets(const QStringList& files)
{
    static const QStringList prefixes = {QStringLiteral("Folders List WithPath "), QStringLiteral("Folders List - "),
                                         QStringLiteral("Files List WithPath "), QStringLiteral("Files List - ")};
    std::map<QString, QStringList> sets;
    for (const QString& file : files) {
        const QFileInfo info(file);
        QString name = info.fileName();
        for (const QString& prefix : prefixes) {
            if (name.startsWith(prefix)) {
                name = name.mid(prefix.size());
                break;
            }
        }
        sets[info.absolutePath() + QLatin1Char('/') + name].append(file);
    }
    QList<QStringList> out;
    for (auto& [key, set] : sets)
        out.append(set);
    return out;
}

} // namespace

CatalogueWindow::CatalogueWindow(const Services& services, CatalogueSearch::Opener opener, QWidget* parent)
    : QMainWindow(parent), m_services(services), m_opener(std::move(opener)), m_presence(services.volumes),
      m_scanModel(
          new ScanTreeModel([this](const VolumeInfo& v) { return m_presence.mountPoint(v).has_value(); }, this)),
      m_scanView(new QTreeView(this)), m_searchBox(new QLineEdit(this)), m_filters(new CatalogueFilterBar(this)),
      m_resultModel(new CatalogueResultModel(this)), m_resultView(new QTableView(this)),
      m_splitter(new QSplitter(Qt::Horizontal, this)), m_status(new QLabel(this)),
      m_search(new CatalogueSearch(m_opener, this))
{
    setObjectName(QStringLiteral("CatalogueWindow"));
    setWindowTitle(Title);

    m_scanView->setObjectName(QStringLiteral("scanTree"));
    m_scanView->setAccessibleName(tr("Catalogued volumes and their scans"));
    m_scanView->setModel(m_scanModel);
    m_scanView->setUniformRowHeights(true);
    m_scanView->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_scanView->setContextMenuPolicy(Qt::CustomContextMenu);
    m_scanView->setTextElideMode(Qt::ElideMiddle);
    m_scanView->header()->setStretchLastSection(false);

    m_searchBox->setObjectName(QStringLiteral("searchBox"));
    m_searchBox->setAccessibleName(tr("Search the catalogue"));
    m_searchBox->setPlaceholderText(tr("Search names in every catalogued volume"));
    m_searchBox->setClearButtonEnabled(true);

    m_resultView->setObjectName(QStringLiteral("resultTable"));
    m_resultView->setAccessibleName(tr("Items found"));
    m_resultView->setModel(m_resultModel);
    m_resultView->setSortingEnabled(true);
    m_resultView->sortByColumn(CatalogueResultModel::Name, Qt::AscendingOrder);
    m_resultView->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_resultView->setContextMenuPolicy(Qt::CustomContextMenu);
    m_resultView->setWordWrap(false);
    m_resultView->setAlternatingRowColors(true);
    m_resultView->verticalHeader()->hide();
    // Fixed row heights: the view never measures ten million rows.
    m_resultView->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_resultView->verticalHeader()->setDefaultSectionSize(m_resultView->fontMetrics().height() + 6);
    m_resultView->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    const int digit = m_resultView->fontMetrics().horizontalAdvance(QLatin1Char('0'));
    m_resultView->setColumnWidth(CatalogueResultModel::Name, 28 * digit);
    m_resultView->setColumnWidth(CatalogueResultModel::Folder, 34 * digit);
    m_resultView->setColumnWidth(CatalogueResultModel::Size, 11 * digit);
    m_resultView->setColumnWidth(CatalogueResultModel::Modified, 18 * digit);
    m_resultView->setColumnWidth(CatalogueResultModel::Volume, 14 * digit);
    m_resultView->horizontalHeader()->setStretchLastSection(true);

    m_status->setObjectName(QStringLiteral("statusLine"));
    m_status->setAccessibleName(tr("Search status"));
    statusBar()->addWidget(m_status, 1);

    auto* right = new QWidget(this);
    auto* layout = new QVBoxLayout(right);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_searchBox);
    layout->addWidget(m_filters);
    layout->addWidget(m_resultView, 1);
    m_splitter->setObjectName(QStringLiteral("splitter"));
    m_splitter->setAccessibleName(tr("Scans beside the items found"));
    m_splitter->addWidget(m_scanView);
    m_splitter->addWidget(right);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setSizes({430, 770});
    setCentralWidget(m_splitter);

    m_typing.setSingleShot(true);
    m_typing.setInterval(TypingPauseMs);
    connect(&m_typing, &QTimer::timeout, this, &CatalogueWindow::startSearch);
    connect(m_searchBox, &QLineEdit::textChanged, this, [this] { m_typing.start(); });
    connect(m_filters, &CatalogueFilterBar::changed, this, [this] { m_typing.start(); });
    connect(m_search, &CatalogueSearch::hits, this, &CatalogueWindow::onHits);
    connect(m_search, &CatalogueSearch::finished, this, &CatalogueWindow::onSearchFinished);
    connect(m_resultModel, &CatalogueResultModel::sortingChanged, this, &CatalogueWindow::showStatus);
    connect(m_resultView, &QAbstractItemView::activated, this,
            [this](const QModelIndex& index) { openRow(index.row()); });

    // Sticks come and go: the volumes' state is read again now and then.
    m_mountWatch.setInterval(5000);
    connect(&m_mountWatch, &QTimer::timeout, m_scanModel, &ScanTreeModel::refreshMounted);
    m_mountWatch.start();

    buildMenus();
    buildContextMenus();

    QString error;
    m_catalogue = m_opener(&error);
    if (!m_catalogue)
        m_searchError = error;
    reloadScans();

    resize(1200, 720);
    m_searchBox->setFocus(); // a search window opens ready for typing
    const QSettings saved = settings();
    restoreGeometry(saved.value(QStringLiteral("window/geometry")).toByteArray());
    m_splitter->restoreState(saved.value(QStringLiteral("window/splitter")).toByteArray());
    m_resultView->horizontalHeader()->restoreState(saved.value(QStringLiteral("window/columns")).toByteArray());
    showStatus();
}

CatalogueWindow::~CatalogueWindow()
{
    for (const QPointer<QThread>& thread : m_tasks)
        if (thread)
            thread->wait();
}

void CatalogueWindow::closeEvent(QCloseEvent* event)
{
    QSettings saved = settings();
    saved.setValue(QStringLiteral("window/geometry"), saveGeometry());
    saved.setValue(QStringLiteral("window/splitter"), m_splitter->saveState());
    saved.setValue(QStringLiteral("window/columns"), m_resultView->horizontalHeader()->saveState());
    QMainWindow::closeEvent(event);
}

void CatalogueWindow::buildMenus()
{
    QMenu* file = menuBar()->addMenu(tr("&File"));
    QAction* import = file->addAction(tr("&Import Listing Files..."), this, &CatalogueWindow::chooseImportFiles);
    import->setShortcut(tr("Ctrl+I"));
    QAction* reload = file->addAction(tr("&Reload Scans"), this, &CatalogueWindow::reloadScans);
    reload->setShortcut(QKeySequence::Refresh);
    file->addSeparator();
    QAction* closeWindow = file->addAction(tr("&Close Window"), this, &QWidget::close);
    closeWindow->setShortcut(QKeySequence::Close);
    QAction* quit = file->addAction(tr("&Quit"), this, [this] {
        close();
        if (m_services.programEnd)
            m_services.programEnd->end();
    });
    quit->setShortcut(QKeySequence::Quit);

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    QAction* find = edit->addAction(tr("&Find"), this, [this] {
        m_searchBox->setFocus();
        m_searchBox->selectAll();
    });
    find->setShortcut(QKeySequence::Find);
    QAction* copy = edit->addAction(tr("&Copy Path"), this, [this] { copyPaths(selectedRows()); });
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    m_resultView->addAction(copy);

    QMenu* item = menuBar()->addMenu(tr("&Item"));
    QAction* open = item->addAction(tr("&Open"), this, [this] {
        if (const QList<int> rows = selectedRows(); !rows.isEmpty())
            openRow(rows.first());
    });
    open->setShortcut(tr("Ctrl+O"));
    QAction* locate = item->addAction(tr("&Locate in File Manager"), this, [this] {
        if (const QList<int> rows = selectedRows(); !rows.isEmpty())
            locateRow(rows.first());
    });
    locate->setShortcut(tr("Ctrl+L"));

    QMenu* scan = menuBar()->addMenu(tr("&Scan"));
    QAction* compare = scan->addAction(tr("&Compare with Previous Scan"), this, [this] {
        if (const ScanInfo* s = selectedScan())
            compareScan(s->id);
    });
    compare->setShortcut(tr("Ctrl+D"));
    QAction* remove = scan->addAction(tr("&Remove Scan..."), this, [this] {
        if (const ScanInfo* s = selectedScan())
            removeScan(s->id);
    });
    remove->setShortcut(QKeySequence::Delete);
    remove->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    m_scanView->addAction(remove);
}

void CatalogueWindow::buildContextMenus()
{
    connect(m_resultView, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        const QModelIndex index = m_resultView->indexAt(at);
        if (!index.isValid())
            return;
        const int row = index.row();
        QMenu menu(this);
        menu.addAction(tr("&Open"), this, [this, row] { openRow(row); });
        menu.addAction(tr("&Locate in File Manager"), this, [this, row] { locateRow(row); });
        menu.addAction(tr("&Copy Path"), this, [this] { copyPaths(selectedRows()); });
        menu.exec(m_resultView->viewport()->mapToGlobal(at));
    });
    connect(m_scanView, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        const ScanInfo* scan = m_scanModel->scanAt(m_scanView->indexAt(at));
        if (!scan)
            return;
        const qint64 id = scan->id;
        QMenu menu(this);
        QAction* compare = menu.addAction(tr("&Compare with Previous Scan"), this, [this, id] { compareScan(id); });
        compare->setEnabled(m_scanModel->previousScan(*scan) != nullptr);
        menu.addAction(tr("&Remove Scan..."), this, [this, id] { removeScan(id); });
        menu.exec(m_scanView->viewport()->mapToGlobal(at));
    });
}

void CatalogueWindow::reloadScans()
{
    if (!m_catalogue)
        return;
    QString error;
    std::optional<std::vector<ScanInfo>> scans = m_catalogue->scans(&error);
    if (!scans) {
        m_searchError = error;
        showStatus();
        return;
    }
    m_scanModel->setScans(std::move(*scans));
    m_scanView->expandAll();
    for (int c = 1; c < ScanTreeModel::ColumnCount; ++c)
        m_scanView->resizeColumnToContents(c);
    // Long folder paths are shortened in the middle rather than pushing the counts out of sight.
    m_scanView->resizeColumnToContents(ScanTreeModel::Name);
    m_scanView->setColumnWidth(ScanTreeModel::Name, std::min(m_scanView->columnWidth(ScanTreeModel::Name), 230));
    m_filters->setVolumes(m_scanModel->volumeLabels());
    showStatus();
}

void CatalogueWindow::startSearch()
{
    m_resultModel->clear();
    m_found = 0;
    m_searchError.clear();
    const QString text = m_searchBox->text();
    if (text.isEmpty() && !m_filters->narrows()) {
        m_search->cancel();
        m_searching = false;
        m_currentSearch = 0;
        showStatus();
        return;
    }
    FindQuery query;
    query.text = text;
    // A pattern with * or ? is taken as one, as a shell would.
    query.glob = text.contains(QLatin1Char('*')) || text.contains(QLatin1Char('?'));
    m_filters->apply(query, QDateTime::currentSecsSinceEpoch());
    m_searching = true;
    m_currentSearch = m_search->start(std::move(query));
    showStatus();
}

void CatalogueWindow::onHits(quint64 search, const std::shared_ptr<CatalogueResults>& batch)
{
    if (search != m_currentSearch)
        return;
    m_found += qint64(batch->size());
    m_resultModel->append(std::move(*batch));
    showStatus();
}

void CatalogueWindow::onSearchFinished(quint64 search, qint64 elapsedMs, const QString& error)
{
    if (search != m_currentSearch)
        return;
    m_searching = false;
    m_elapsedMs = elapsedMs;
    m_searchError = error;
    m_resultModel->finish();
    showStatus();
    emit searchFinished();
}

void CatalogueWindow::showStatus()
{
    QString text;
    if (!m_searchError.isEmpty()) {
        text = tr("The catalogue cannot be read: %1").arg(m_searchError);
    } else if (m_searching) {
        text = tr("Searching... %1 found").arg(m_found);
    } else if (m_currentSearch == 0) {
        qint64 entries = 0;
        for (const ScanInfo& s : m_scanModel->scans())
            entries += s.fileCount + s.folderCount;
        text = tr("%1 scans of %2 volumes, %3 entries catalogued. Type to search.")
                   .arg(m_scanModel->scans().size())
                   .arg(m_scanModel->rowCount())
                   .arg(entries);
    } else {
        text = tr("%1 found in %2 s").arg(m_found).arg(QLocale().toString(double(m_elapsedMs) / 1000.0, 'f', 3));
        if (m_found > m_resultModel->rowCount())
            text += tr(" (the first %1 listed)").arg(m_resultModel->rowCount());
    }
    if (m_resultModel->sorting())
        text += tr(" - sorting...");
    m_status->setText(text);
}

QList<int> CatalogueWindow::selectedRows() const
{
    QList<int> rows;
    for (const QModelIndex& index : m_resultView->selectionModel()->selectedRows())
        rows.append(index.row());
    if (rows.isEmpty() && m_resultView->currentIndex().isValid())
        rows.append(m_resultView->currentIndex().row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

const ScanInfo* CatalogueWindow::selectedScan() const
{
    return m_scanModel->scanAt(m_scanView->currentIndex());
}

QString CatalogueWindow::reachablePath(int row)
{
    if (row < 0 || row >= m_resultModel->rowCount())
        return {};
    const CatalogueResults& results = m_resultModel->results();
    const std::size_t at = m_resultModel->storeRow(row);
    const ScanInfo& scan = results.scan(at);
    const std::optional<QByteArray> path = m_presence.currentPath(scan, results.path(at));
    // A volume without a UUID is known by its label and mount point only, which another volume (or an empty
    // mount folder) may share: the scanned folder missing there means the item is not at hand, as for
    // quillary-catalogue's "mounted" column.
    const std::optional<QByteArray> start = path ? m_presence.currentPath(scan, scan.startPath) : std::nullopt;
    const bool folderThere = start && !FolderReader::absoluteFolder(*start).isEmpty();
    if (!folderThere) {
        const QString label = scan.volume.label.isEmpty() ? tr("(no label)") : scan.volume.label;
        const QString uuid = scan.volume.uuid.isEmpty() ? tr("none recorded") : scan.volume.uuid;
        const QString item = NativeText::toDisplay(results.path(at));
        notice(path ? tr("%1 is not at hand: the folder %2 it was scanned in is no longer there on the volume \"%3\" "
                         "(UUID %4).\n\nConnect that volume to open or locate the item.")
                          .arg(item, NativeText::toDisplay(scan.startPath), label, uuid)
                    : tr("%1 is on the volume \"%2\" (UUID %3), which is not connected.\n\nConnect that volume to "
                         "open or locate the item.")
                          .arg(item, label, uuid),
               MessageStyle::Information);
        return {};
    }
    return NativeText::toDisplay(*path);
}

void CatalogueWindow::openRow(int row)
{
    if (const QString path = reachablePath(row); !path.isEmpty())
        m_services.shell->open(path);
}

void CatalogueWindow::locateRow(int row)
{
    if (const QString path = reachablePath(row); !path.isEmpty())
        m_services.shell->locate(path);
}

void CatalogueWindow::copyPaths(const QList<int>& rows)
{
    QStringList paths;
    for (const int row : rows)
        if (row >= 0 && row < m_resultModel->rowCount())
            paths.append(NativeText::toDisplay(m_resultModel->results().path(m_resultModel->storeRow(row))));
    if (!paths.isEmpty())
        QApplication::clipboard()->setText(paths.join(QLatin1Char('\n')));
}

void CatalogueWindow::notice(const QString& text, MessageStyle style)
{
    if (m_services.messages)
        m_services.messages->message(text, style, Title);
}

void CatalogueWindow::track(QPointer<QThread> thread)
{
    m_tasks.removeAll(nullptr);
    m_tasks.append(thread);
}

void CatalogueWindow::compareScan(qint64 scanId)
{
    const auto& scans = m_scanModel->scans();
    const auto scan = std::find_if(scans.begin(), scans.end(), [&](const ScanInfo& s) { return s.id == scanId; });
    if (scan == scans.end())
        return;
    const ScanInfo* previous = m_scanModel->previousScan(*scan);
    if (!previous) {
        notice(tr("There is no earlier scan of %1 on this volume to compare with.")
                   .arg(NativeText::toDisplay(scan->startPath)),
               MessageStyle::Information);
        return;
    }
    struct Compared
    {
        std::optional<CatalogueDiff> diff;
        QString error;
    };
    const qint64 older = previous->id;
    QApplication::setOverrideCursor(Qt::BusyCursor);
    track(runInBackground<Compared>(
        this,
        [opener = m_opener, older, scanId] {
            Compared answer;
            if (std::unique_ptr<Catalogue> catalogue = opener(&answer.error))
                answer.diff = catalogue->diff(older, scanId, &answer.error);
            return answer;
        },
        [this](Compared answer) {
            QApplication::restoreOverrideCursor();
            if (!answer.diff) {
                notice(tr("The scans cannot be compared: %1").arg(answer.error));
                return;
            }
            auto* dialog = new DiffDialog(std::move(*answer.diff), this);
            dialog->show();
            emit diffShown(dialog);
        }));
}

void CatalogueWindow::removeScan(qint64 scanId)
{
    const auto& scans = m_scanModel->scans();
    const auto scan = std::find_if(scans.begin(), scans.end(), [&](const ScanInfo& s) { return s.id == scanId; });
    if (scan == scans.end() || !m_catalogue)
        return;
    const QString question = tr("Remove the scan of %1 taken %2 from the catalogue?\n\nThe listing files stay.")
                                 .arg(NativeText::toDisplay(scan->startPath), scanTime(*scan));
    if (m_services.messages &&
        m_services.messages->message(question, MessageStyle::YesNoQuestion, Title) != Answer::Yes)
        return;
    QString error;
    if (!m_catalogue->remove({scanId}, &error))
        notice(tr("The scan could not be removed: %1").arg(error));
    reloadScans();
    if (m_currentSearch != 0)
        startSearch();
}

void CatalogueWindow::chooseImportFiles()
{
    const QStringList files = QFileDialog::getOpenFileNames(this, tr("Import Listing Files"), QString(),
                                                            tr("Listing files (*.txt);;All files (*)"));
    if (!files.isEmpty())
        importFiles(files);
}

void CatalogueWindow::importFiles(const QStringList& files)
{
    struct Shared
    {
        std::atomic<qint64> done{0};
        std::atomic<qint64> total{0};
        std::atomic<int> set{0};
        std::atomic_bool cancel{false};
    };
    const QList<QStringList> sets = listingSets(files);
    auto shared = std::make_shared<Shared>();
    auto* progress = new QProgressDialog(tr("Importing listing files..."), tr("Cancel"), 0, 1000, this);
    progress->setObjectName(QStringLiteral("importProgress"));
    progress->setAccessibleName(tr("Import progress"));
    progress->setWindowTitle(tr("Import Listing Files"));
    progress->setMinimumDuration(0);
    progress->setAutoClose(false);
    progress->setAutoReset(false);
    progress->setValue(0);
    connect(progress, &QProgressDialog::canceled, this, [shared] { shared->cancel = true; });
    auto* poll = new QTimer(progress);
    connect(poll, &QTimer::timeout, progress, [progress, shared, count = sets.size()] {
        const qint64 total = shared->total, done = shared->done;
        const double inSet = total > 0 ? double(done) / double(total) : 0.0;
        progress->setValue(int(1000.0 * (double(shared->set) + inSet) / double(std::max<qsizetype>(count, 1))));
    });
    poll->start(50);

    track(runInBackground<QStringList>(
        this,
        [opener = m_opener, sets, shared] {
            QStringList problems;
            QString error;
            std::unique_ptr<Catalogue> catalogue = opener(&error);
            if (!catalogue)
                return QStringList{error};
            for (qsizetype i = 0; i < sets.size() && !shared->cancel; ++i) {
                shared->set = int(i);
                shared->done = 0;
                error.clear();
                const auto told = [shared](qint64 done, qint64 total) {
                    shared->done = done;
                    shared->total = total;
                    return !shared->cancel.load();
                };
                if (!catalogue->importListing(sets[i], {}, &error, told) && !shared->cancel)
                    problems.append(QFileInfo(sets[i].first()).fileName() + QStringLiteral(": ") + error);
            }
            return problems;
        },
        [this, progress](QStringList problems) {
            progress->close();
            progress->deleteLater();
            reloadScans();
            if (!problems.isEmpty())
                notice(tr("Some listing files could not be imported:\n\n%1").arg(problems.join(QLatin1Char('\n'))));
            if (m_currentSearch != 0)
                startSearch();
            emit importFinished();
        }));
}
