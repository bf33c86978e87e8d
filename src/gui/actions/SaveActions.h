// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "catalogue/RecordingQueue.h"
#include "controls/NavigationControls.h"
#include "controls/StatusControls.h"
#include "export/SaveFlow.h"
#include "flavour/BrowserBehaviour.h"
#include "platform/Services.h"

#include <QObject>

class ResultPanes;

// Saving the listings of a browser window into the collection folder: "Create Text Files", the single-list
// saves of the context menus, and the offer to open the folder from its label, Label4(1). A set of four saved
// is also recorded in the catalogue, behind the user's back: the save's own boxes and texts stay as they are.
class SaveActions : public QObject
{
    Q_OBJECT
public:
    SaveActions(const BrowserBehaviour& behaviour, const NavigationControls& navigation, const StatusControls& status,
                const ResultPanes& panes, const Services& services, QObject* parent);

    void CreateTextFiles_Click();
    // SaveList2Contents / SaveMSFlexGrid2Contents and SaveList3Contents / SaveMSFlexGrid3Contents.
    void saveFolderList();
    void saveFileList();
    // A click on one element of the label array Label4; only element 1 does anything.
    void Label4_Click(int Index);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void save(SaveFlow::Kind kind);
    void record(std::shared_ptr<const ScanResult> result, const QString& listingName);

    const BrowserBehaviour& m_behaviour;
    const NavigationControls& m_navigation;
    const StatusControls& m_status;
    const ResultPanes& m_panes;
    Services m_services;
    // Last, so it is destroyed first: a recording under way finishes before the rest goes.
    RecordingQueue m_recordings;
};
