// SPDX-License-Identifier: GPL-3.0-or-later

#include "ResultPanes.h"

#include "ResultGrid.h"
#include "ResultList.h"
#include "ResultModel.h"
#include "platform/Twips.h"

#include <QLabel>
#include <QLineEdit>
#include <cmath>
#include <limits>
#include <utility>

namespace {

QString selected(int row)
{
    return QStringLiteral("Selected: ") + QString::number(qint64(row) + 1);
}

// The "Selected: " label of a list box: its position is 16-bit, so past 32,767 it overflows, and the click handler,
// which skips a failing statement, leaves the label as it was.
void showSelected(QLabel* label, int row)
{
    if (qint64(row) + 1 <= std::numeric_limits<qint16>::max())
        label->setText(selected(row));
}

// The rounding of a float to a whole number that the mouse coordinates go through: halves to even.
int roundHalfEven(double v)
{
    const double r = std::nearbyint(v);
    if (!(r > double(std::numeric_limits<int>::min())))
        return std::numeric_limits<int>::min();
    if (!(r < double(std::numeric_limits<int>::max())))
        return std::numeric_limits<int>::max();
    return int(r);
}

} // namespace

ScanResult::List ResultPanes::listOf(int pane)
{
    switch (pane) {
    case 1:
        return ScanResult::List::FolderPaths;
    case 2:
        return ScanResult::List::FolderNames;
    case 3:
        return ScanResult::List::FilePaths;
    default:
        return ScanResult::List::FileNames;
    }
}

ResultPanes::ResultPanes(const BrowserBehaviour& behaviour, const PaneControls& panes, const PathControls& paths,
                         const StatusControls& status, QObject* parent)
    : QObject(parent), m_behaviour(behaviour), m_paneControls(panes), m_paths(paths), m_status(status)
{
    for (int n = 1; n <= 4; ++n) {
        if (grids()) {
            m_grid[n] = qobject_cast<ResultGrid*>(m_paneControls.MSFlexGrid[n]);
            Q_ASSERT(m_grid[n]);
            m_model[n] = new ResultModel(listOf(n), m_grid[n]);
            m_grid[n]->setModel(m_model[n]);
        } else {
            m_list[n] = qobject_cast<ResultList*>(m_paneControls.List[n]);
            Q_ASSERT(m_list[n]);
            m_model[n] = new ResultModel(listOf(n), m_list[n]);
            m_list[n]->setModel(m_model[n]);
        }
    }
    for (int n = 1; n <= 4; ++n) {
        if (grids())
            connect(m_grid[n], &ResultGrid::gridClicked, this, [this, n] { click(n); });
        else
            connect(m_list[n], &ResultList::listClicked, this, [this, n] { click(n); });
    }
}

ResultPanes::~ResultPanes() = default;

void ResultPanes::clear()
{
    m_result.reset();
    for (int n = 1; n <= 4; ++n)
        m_model[n]->setResult(nullptr);
}

void ResultPanes::fill(int pane)
{
    m_model[pane]->setResult(m_result);
}

QAbstractItemModel* ResultPanes::model(int pane) const
{
    return m_model[pane];
}

int ResultPanes::rowCount(int pane) const
{
    return model(pane)->rowCount();
}

void ResultPanes::selectFirst(int pane)
{
    setCurrentRow(pane, 0);
}

int ResultPanes::currentRow(int pane) const
{
    return grids() ? m_grid[pane]->row() : m_list[pane]->listIndex();
}

void ResultPanes::setCurrentRow(int pane, int row)
{
    if (row < 0 || row >= rowCount(pane))
        return;
    if (grids())
        m_grid[pane]->setRow(row);
    else
        m_list[pane]->setListIndex(row);
    if (m_behaviour.selectingRunsClick && !m_inClick[pane])
        click(pane);
}

bool ResultPanes::isSelected(int pane, int row) const
{
    const QAbstractItemView* view = grids() ? static_cast<QAbstractItemView*>(m_grid[pane]) : m_list[pane];
    return view->selectionModel()->isSelected(model(pane)->index(row, 0));
}

QString ResultPanes::text(int pane, int row) const
{
    if (row < 0 || row >= rowCount(pane))
        return {};
    return model(pane)->index(row, 0).data().toString();
}

void ResultPanes::setCellColours(int pane, int row, const QColor& back, const QColor& fore)
{
    if (grids())
        m_model[pane]->setCellColours(row, back, fore);
}

void ResultPanes::click(int pane)
{
    using Handler = void (ResultPanes::*)();
    static constexpr Handler lists[] = {nullptr, &ResultPanes::List1_Click, &ResultPanes::List2_Click,
                                        &ResultPanes::List3_Click, &ResultPanes::List4_Click};
    static constexpr Handler gridHandlers[] = {nullptr, &ResultPanes::MSFlexGrid1_Click,
                                               &ResultPanes::MSFlexGrid2_Click, &ResultPanes::MSFlexGrid3_Click,
                                               &ResultPanes::MSFlexGrid4_Click};
    if (pane < 1 || pane > 4)
        return;
    const bool running = std::exchange(m_inClick[pane], true);
    (this->*(grids() ? gridHandlers : lists)[pane])();
    m_inClick[pane] = running;
}

