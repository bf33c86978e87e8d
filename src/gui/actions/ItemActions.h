// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/ModeControls.h"
#include "controls/PaneControls.h"
#include "controls/PathControls.h"
#include "controls/PlayerControls.h"
#include "flavour/BrowserBehaviour.h"
#include "platform/Services.h"

#include <QObject>
#include <QString>
#include <QStringList>

class ResultPanes;

// Opening, locating and playing the listed items of a browser window: the double-clicks on the folder-name and
// file panes, and pathOfFilez, which the search results and the context menus share. The mode is read from the
// option buttons at every action.
class ItemActions : public QObject
{
    Q_OBJECT
public:
    ItemActions(const BrowserBehaviour& behaviour, const PaneControls& paneControls, const PathControls& paths,
                const ModeControls& mode, const PlayerControls& player, ResultPanes& panes, const Services& services,
                QObject* parent);

    // Compared with the upper-cased last three characters of a name. ".AU" keeps its dot: a two-letter
    // extension with the dot is three characters too.
    static const QStringList& mediaKeys();
    static bool isMediaKey(const QString& key);

    bool openMode() const;
    QString text(BrowserBehaviour::ItemText which) const;

    // The file action of the mode for one file. The key comes from `filename`, but what is played or opened is
    // the file path box's text; locating takes `filename`. The result is always empty.
    QString pathOfFilez(const QString& filename);
    // The last name part pathOfFilez took apart, from the last separator on.
    const QString& fileName() const { return m_fileName; }

    void open(const QString& path);
    void locate(const QString& path);
    void play(const QString& path);
    // Stops the player, lets go of its file and hides its frame.
    void closePlayer();

    // The double-clicks, as the panes deliver them.
    void folderNamesDblClick();
    void filesDblClick(int pane);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const BrowserBehaviour& m_behaviour;
    const PaneControls& m_paneControls;
    const PathControls& m_paths;
    const ModeControls& m_mode;
    const PlayerControls& m_player;
    ResultPanes& m_panes;
    Services m_services;
    QString m_fileName;
};
