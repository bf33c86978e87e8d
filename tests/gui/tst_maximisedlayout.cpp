// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserTestKit.h"

#include "scan/ScanResultBuilder.h"

#include <QGuiApplication>
#include <QImage>
#include <QListView>
#include <QScreen>
#include <QSet>

using namespace BrowserTestKit;

// The browser windows maximised on a 1600 x 1200 screen, listed, with the search section and (LongBrowser) the
// go-to frame shown: stretching fills the window and puts no control over another that the design keeps apart, the
// folder and file pictures stay by the path labels, and restoring puts every control back.
class TestMaximisedLayout : public QObject
{
    Q_OBJECT

private:
    TestHome m_home;
    FakeServices m_fakes;

    std::unique_ptr<BrowserWindow> listed(bool longVersion)
    {
        ScanResultBuilder b("/m");
        for (const char* name : {"one", "two"})
            b.addFolder(name, 1);
        for (const char* name : {"a.txt", "b.wav"})
            b.addFile(0, name);
        auto w = windowWith(m_fakes, longVersion, b.finish());
        QTest::mouseClick(w->controls().navigation.Label9Com, Qt::LeftButton);
        return w;
    }

    // Every pair of shown controls the layout table places whose rectangles overlap, neither holding the other.
    static QSet<QString> overlaps(const BrowserWindow& w)
    {
        QList<QWidget*> placed;
        for (QWidget* c : w.findChildren<QWidget*>()) {
            if (c->isVisible() && !w.flavour().layout.rect(c->objectName()).isNull())
                placed.append(c);
        }
        QSet<QString> pairs;
        for (QWidget* a : placed) {
            for (QWidget* b : placed) {
                if (a->objectName() >= b->objectName() || a->isAncestorOf(b) || b->isAncestorOf(a))
                    continue;
                if (QRect(a->mapTo(&w, QPoint()), a->size()).intersects(QRect(b->mapTo(&w, QPoint()), b->size())))
                    pairs.insert(a->objectName() + u" over "_s + b->objectName());
            }
        }
        return pairs;
    }

    static QPoint besidePathFrame(const BrowserWindow& w, QWidget* picture)
    {
        return picture->pos() - w.controls().paths.pathFrame->pos();
    }

private slots:
    void initTestCase() { QCOMPARE(QGuiApplication::primaryScreen()->size(), QSize(1600, 1200)); }
    void init() { m_fakes.reset(); }

    void maximisedAndRestored_data() { addFlavours(); }
    void maximisedAndRestored()
    {
        QFETCH(bool, longVersion);
        auto w = listed(longVersion);
        const BrowserControls& ui = w->controls();
        QVERIFY(ui.search.Frame1->isVisible());
        QCOMPARE(ui.goTo.Frame5 && ui.goTo.Frame5->isVisible(), longVersion);
        const QSet<QString> designed = overlaps(*w);
        const QPoint folderPicture = besidePathFrame(*w, ui.mode.Image3);
        const QPoint filePicture = besidePathFrame(*w, ui.mode.Image4);
        QHash<QWidget*, QRect> normal;
        for (QWidget* child : w->findChildren<QWidget*>()) {
            if (!w->flavour().layout.rect(child->objectName()).isNull())
                normal.insert(child, child->geometry());
        }

        w->showMaximized();
        QTRY_VERIFY(w->isMaximized() && w->width() > 1500 && w->height() > 1100);
        // The left column keeps its size, and the panes their design distance from it and from the top.
        QCOMPARE(pane(*w, 2)->pos(), normal.value(pane(*w, 2)).topLeft());
        const QStringList added = (overlaps(*w) - designed).values();
        QVERIFY2(added.isEmpty(), qPrintable(added.join(u", "_s)));
        // On a grab of the window, the far ends of the outer panes and of the path boxes are painted, not cut off.
        const QImage shot = w->grab().toImage();
        for (QWidget* c : std::initializer_list<QWidget*>{pane(*w, 1), pane(*w, 4), ui.paths.Text1, ui.paths.Text2}) {
            const QRect r(c->mapTo(w.get(), QPoint()), c->size());
            QCOMPARE(shot.pixelColor(r.right() - 4, r.center().y()), c->palette().color(QPalette::Base));
        }
        QCOMPARE(besidePathFrame(*w, ui.mode.Image3), folderPicture);
        QCOMPARE(besidePathFrame(*w, ui.mode.Image4), filePicture);
        // The panes and the path frame fill the window, and the file-names toggle cannot change its width.
        QVERIFY(!ui.paths.Label8->isEnabled());
        const QRect names = pane(*w, 4)->geometry(), paths = pane(*w, 3)->geometry();
        QVERIFY(names.right() < w->width() && names.right() > w->width() * 8 / 10);
        QVERIFY(paths.right() < names.left() && paths.bottom() < ui.paths.pathFrame->y());
        QVERIFY(qAbs(ui.paths.pathFrame->geometry().bottom() - (w->height() - 1)) <= 1);
        QVERIFY(ui.paths.Text1->geometry().right() < ui.paths.pathFrame->width());
        QVERIFY(ui.search.Frame1->geometry().right() <= paths.right() + 1);
        // The search count stays below the hits, at the foot of the stretched section.
        QVERIFY(ui.status.Label1[7]->y() > ui.search.List5->geometry().bottom());
        QVERIFY(ui.status.Label1[7]->geometry().bottom() > ui.search.Frame1->height() * 9 / 10);
        if (longVersion) {
            // The go-to buttons and boxes spread over the stretched frame as over the design one.
            QVERIFY(ui.goTo.Text5->geometry().right() > ui.goTo.Frame5->width() * 9 / 10);
            QVERIFY(ui.goTo.Frame5->geometry().right() <= ui.paths.Text1->geometry().right());
        }

        w->showNormal();
        QTRY_VERIFY(!w->isMaximized() && ui.paths.Label8->isEnabled());
        for (auto it = normal.cbegin(); it != normal.cend(); ++it)
            QCOMPARE(it.key()->geometry(), it.value());
    }
};

QTEST_MAIN(TestMaximisedLayout)
#include "tst_maximisedlayout.moc"
