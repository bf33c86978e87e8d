#pragma once

#include "FakeServices.h"
#include "TreeBuilder.h"

#include "browser/BrowserWindow.h"
#include "browser/ResultPanes.h"

#include <QAbstractItemView>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <memory>

// A browser window of either flavour over a folder, listed, with its collection folder under HOME.
namespace BrowserTestKit {

inline const BrowserFlavour& flavour(bool longVersion)
{
    return longVersion ? BrowserFlavour::longBrowser() : BrowserFlavour::shortBrowser();
}

inline std::unique_ptr<BrowserWindow> listedWindow(FakeServices& fakes, bool longVersion, const QByteArray& folder)
{
    auto w = std::make_unique<BrowserWindow>(flavour(longVersion), fakes.services(), nullptr);
    w->show();
    w->setDir1Path(QFile::decodeName(folder));
    QSignalSpy done(w.get(), &BrowserWindow::scanFinished);
    QTest::mouseClick(w->findChild<QPushButton*>(QStringLiteral("List_Folders")), Qt::LeftButton);
    if (!done.wait(20000))
        qWarning("listing did not finish");
    return w;
}

inline QAbstractItemView* pane(const BrowserWindow& w, int n)
{
    return w.findChild<QAbstractItemView*>(w.flavour().paneName(n));
}

inline QPoint rowPoint(const BrowserWindow& w, int n, int row)
{
    QAbstractItemView* view = pane(w, n);
    const QModelIndex index = view->model()->index(row, 0);
    view->scrollTo(index);
    return QPoint(5, view->visualRect(index).center().y());
}

inline void clickRow(const BrowserWindow& w, int n, int row, Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mouseClick(pane(w, n)->viewport(), button, {}, rowPoint(w, n, row));
}

inline QAction* entry(const BrowserWindow& w, const QString& name)
{
    return w.findChild<QAction*>(name);
}

inline QString collectionPath()
{
    return QFile::decodeName(qgetenv("HOME")) + QStringLiteral("/Quillbox");
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
