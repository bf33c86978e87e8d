// SPDX-License-Identifier: GPL-3.0-or-later

#include "ItemActions.h"

#include "UnhandledError.h"
#include "controls/ClickableFrame.h"
#include "panes/ResultPanes.h"
#include "platform/MediaPlayer.h"
#include "platform/ShellService.h"

#include <QAbstractItemView>
#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QMouseEvent>
#include <QRadioButton>
#include <QTableView>

ItemActions::ItemActions(const BrowserBehaviour& behaviour, const PaneControls& paneControls, const PathControls& paths,
                         const ModeControls& mode, const PlayerControls& player, ResultPanes& panes,
                         const Services& services, QObject* parent)
    : QObject(parent), m_behaviour(behaviour), m_paneControls(paneControls), m_paths(paths), m_mode(mode),
      m_player(player), m_panes(panes), m_services(services)
{
    // A double-click anywhere in a pane counts, below its last entry too, as it did for the list box and the
    // grid; the item views themselves only report double-clicks on an entry.
    for (int n = 2; n <= 4; ++n) {
        QAbstractItemView* view = m_paneControls.List[n] ? static_cast<QAbstractItemView*>(m_paneControls.List[n])
                                                         : m_paneControls.MSFlexGrid[n];
        if (view)
            view->viewport()->installEventFilter(this);
    }
}

const QStringList& ItemActions::mediaKeys()
{
    static const QStringList keys = {QStringLiteral(".AU"), QStringLiteral("AMR"), QStringLiteral("MP4"),
                                     QStringLiteral("MPG"), QStringLiteral("WMV"), QStringLiteral("MOV"),
                                     QStringLiteral("AVI"), QStringLiteral("M4A"), QStringLiteral("MID"),
                                     QStringLiteral("MP3"), QStringLiteral("WAV"), QStringLiteral("WMA")};
    return keys;
}

bool ItemActions::isMediaKey(const QString& key)
{
    return mediaKeys().contains(key);
}

bool ItemActions::openMode() const
{
    return m_mode.Option1->isChecked();
}

QString ItemActions::text(BrowserBehaviour::ItemText which) const
{
    using T = BrowserBehaviour::ItemText;
    switch (which) {
    case T::Text1:
        return m_paths.Text1->text();
    case T::Text2:
        return m_paths.Text2->text();
    case T::FolderPathAtNameRow:
        return m_panes.text(1, m_panes.currentRow(2));
    case T::FolderPathRow:
        return m_panes.text(1, m_panes.currentRow(1));
    case T::FilePathRow:
        return m_panes.text(3, m_panes.currentRow(3));
    }
    return {};
}

QString ItemActions::pathOfFilez(const QString& filename)
{
    // The separator's position and the name's length were 16-bit counters.
    if (filename.size() > 32767) {
        failUnhandled(m_services, RuntimeError::Overflow);
        return {};
    }
    const qsizetype p = filename.lastIndexOf(QDir::separator()) + 1;
    m_fileName = filename.right(filename.size() - (p - 1));
    const QString key = m_fileName.right(3).toUpper();
    if (!openMode()) {
        locate(filename);
        return {};
    }
    if (isMediaKey(key)) {
        play(m_paths.Text2->text());
        return {};
    }
    open(m_paths.Text2->text());
    return {};
}

void ItemActions::open(const QString& path)
{
    // Whatever the shell makes of it (nothing, or a dialogue of its own) is all the user hears of a failure.
    m_services.shell->open(path);
}

void ItemActions::locate(const QString& path)
{
    m_services.shell->locate(path);
}

void ItemActions::play(const QString& path)
{
    m_services.player->showIn(m_player.WindowsMediaPlayer1);
    m_services.player->setUrl(path);
    m_player.playerFrame->show();
    m_player.playerFrame->raise();
}

void ItemActions::closePlayer()
{
    m_services.player->close();
    m_player.playerFrame->hide();
}

// The verb's case ("open" here, "Open" in LongBrowser) never mattered to the shell, so both take one path.
void ItemActions::folderNamesDblClick()
{
    if (openMode())
        open(text(m_behaviour.folderOpenText));
    else
        locate(text(m_behaviour.folderLocateText));
    if (m_behaviour.folderActionMovesPathRow)
        m_panes.setCurrentRow(1, m_panes.currentRow(2));
}

void ItemActions::filesDblClick(int pane)
{
    closePlayer();
    pathOfFilez(text(pane == 3 ? m_behaviour.filePathsActionText : m_behaviour.fileNamesActionText));
}

bool ItemActions::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonDblClick && static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
        for (int n = 2; n <= 4; ++n) {
            QAbstractItemView* view = m_paneControls.List[n] ? static_cast<QAbstractItemView*>(m_paneControls.List[n])
                                                             : m_paneControls.MSFlexGrid[n];
            if (view && watched == view->viewport()) {
                if (n == 2)
                    folderNamesDblClick();
                else
                    filesDblClick(n);
                break;
            }
        }
    }
    return QObject::eventFilter(watched, event);
}
