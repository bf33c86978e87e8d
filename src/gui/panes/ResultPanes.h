// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/PaneControls.h"
#include "controls/PathControls.h"
#include "controls/StatusControls.h"
#include "flavour/BrowserBehaviour.h"
#include "scan/ScanResult.h"

#include <QColor>
#include <QObject>
#include <array>
#include <memory>

class QAbstractItemModel;
class ResultGrid;
class ResultList;
class ResultModel;

// The four result panes of a browser window and what a click in them does: List1..List4 in ShortBrowser,
// MSFlexGrid1..MSFlexGrid4 in LongBrowser, numbered 1 to 4 here as in the design (folder paths, folder names,
// file paths, file names). Each pane is a view over a model of the window's scan result, which the panes
// hold for the window.
class ResultPanes : public QObject
{
    Q_OBJECT
public:
    ResultPanes(const BrowserBehaviour& behaviour, const PaneControls& panes, const PathControls& paths,
                const StatusControls& status, QObject* parent);
    ~ResultPanes() override;

    bool grids() const { return m_behaviour.grids(); }
    static ScanResult::List listOf(int pane);

    // The result the panes show, kept until the next listing or folder change.
    const std::shared_ptr<const ScanResult>& result() const { return m_result; }
    void setResult(std::shared_ptr<const ScanResult> result) { m_result = std::move(result); }

    // Empties all four panes and forgets the result.
    void clear();
    // Fills pane `pane` from the current result.
    void fill(int pane);
    int rowCount(int pane) const;
    QAbstractItemModel* model(int pane) const;

    // Selects the first entry (ListIndex = 0, Row = 0); an empty pane stays as it is.
    void selectFirst(int pane);
    // ListIndex of a list box, Row of a grid; -1 when there is none.
    int currentRow(int pane) const;
    // Makes `row` current and selected, as setting ListIndex or Row does. Setting a list box's ListIndex raises
    // its Click, so in a flavour whose selecting runs the click the pane's handler runs too, unless it is the
    // one already running (a list's handler that selects its partner is not run again by the partner's own).
    void setCurrentRow(int pane, int row);
    bool isSelected(int pane, int row) const;
    QString text(int pane, int row) const;
    // CellBackColor / CellForeColor of a grid cell; list boxes have no cell colours.
    void setCellColours(int pane, int row, const QColor& back, const QColor& fore = {});

    // Index of the list-box entry under a point given in twips relative to the list's client area, as the
    // right-click menus use it: 0 when no entry holds the point, -1 when `MyList` is not a list box.
    // In LongBrowser it always answers 0.
    int GetRClickedItem(QWidget* MyList, float X, float Y) const;

    // Runs the pane's click handler as a click on its current entry would.
    void click(int pane);

private:
    void List1_Click();
    void List2_Click();
    void List3_Click();
    void List4_Click();
    void MSFlexGrid1_Click();
    void MSFlexGrid2_Click();
    void MSFlexGrid3_Click();
    void MSFlexGrid4_Click();
    void darkGreenSelection(ResultGrid* grid);

    const BrowserBehaviour& m_behaviour;
    const PaneControls& m_paneControls;
    const PathControls& m_paths;
    const StatusControls& m_status;
    std::array<ResultList*, 5> m_list{};
    std::array<ResultGrid*, 5> m_grid{};
    std::array<ResultModel*, 5> m_model{};
    std::shared_ptr<const ScanResult> m_result;
    std::array<bool, 5> m_inClick{};
};
