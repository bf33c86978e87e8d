// SPDX-License-Identifier: GPL-3.0-or-later

#include "ContextMenus.h"

#include "ItemActions.h"
#include "SaveActions.h"
#include "UnhandledError.h"
#include "panes/ResultPanes.h"
#include "platform/MessageService.h"
#include "platform/Twips.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMouseEvent>
#include <QTableView>
#include <limits>

ContextMenus::ContextMenus(const BrowserFlavour& flavour, const MenuControls& menus, const PaneControls& paneControls,
                           const PathControls& paths, ResultPanes& panes, ItemActions& actions, SaveActions& saves,
                           const Services& services, QObject* parent)
    : QObject(parent), m_flavour(flavour), m_menus(menus), m_paths(paths), m_panes(panes), m_actions(actions),
      m_saves(saves), m_services(services), m_copies(flavour, paths, panes, services)
{
    const bool grids = flavour.behaviour.grids();
    for (int pane : {2, 3}) {
        m_views[pane] =
            grids ? static_cast<QAbstractItemView*>(paneControls.MSFlexGrid[pane]) : paneControls.List[pane];
        m_views[pane]->viewport()->installEventFilter(this);
    }
    bind(menus.mnuPopUp2,
         {[this] { OpenFolder(); }, [this] { LocateThisFolder(); }, [this] { ShowSerialNo2(); },
          [this] { ShowFolderPath(); }, [this] { m_saves.saveFolderList(); }, [this] { m_copies.CopyFolders(); }});
    bind(menus.mnuPopUp,
         {[this] { OpenThisFile(); }, [this] { LocateThisFile(); }, [this] { ShowSerialNo(); },
          [this] { AbsoluteFileName(); }, [this] { m_saves.saveFileList(); }, [this] { m_copies.copySelectedFile(); }});
}

// The entries stand in the same order in both windows, under names and captions that differ.
void ContextMenus::bind(QMenu* menu, const std::array<std::function<void()>, 6>& handlers)
{
    std::size_t k = 0;
    for (QAction* action : menu->actions()) {
        if (action->isSeparator() || k == handlers.size())
            continue;
        connect(action, &QAction::triggered, this, handlers[k++]);
    }
}

bool ContextMenus::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type != QEvent::MouseButtonPress && type != QEvent::MouseButtonDblClick && type != QEvent::MouseButtonRelease)
        return QObject::eventFilter(watched, event);
    auto* mouse = static_cast<QMouseEvent*>(event);
    if (mouse->button() != Qt::RightButton)
        return QObject::eventFilter(watched, event);
    // The right button never reaches the view: it would move the current row, which LongBrowser's menus must
    // find as it was, and which ShortBrowser sets itself.
    if (type != QEvent::MouseButtonRelease) {
        const int pane = watched == m_views[2]->viewport() ? 2 : 3;
        const QPointF at = mouse->position();
        pane_MouseDown(pane, mouse->button(), float(at.x() * Twips::perPixelX()), float(at.y() * Twips::perPixelY()),
                       mouse->globalPosition().toPoint());
    }
    return true;
}

void ContextMenus::pane_MouseDown(int pane, Qt::MouseButton Button, float X, float Y, const QPoint& globalPos)
{
    if (Button != Qt::RightButton)
        return;
    const BrowserBehaviour& behaviour = m_flavour.behaviour;
    ResultPanes& panes = m_panes;
    // ShortBrowser's folder list offers its menu only once something has been selected in it; its file list
    // always does. The asymmetry is the program's own.
    if (behaviour.rightClickSelects && pane == 2 && panes.currentRow(2) == -1)
        return;
    const int idx = m_panes.GetRClickedItem(m_views[pane], X, Y);
    if (idx == -1)
        return;
    if (behaviour.rightClickSelects) {
        // A point below the last entry answers 0, so the first entry is taken.
        panes.setCurrentRow(pane, idx);
    }
    (pane == 2 ? m_menus.mnuPopUp2 : m_menus.mnuPopUp)->popup(globalPos);
}

// An entry of `partner` belonging to the selection of `selected`: a list box is read at the index selected in
// the list clicked, a grid at its own current row, which the click on its partner has moved along.
QString ContextMenus::partnerEntry(int partner, int selected) const
{
    const ResultPanes& panes = m_panes;
    const bool ownRow = m_flavour.behaviour.menusReadCurrentCells;
    return panes.text(partner, panes.currentRow(ownRow ? partner : selected));
}

QString ContextMenus::folderPath() const
{
    return partnerEntry(1, 2);
}

QString ContextMenus::fileName() const
{
    return partnerEntry(4, 3);
}

void ContextMenus::OpenFolder()
{
    m_actions.open(folderPath());
}

void ContextMenus::LocateThisFolder()
{
    m_actions.locate(m_paths.Text1->text());
}

void ContextMenus::OpenThisFile()
{
    // Always the shell's open, never the player a double-click may use.
    m_actions.open(m_paths.Text2->text());
}

void ContextMenus::LocateThisFile()
{
    m_actions.locate(m_paths.Text2->text());
}

void ContextMenus::ShowSerialNo2()
{
    showSerialNumber(2);
}

void ContextMenus::ShowSerialNo()
{
    showSerialNumber(3);
}

void ContextMenus::showSerialNumber(int pane)
{
    // The folder list of a list box is not held to 32,767 entries as the file list is, but the number is still
    // worked out in 16 bits: past the limit it overflows, and nothing traps it.
    const qint64 serial = qint64(m_panes.currentRow(pane)) + 1;
    if (m_flavour.behaviour.sixteenBitPositions && serial > std::numeric_limits<qint16>::max()) {
        failUnhandled(m_services, RuntimeError::Overflow);
        return;
    }
    m_services.messages->message(QStringLiteral("List Serial Number of the Selected Item is ") +
                                 QString::number(serial));
}

void ContextMenus::ShowFolderPath()
{
    m_services.messages->message(QStringLiteral("Selected Folder Path is:\r\n\r\n") + folderPath().toUpper());
}

void ContextMenus::AbsoluteFileName()
{
    m_services.messages->message(m_flavour.texts.absoluteNameHeading + QStringLiteral("\r\n\r\n") +
                                 fileName().toUpper());
}
