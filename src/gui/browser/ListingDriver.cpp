// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListingDriver.h"

#include "common/NativeText.h"
#include "common/NumberText.h"
#include "controls/ClickableLabel.h"
#include "panes/ResultPanes.h"
#include "platform/MessageService.h"

#include <QApplication>
#include <QEvent>
#include <QFrame>
#include <QLabel>
#include <QPushButton>

namespace {

const QString PleaseWait = QStringLiteral(" Pl wait... ");

void setLabelBackground(QLabel* label, const QColor& colour)
{
    QPalette pal = label->palette();
    pal.setColor(QPalette::Window, colour);
    label->setPalette(pal);
}

bool isInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletRelease:
    case QEvent::DragEnter:
    case QEvent::Drop:
        return true;
    default:
        return false;
    }
}

} // namespace

ListingDriver::ListingDriver(const BrowserBehaviour& behaviour, const NavigationControls& navigation,
                             const StatusControls& status, const GoToControls& goTo, ResultPanes& panes,
                             const Services& services, QWidget* window)
    : QObject(window), m_behaviour(behaviour), m_navigation(navigation), m_status(status), m_goToControls(goTo),
      m_panes(panes), m_services(services), m_window(window), m_progress(status.scanProgress)
{

    m_progressTimer.setInterval(100);
    connect(&m_progressTimer, &QTimer::timeout, this, [this] { showProgress(); });
    connect(&m_job, &ScanJob::finished, this,
            [this](std::shared_ptr<const ScanResult> result) { walked(std::move(result)); });
}

ListingDriver::~ListingDriver()
{
    cancel();
}

void ListingDriver::List_Folders_Click()
{
    if (m_job.running())
        return;
    begin();
    WalkOptions options;
    options.flavour = m_behaviour.walk;
    options.carry = m_carry;
    m_job.start(NativeText::fromDisplay(m_navigation.Label2->text()), options);

    qApp->installEventFilter(this);
    m_blocking = true;
    showProgress();
    m_progress->show();
    m_progressTimer.start();
}

void ListingDriver::list(std::shared_ptr<const ScanResult> walked)
{
    begin();
    this->walked(std::move(walked));
}

void ListingDriver::cancel()
{
    m_job.cancel();
    stopWaiting();
    if (m_hourglass) {
        QApplication::restoreOverrideCursor();
        m_hourglass = false;
    }
}

void ListingDriver::stopWaiting()
{
    m_progressTimer.stop();
    if (m_progress)
        m_progress->hide();
    if (m_blocking) {
        qApp->removeEventFilter(this);
        m_blocking = false;
    }
}

void ListingDriver::showProgress()
{
    m_progress->setText(QStringLiteral("Found ") + QString::number(m_job.foldersFound()) +
                        QStringLiteral(" folders, ") + QString::number(m_job.filesFound()) + QStringLiteral(" files"));
}

bool ListingDriver::eventFilter(QObject* watched, QEvent* event)
{
    if (!isInput(event->type()) || !watched->isWidgetType())
        return false;
    auto* widget = static_cast<QWidget*>(watched);
    if (widget->window() != m_window)
        return false;
    // The way out while the walk runs.
    if (widget == m_status.Label11 && event->type() == QEvent::MouseButtonDblClick)
        return false;
    return true;
}

void ListingDriver::begin()
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    m_hourglass = true;
    m_status.Label11->setAutoFillBackground(true);
    setLabelBackground(m_status.Label11, QColor(255, 128, 128));
    m_status.Label11->setText(PleaseWait);
    m_clock.start();
    m_panes.clear();
}

void ListingDriver::walked(std::shared_ptr<const ScanResult> result)
{
    stopWaiting();
    m_carry = result->carryOut();
    m_panes.setResult(result);
    const bool noFolder = result->noFolderFound();

    // What the walk itself filled, and LongBrowser's two passes over its grids that follow it.
    if (!noFolder) {
        m_panes.fill(1);
        m_panes.fill(2);
    }
    m_panes.fill(3);
    if (m_behaviour.fileNamesBeforeSelection)
        m_panes.fill(4);
    if (result->limitReached())
        m_services.messages->message(ScanResult::limitMessage(), MessageStyle::Critical);

    // The first of these is always overwritten just below; it was never meant to stay.
    m_status.Label1[2]->setText(QStringLiteral("Total Folders: ") + QString::number(m_panes.rowCount(4)));
    m_status.Label1[3]->setText(QStringLiteral("Total Files with path: ") + QString::number(m_panes.rowCount(3)));
    m_status.Label1[4]->setText(QStringLiteral("Total Files: ") + QString::number(m_panes.rowCount(3)));

    // An empty pane cannot be selected; its label is written all the same.
    const std::pair<int, int> paneLabels[] = {{1, 1}, {2, 5}, {3, 6}, {4, 2}};
    for (const auto& [pane, label] : paneLabels) {
        m_panes.selectFirst(pane);
        m_status.Label1[label]->setText(QStringLiteral("Selected: 1"));
    }

    if (noFolder) {
        m_panes.fill(1);
        m_panes.fill(2);
        m_status.Label1[1]->setText(QString());
        m_status.Label1[5]->setText(QString());
        if (m_behaviour.noFolderShowsFileCount)
            m_status.Label1[6]->setText(QString::number(m_panes.rowCount(3)));
        // A grid with rows always has a current cell; a list box has no selection until one is made.
        if (m_panes.grids()) {
            m_panes.selectFirst(1);
            m_panes.selectFirst(2);
        }
    } else {
        const qint64 folders = m_panes.grids() ? m_panes.rowCount(1) : result->folderCount();
        m_status.Label1[0]->setText(QStringLiteral("Total Folders: ") + QString::number(folders));
    }

    if (!m_behaviour.fileNamesBeforeSelection)
        m_panes.fill(4);
    m_navigation.Label9Com->setEnabled(true);

    setLabelBackground(m_status.Label11, QApplication::palette().color(QPalette::Button));
    m_status.Label11->setText(QStringLiteral("Elapsed time: ") + NumberText::seconds(m_clock.elapsed()) +
                              QStringLiteral(" sec"));

    if (m_hourglass) {
        QApplication::restoreOverrideCursor();
        m_hourglass = false;
    }
    m_navigation.List_Folders->setEnabled(false);
    m_navigation.CreateTextFiles->setEnabled(true);
    if (m_behaviour.hasGoToFrame) {
        m_goToControls.Image1->hide();
        m_goToControls.Frame5->show();
    }
    emit finished();
}
