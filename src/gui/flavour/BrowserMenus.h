// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QString>

// The two pop-up menus of a browser window, entry by entry.
struct BrowserMenus
{
    struct Entry
    {
        QString name;    // the entry's design name, its object name
        QString caption; // "C:\Quillbox" stands for the collection folder's path
    };

    struct Menu
    {
        QString caption;
        QList<Entry> entries;
        int separatorBefore = -1; // index of the entry a separator precedes; -1 for none
    };

    Menu folderMenu; // mnuPopUp2
    Menu fileMenu;   // mnuPopUp
};
