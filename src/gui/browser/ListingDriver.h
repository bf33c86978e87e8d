// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/GoToControls.h"
#include "controls/NavigationControls.h"
#include "controls/StatusControls.h"
#include "flavour/BrowserBehaviour.h"
#include "platform/Services.h"
#include "scan/ScanJob.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <memory>

class QLabel;
class ResultPanes;

// "List All Folders & Files": walks the folder in Label2 and fills the panes, the totals and the timing.
//
// The walk runs on a thread of its own. Meanwhile the window ignores the keyboard and the mouse, except the
// double-click on " Pl wait... " and the close box, keeps painting, and counts the folders and files found so
// far in a line of its own; when the walk is done everything else happens at once, in the order a listing that
// held the window throughout would have taken, so the window ends up exactly as such a listing left it.
class ListingDriver : public QObject
{
    Q_OBJECT
public:
    ListingDriver(const BrowserBehaviour& behaviour, const NavigationControls& navigation, const StatusControls& status,
                  const GoToControls& goTo, ResultPanes& panes, const Services& services, QWidget* window);
    ~ListingDriver() override;

    // The click on List_Folders.
    void List_Folders_Click();
    // The same listing with the walk's outcome given instead of walked: for measurements and for results of a
    // shape no test folder has.
    void list(std::shared_ptr<const ScanResult> walked);

    bool walking() const { return m_job.running(); }
    // Stops a walk and leaves the window as it is: the program is ending.
    void cancel();

signals:
    void finished();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void begin();
    void walked(std::shared_ptr<const ScanResult> result);
    void stopWaiting();
    void showProgress();

    const BrowserBehaviour& m_behaviour;
    const NavigationControls& m_navigation;
    const StatusControls& m_status;
    const GoToControls& m_goToControls;
    ResultPanes& m_panes;
    Services m_services;
    QWidget* m_window;
    QPointer<QLabel> m_progress; // the window's child, which may go before this
    ScanJob m_job;
    QTimer m_progressTimer;
    QElapsedTimer m_clock;
    ScanResult::Carry m_carry;
    bool m_hourglass = false;
    bool m_blocking = false;
};
