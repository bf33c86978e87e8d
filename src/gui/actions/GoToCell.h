// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "BrowserHost.h"
#include "common/RuntimeError.h"
#include "controls/GoToControls.h"
#include "controls/PaneControls.h"
#include "platform/Services.h"

#include <QObject>
#include <QString>

class QLineEdit;
class ResultPanes;

// LongBrowser's go-to controls: a typed serial number scrolls a grid to that row, makes it current, marks the
// cell in red and runs the grid's click handling. A cell loses its mark when the grid moves off it.
class GoToCell : public QObject
{
    Q_OBJECT
public:
    GoToCell(const GoToControls& goTo, const PaneControls& paneControls, ResultPanes& panes, const Services& services,
             BrowserHost& host, QObject* parent);

    // A box's text as a whole number the way the number conversion reads it: blanks around it, a sign, a
    // fraction rounded half to even. `error` is 13 for no number, 6 for one beyond 32 bits, else 0.
    static qint32 toLong(const QString& text, RuntimeError::Number* error);

    void GoToFolder_Click();
    void GoToFilePath_Click();
    void GoToFile_Click();

private:
    void goTo(const QLineEdit* box, int pane);
    void leaveCell(int pane, int row);

    const GoToControls& m_goToControls;
    const PaneControls& m_paneControls;
    ResultPanes& m_panes;
    Services m_services;
    BrowserHost& m_host;
};
