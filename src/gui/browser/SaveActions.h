// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "export/SaveFlow.h"
#include "platform/Services.h"

#include <QObject>

class BrowserWindow;
class QLabel;

// Saving the listings of a browser window into the collection folder: "Create Text Files", the single-list
// saves of the context menus, and the offer to open the folder from its label, Label4(1).
class SaveActions : public QObject
{
    Q_OBJECT
public:
    SaveActions(BrowserWindow& window, const Services& services);

    void CreateTextFiles_Click();
    // SaveList2Contents / SaveMSFlexGrid2Contents and SaveList3Contents / SaveMSFlexGrid3Contents.
    void saveFolderList();
    void saveFileList();
    // A click on one element of the label array Label4; only element 1 does anything.
    void Label4_Click(int Index);

    // LongBrowser's status label for the writing of a set; null in ShortBrowser.
    QLabel* label12() const { return m_label12; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void save(SaveFlow::Kind kind);

    BrowserWindow& m_window;
    Services m_services;
    QLabel* m_label12 = nullptr;
};
