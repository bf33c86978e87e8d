// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "FakeServices.h"
#include "TreeBuilder.h"

#include "browser/BrowserWindow.h"
#include "controls/ClickableFrame.h"
#include "controls/ClickableLabel.h"
#include "panes/ResultPanes.h"
#include "scan/ScanResult.h"
#include "search/SearchResultModel.h"
#include "search/SearchSection.h"

#include <QAbstractItemModelTester>
#include <QAbstractItemView>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

using namespace Qt::StringLiterals;

// Browser windows of either flavour over faked services, with their collection folder under a temporary HOME.
namespace BrowserTestKit {

// A HOME of the test's own, for the whole test case.
struct TestHome
{
    QTemporaryDir dir;
    TestHome()
    {
        QStandardPaths::setTestModeEnabled(true);
        qputenv("HOME", QFile::encodeName(dir.path()));
    }
    QString path() const { return dir.path(); }
};

// The "longVersion" column with a row per flavour.
inline void addFlavours()
{
    QTest::addColumn<bool>("longVersion");
    QTest::newRow("ShortBrowser") << false;
    QTest::newRow("LongBrowser") << true;
}

// The "longVersion" column crossed with one more: a row per flavour and value.
template <typename T> void addFlavours(const char* column, std::initializer_list<std::pair<const char*, T>> values)
{
    QTest::addColumn<bool>("longVersion");
    QTest::addColumn<T>(column);
    for (bool longVersion : {false, true})
        for (const auto& [name, value] : values)
            QTest::addRow("%s, %s", longVersion ? "Long" : "Short", name) << longVersion << value;
}

// A shown window whose pane and search models are checked for consistency through everything the test does.
inline std::unique_ptr<BrowserWindow> window(FakeServices& fakes, bool longVersion)
{
    auto w = std::make_unique<BrowserWindow>(
        longVersion ? BrowserFlavour::longBrowser() : BrowserFlavour::shortBrowser(), fakes.services(), nullptr);
    for (int n = 1; n <= 4; ++n)
        new QAbstractItemModelTester(w->panes().model(n), QAbstractItemModelTester::FailureReportingMode::QtTest,
                                     w.get());
    new QAbstractItemModelTester(w->search().model(), QAbstractItemModelTester::FailureReportingMode::QtTest, w.get());
    w->show();
    return w;
}

// "List All Folders & Files", waiting for the walk to end.
inline void scan(BrowserWindow& w)
{
    QSignalSpy done(&w, &BrowserWindow::scanFinished);
    QTest::mouseClick(w.controls().navigation.List_Folders, Qt::LeftButton);
    QVERIFY(done.wait(20000));
}

inline std::unique_ptr<BrowserWindow> listedWindow(FakeServices& fakes, bool longVersion, const QByteArray& folder)
{
    auto w = window(fakes, longVersion);
    w->setDir1Path(QFile::decodeName(folder));
    scan(*w);
    return w;
}

// A window showing a result built in memory, as if a listing had just ended.
inline std::unique_ptr<BrowserWindow> windowWith(FakeServices& fakes, bool longVersion,
                                                 std::shared_ptr<const ScanResult> result)
{
    auto w = window(fakes, longVersion);
    w->listResult(std::move(result));
    return w;
}

inline QAbstractItemView* pane(const BrowserWindow& w, int n)
{
    return w.findChild<QAbstractItemView*>(w.flavour().behaviour.paneName(n));
}

inline QPoint rowPoint(const BrowserWindow& w, int n, int row)
{
    QAbstractItemView* view = pane(w, n);
    const QModelIndex index = view->model()->index(row, 0);
    view->scrollTo(index);
    return QPoint(5, view->visualRect(index).center().y());
}

// Clicks entry `row` of a pane as the user would, after scrolling it into view.
inline void clickRow(const BrowserWindow& w, int n, int row, Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mouseClick(pane(w, n)->viewport(), button, {}, rowPoint(w, n, row));
}

inline void doubleClickRow(const BrowserWindow& w, int n, int row)
{
    clickRow(w, n, row);
    QTest::mouseDClick(pane(w, n)->viewport(), Qt::LeftButton, {}, rowPoint(w, n, row));
}

// The one selected row, or minus one more than the number selected.
inline int selectedRow(const BrowserWindow& w, int n)
{
    const QModelIndexList rows = pane(w, n)->selectionModel()->selectedIndexes();
    return rows.size() == 1 ? rows.first().row() : -int(rows.size()) - 1;
}

inline QStringList entries(const BrowserWindow& w, int n)
{
    QStringList out;
    for (int row = 0; row < w.panes().rowCount(n); ++row)
        out.append(w.panes().text(n, row));
    return out;
}

// The menu entry of the window's flavour: the list boxes' name or the grids' one.
inline QAction* entry(const BrowserWindow& w, const QString& shortName, const QString& longName)
{
    return w.findChild<QAction*>(w.flavour().behaviour.panes == BrowserBehaviour::Panes::Grids ? longName : shortName);
}

// Option1 opens what is double-clicked, Option2 locates it.
inline void setOpenMode(BrowserWindow& w, bool open)
{
    (open ? w.controls().mode.Option1 : w.controls().mode.Option2)->setChecked(true);
}

inline QString collectionPath()
{
    return QFile::decodeName(qgetenv("HOME")) + u"/Quillbox"_s;
}

inline QByteArray read(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

inline void write(const QString& path, const QByteArray& data)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(data);
}

} // namespace BrowserTestKit
