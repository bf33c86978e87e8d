// SPDX-License-Identifier: GPL-3.0-or-later

#include "SearchSection.h"

#include "SearchResultModel.h"
#include "actions/ItemActions.h"
#include "actions/UnhandledError.h"
#include "panes/ResultList.h"
#include "panes/ResultPanes.h"

#include <QEvent>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>

SearchSection::SearchSection(const BrowserBehaviour& behaviour, const SearchControls& search,
                             const NavigationControls& navigation, const PathControls& paths,
                             const StatusControls& status, ResultPanes& panes, ItemActions& actions,
                             const Services& services, QObject* parent)
    : QObject(parent), m_behaviour(behaviour), m_searchControls(search), m_navigation(navigation), m_paths(paths),
      m_status(status), m_panes(panes), m_actions(actions), m_services(services)
{
    auto* list5 = qobject_cast<ResultList*>(m_searchControls.List5);
    Q_ASSERT(list5);
    m_model = new SearchResultModel(list5);
    list5->setModel(m_model);
    list5->setMouseTracking(true);
    list5->viewport()->installEventFilter(this);

    connect(m_navigation.Label9Com, &QPushButton::clicked, this, [this] { Label9Com_Click(); });
    connect(m_searchControls.SearchFolders, &QPushButton::clicked, this, [this] { SearchFolders_Click(); });
    connect(m_searchControls.SearchFiles, &QPushButton::clicked, this, [this] { SearchFiles_Click(); });
    connect(list5, &ResultList::listClicked, this, [this] { List5_Click(); });
    connect(list5, &QAbstractItemView::doubleClicked, this, [this] { List5_DblClick(); });
}

void SearchSection::reset()
{
    m_searchControls.srchFolder->clear();
    m_model->clear();
    m_status.Label1[7]->setText(QString());
    m_searchControls.Frame1->hide();
}

void SearchSection::Label9Com_Click()
{
    m_searchControls.Frame1->setHidden(!m_searchControls.Frame1->isHidden());
    if (!m_searchControls.Frame1->isHidden())
        m_searchControls.Frame1->raise();
}

void SearchSection::SearchFolders_Click()
{
    search(SearchResult::Kind::Folders);
}

void SearchSection::SearchFiles_Click()
{
    search(SearchResult::Kind::Files);
}

void SearchSection::search(SearchResult::Kind kind)
{
    m_kind = kind;
    m_model->clear();
    m_status.Label1[7]->setText(QString());
    const QString wanted = m_searchControls.srchFolder->text();
    if (wanted.isEmpty())
        return;
    SearchResult found = ListSearch::run(m_panes.result(), kind, wanted);
    // The grid was searched by moving its current row down to each entry in turn, so it ends on the last one.
    const int pane = kind == SearchResult::Kind::Folders ? 2 : 4;
    if (m_panes.grids() && m_panes.rowCount(pane) > 0)
        m_panes.setCurrentRow(pane, m_panes.rowCount(pane) - 1);
    m_status.Label1[7]->setText(found.countCaption());
    m_model->setResult(std::move(found));
}

QString SearchSection::selectedLine() const
{
    const QModelIndex current = m_searchControls.List5->currentIndex();
    return current.isValid() ? current.data().toString() : QString();
}

void SearchSection::List5_Click()
{
    // The serial is read back from the line, characters 3 to 7, into a 16-bit number: a six-digit serial loses
    // its last digit and selects another item, and from 32,768 on it overflows.
    bool numeric = false;
    const int serial = selectedLine().mid(2, 5).trimmed().toInt(&numeric);
    if (!numeric) {
        failUnhandled(m_services, RuntimeError::TypeMismatch);
        return;
    }
    if (serial > 32767) {
        failUnhandled(m_services, RuntimeError::Overflow);
        return;
    }
    const int row = serial - 1;
    const int first = searchingFolders() ? 1 : 3;
    // An old result after a new scan may point past the end of the panes.
    if (row < 0 || row >= m_panes.rowCount(first)) {
        failUnhandled(m_services, RuntimeError::InvalidArrayIndex);
        return;
    }
    for (int pane : {first, first + 1})
        m_panes.setCurrentRow(pane, row);
    if (searchingFolders())
        m_paths.Text1->setText(m_actions.text(BrowserBehaviour::ItemText::FolderPathAtNameRow));
    else
        m_paths.Text2->setText(m_actions.text(BrowserBehaviour::ItemText::FilePathRow));
}

void SearchSection::List5_DblClick()
{
    m_actions.closePlayer();
    if (searchingFolders()) {
        // The shell was handed the folder as the directory to start in, with no file: it opens that folder.
        const QString folder = m_actions.text(m_behaviour.searchFolderText);
        if (m_actions.openMode())
            m_actions.open(folder);
        else
            m_actions.locate(folder);
        return;
    }
    m_actions.pathOfFilez(m_actions.text(m_behaviour.searchFileText));
}

bool SearchSection::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseMove && watched == m_searchControls.List5->viewport())
        m_searchControls.List5->setToolTip(selectedLine());
    return QObject::eventFilter(watched, event);
}