// --- List boxes -------------------------------------------------------------------------------------------------

void ResultPanes::List1_Click()
{
    showSelected(m_status.Label1[1], m_list[1]->listIndex());
}

void ResultPanes::List2_Click()
{
    // The path box gets the entry as the list shows it, name and size, not the folder's path.
    const int index = m_list[2]->listIndex();
    showSelected(m_status.Label1[5], index);
    m_list[2]->setToolTip(m_list[2]->entry(index));
    m_paths.Text1->setText(m_list[2]->entry(index));
}

void ResultPanes::List3_Click()
{
    const int index = m_list[3]->listIndex();
    showSelected(m_status.Label1[6], index);
    m_list[3]->setToolTip(m_list[3]->entry(index));
    setCurrentRow(4, index);
    m_paths.Text2->setText(m_list[3]->entry(index));
}

void ResultPanes::List4_Click()
{
    // The order is kept on purpose: the name list is cleared first, and the path list then takes the entry the
    // name list still reports. List4 allows several selected entries, so its ListIndex is the entry with the
    // focus and survives the clearing. Selecting the path runs the path list's click, which fills the path box
    // and selects this name again; reached from that click instead (a path clicked), the name stays cleared.
    showSelected(m_status.Label1[2], m_list[4]->listIndex());
    if (const int count = m_list[4]->count(); count > 0) {
        const QAbstractItemModel* names = m_list[4]->model();
        m_list[4]->selectionModel()->select(QItemSelection(names->index(0, 0), names->index(count - 1, 0)),
                                            QItemSelectionModel::Deselect);
    }
    const int index = m_list[4]->listIndex();
    setCurrentRow(3, index);
    m_list[4]->setToolTip(m_list[3]->entry(index));
}

// --- Grids ----------------------------------------------------------------------------------------------------

void ResultPanes::darkGreenSelection(ResultGrid* grid)
{
    grid->setSelectionColours(QColor(0, 128, 0), QColor(255, 255, 255));
}

// A click on a grid without rows finds no current row; what depends on it is skipped, since the selection
// handlers ignore a failing statement and go on with the next.
void ResultPanes::MSFlexGrid1_Click()
{
    const int row = m_grid[1]->row();
    if (row < 0)
        return;
    m_status.Label1[1]->setText(selected(row));
    m_paths.Text1->setText(m_grid[1]->text());
}

void ResultPanes::MSFlexGrid2_Click()
{
    darkGreenSelection(m_grid[2]);
    const int row = m_grid[2]->row();
    if (row < 0)
        return;
    m_grid[1]->setRow(row);
    m_grid[2]->setRow(row); // the selection reaches to the current row again
    m_status.Label1[5]->setText(selected(row));
    m_paths.Text1->setText(m_grid[1]->text());
}

void ResultPanes::MSFlexGrid3_Click()
{
    darkGreenSelection(m_grid[3]);
    const int row = m_grid[3]->row();
    if (row < 0)
        return;
    m_grid[4]->setRow(row);
    m_status.Label1[6]->setText(selected(row));
    m_paths.Text2->setText(m_grid[3]->text());
}

void ResultPanes::MSFlexGrid4_Click()
{
    darkGreenSelection(m_grid[4]);
    const int row = m_grid[4]->row();
    if (row < 0)
        return;
    m_grid[3]->setRow(row);
    m_status.Label1[2]->setText(selected(row));
    m_paths.Text2->setText(m_grid[3]->text());
}

// --- The entry under the mouse -----------------------------------------------------------------------------------

int ResultPanes::GetRClickedItem(QWidget* MyList, float X, float Y) const
{
    int result = 0;
    if (grids())
        return result;
    auto* list = qobject_cast<QListView*>(MyList);
    if (!list)
        return -1;
    const int px = roundHalfEven(X) / qMax(1, roundHalfEven(Twips::perPixelX()));
    const int py = roundHalfEven(Y) / qMax(1, roundHalfEven(Twips::perPixelY()));
    const QAbstractItemModel* items = list->model();
    const int count = items ? items->rowCount() : 0;
    // Each entry's rectangle as a list box gives it: the full client width, right and bottom one past the last
    // pixel, so a point on the line between two entries touches both and the upper one wins.
    const int right = list->viewport()->width();
    for (int i = 0; i < count; ++i) {
        const QRect r = list->visualRect(items->index(i, 0));
        const int top = r.top();
        const int bottom = r.top() + r.height();
        if (0 <= px && px <= right && top <= py && py <= bottom) {
            result = i;
            break;
        }
    }
    return result;
}
