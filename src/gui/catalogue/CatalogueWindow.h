// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "CatalogueSearch.h"
#include "VolumePresence.h"
#include "platform/MessageStyle.h"
#include "platform/Services.h"

#include <QElapsedTimer>
#include <QList>
#include <QMainWindow>
#include <QPointer>
#include <QTimer>
#include <memory>

class CatalogueFilterBar;
class CatalogueResultModel;
class CatalogueResults;
class QLabel;
class QLineEdit;
class QTableView;
class QThread;
class QTreeView;
class QSplitter;
class ScanTreeModel;

// "Quillary Catalogue": every recorded scan, searchable with its drive unplugged. The volumes and their scans on
// the left; on the right a search that runs as the user types, its filters and the hits; a status line with the
// count and the time taken. Items open and are located through the shell service as in the browser windows,
// except that an item whose volume is not connected names the volume to connect instead.
class CatalogueWindow : public QMainWindow
{
    Q_OBJECT
public:
    // `opener` opens the catalogue; it is called once for the window and once for each thread that reads it.
    CatalogueWindow(const Services& services, CatalogueSearch::Opener opener, QWidget* parent = nullptr);
    ~CatalogueWindow() override;

    CatalogueResultModel* resultModel() const { return m_resultModel; }
    ScanTreeModel* scanModel() const { return m_scanModel; }

    // The view rows' items: opened, shown in the file manager, or their paths put on the clipboard.
    void openRow(int row);
    void locateRow(int row);
    void copyPaths(const QList<int>& rows);
    // Reads a set of listing files into the catalogue, with a progress bar.
    void importFiles(const QStringList& files);
    void compareScan(qint64 scanId);
    void removeScan(qint64 scanId);
    void reloadScans();

signals:
    void searchFinished();
    void importFinished();
    void diffShown(QWidget* dialog);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildMenus();
    void buildContextMenus();
    void startSearch();
    void onHits(quint64 search, const std::shared_ptr<CatalogueResults>& batch);
    void onSearchFinished(quint64 search, qint64 elapsedMs, const QString& error);
    void showStatus();
    // The item's path where it can be reached now, or empty after telling the user which volume to connect.
    QString reachablePath(int row);
    QList<int> selectedRows() const;
    const ScanInfo* selectedScan() const;
    void chooseImportFiles();
    void notice(const QString& text, MessageStyle style = MessageStyle::Exclamation);
    void track(QPointer<QThread> thread);

    Services m_services;
    CatalogueSearch::Opener m_opener;
    std::unique_ptr<Catalogue> m_catalogue;
    VolumePresence m_presence;

    ScanTreeModel* m_scanModel;
    QTreeView* m_scanView;
    QLineEdit* m_searchBox;
    CatalogueFilterBar* m_filters;
    CatalogueResultModel* m_resultModel;
    QTableView* m_resultView;
    QSplitter* m_splitter;
    QLabel* m_status;
    CatalogueSearch* m_search;
    QTimer m_typing;
    QTimer m_mountWatch;

    quint64 m_currentSearch = 0;
    bool m_searching = false;
    qint64 m_found = 0;
    qint64 m_elapsedMs = 0;
    QString m_searchError;
    QList<QPointer<QThread>> m_tasks;
};
