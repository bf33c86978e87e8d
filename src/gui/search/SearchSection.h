// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/NavigationControls.h"
#include "controls/PathControls.h"
#include "controls/SearchControls.h"
#include "controls/StatusControls.h"
#include "flavour/BrowserBehaviour.h"
#include "platform/Services.h"
#include "search/ListSearch.h"

#include <QObject>

class ItemActions;
class ResultPanes;
class SearchResultModel;

// The search section of a browser window: the toggle that shows it, the two search buttons over the folder-name
// and file-name panes, the numbered result list and its count, and what a click and a double-click on a
// result do to the panes.
class SearchSection : public QObject
{
    Q_OBJECT
public:
    SearchSection(const BrowserBehaviour& behaviour, const SearchControls& search, const NavigationControls& navigation,
                  const PathControls& paths, const StatusControls& status, ResultPanes& panes, ItemActions& actions,
                  const Services& services, QObject* parent);

    // The kind of the last search; results refer to the folder panes after "Search Folders", to the file
    // panes otherwise (also before any search).
    bool searchingFolders() const { return m_kind == SearchResult::Kind::Folders; }
    SearchResultModel* model() const { return m_model; }

    // A drive or folder change: no search string, no results, no count, and the section put away, since its toggle is
    // disabled until the next listing.
    void reset();

    void Label9Com_Click();
    void SearchFolders_Click();
    void SearchFiles_Click();
    void List5_Click();
    void List5_DblClick();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void search(SearchResult::Kind kind);
    QString selectedLine() const;

    const BrowserBehaviour& m_behaviour;
    const SearchControls& m_searchControls;
    const NavigationControls& m_navigation;
    const PathControls& m_paths;
    const StatusControls& m_status;
    ResultPanes& m_panes;
    ItemActions& m_actions;
    Services m_services;
    SearchResultModel* m_model = nullptr;
    SearchResult::Kind m_kind = SearchResult::Kind::Files;
};
