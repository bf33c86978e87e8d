// SPDX-License-Identifier: GPL-3.0-or-later

#include "BrowserTestKit.h"

#include "platform/Twips.h"
#include "scan/ScanResultBuilder.h"

#include <QImage>
#include <QTableView>

using namespace BrowserTestKit;

// LongBrowser's go-to boxes: the range, the messages and errors, the red mark and the widening for file names.
class TestGoTo : public QObject
{
    Q_OBJECT

private:
    FakeServices m_fakes;

    std::unique_ptr<BrowserWindow> listed(int files)
    {
        ScanResultBuilder b("/g");
        for (const char* name : {"one", "two", "three"})
            b.addFolder(name, 1);
        for (int i = 0; i < files; ++i) {
            const QByteArray name = "file" + QByteArray::number(i + 1);
            b.addFile(0, std::string_view(name.constData(), size_t(name.size())));
        }
        return windowWith(m_fakes, true, b.finish());
    }
    static void goTo(QLineEdit* box, QPushButton* button, const QString& number)
    {
        box->setText(number);
        QTest::mouseClick(button, Qt::LeftButton);
    }
    static QColor colour(const BrowserWindow& w, int pane, int row, int role = Qt::ForegroundRole)
    {
        return w.panes().model(pane)->index(row, 0).data(role).value<QColor>();
    }
    // Pixels of a row's cell, as the grid paints it on screen, inked in red (colour value 255): pure red, or red
    // smoothed into a white background at the edges of the letters.
    static int redPixels(const BrowserWindow& w, int pane, int row)
    {
        QTableView* grid = w.controls().panes.MSFlexGrid[pane];
        const QRect cell = grid->visualRect(grid->model()->index(row, 0)).intersected(grid->viewport()->rect());
        if (cell.isEmpty())
            return 0;
        const QImage image = grid->viewport()->grab(cell).toImage();
        int red = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor c = image.pixelColor(x, y);
                red += c.red() == 255 && c.green() == c.blue() && c.green() < 128;
            }
        }
        return red;
    }

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init() { m_fakes.reset(); }

    // What is typed in a go-to box: a number, blanks and sign allowed, rounded half to even, goes to its cell or
    // names the range. What the conversion cannot take is an unhandled error that ends the program: 13 for no
    // number, 6 beyond 32 bits; the serial is worked out in 16 bits, so even the lowest 32-bit number overflows.
    void typed_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("row");     // the cell gone to, when no box comes up
        QTest::addColumn<QString>("box"); // the box that comes up instead
        const QString range = u"48|You can enter cell number between 1 and 10 only."_s,
                      overflow = u"16|Run-time error '6':\r\n\r\nOverflow"_s,
                      mismatch = u"16|Run-time error '13':\r\n\r\nType mismatch"_s;
        QTest::newRow("blanks") << u" 7 "_s << 6 << QString();
        QTest::newRow("half to even, down") << u"2.5"_s << 1 << QString();
        QTest::newRow("half to even, up") << u"3.5"_s << 3 << QString();
        for (const char* outside : {"11", "0", "-5", "2147483647", "-2147483647"})
            QTest::newRow(outside) << QString::fromLatin1(outside) << 0 << range;
        QTest::newRow("too big") << u"2147483648"_s << 0 << overflow;
        QTest::newRow("lowest") << u"-2147483648"_s << 0 << overflow;
        QTest::newRow("empty") << QString() << 0 << mismatch;
        QTest::newRow("word") << u"ten"_s << 0 << mismatch;
        QTest::newRow("number and word") << u"7a"_s << 0 << mismatch;
    }
    void typed()
    {
        QFETCH(QString, text);
        QFETCH(int, row);
        QFETCH(QString, box);
        auto w = listed(10);
        goTo(w->controls().goTo.Text3, w->controls().goTo.GoToFilePath, text);
        QCOMPARE(m_fakes.messages.texts(), box.isEmpty() ? QStringList() : QStringList{box});
        QCOMPARE(w->panes().currentRow(3), row);
        QCOMPARE(m_fakes.programEnd.count, box.startsWith(u"16|"_s) ? 1 : 0);
    }

    void range()
    {
        auto w = listed(250);
        const BrowserControls& ui = w->controls();
        QVERIFY(ui.goTo.Frame5->isVisible());

        goTo(ui.goTo.Text3, ui.goTo.GoToFilePath, u"1"_s);
        QCOMPARE(w->panes().currentRow(3), 0);
        QVERIFY(redPixels(*w, 3, 0) > 0);
        QCOMPARE(ui.paths.Text2->text(), u"/g/file1"_s);
        QCOMPARE(ui.status.Label1[6]->text(), u"Selected: 1"_s);
        QCOMPARE(w->panes().currentRow(4), 0);

        goTo(ui.goTo.Text3, ui.goTo.GoToFilePath, u"250"_s);
        QCOMPARE(w->panes().currentRow(3), 249);
        QVERIFY(redPixels(*w, 3, 249) > 0);
        QCOMPARE(ui.paths.Text2->text(), u"/g/file250"_s);
        // The cell left behind loses its mark.
        QCOMPARE(colour(*w, 3, 0), QColor(0, 0, 0));
        QCOMPARE(colour(*w, 3, 0, Qt::BackgroundRole), QColor(255, 255, 255));

        goTo(ui.goTo.Text3, ui.goTo.GoToFilePath, u" 7"_s);
        QCOMPARE(w->panes().currentRow(3), 6);
        QCOMPARE(ui.panes.MSFlexGrid[3]->rowAt(0), 6); // the top visible row
        // The mark shows until the selection moves, and only on the cell marked.
        QVERIFY(redPixels(*w, 3, 6) > 0);
        clickRow(*w, 3, 8);
        QCOMPARE(redPixels(*w, 3, 6), 0);
        QCOMPARE(redPixels(*w, 3, 8), 0);
        goTo(ui.goTo.Text3, ui.goTo.GoToFilePath, u"251"_s);
        QCOMPARE(m_fakes.messages.texts(), QStringList{u"48|You can enter cell number between 1 and 250 only."_s});
        QCOMPARE(w->panes().currentRow(3), 8);

        goTo(ui.goTo.Text4, ui.goTo.GoToFolder, u"2"_s);
        QCOMPARE(w->panes().currentRow(2), 1);
        QCOMPARE(w->panes().currentRow(1), 1);
        QVERIFY(redPixels(*w, 2, 1) > 0);
        QCOMPARE(ui.paths.Text1->text(), u"/g/two"_s);
        goTo(ui.goTo.Text4, ui.goTo.GoToFolder, u"4"_s);
        QCOMPARE(m_fakes.messages.calls.last().text, u"You can enter cell number between 1 and 3 only."_s);
    }

    void fileNamesComeIntoView()
    {
        auto w = listed(0);
        const BrowserControls& ui = w->controls();
        goTo(ui.goTo.Text5, ui.goTo.GoToFile, u"1"_s);
        QCOMPARE(m_fakes.messages.calls.size(), 1);
        QCOMPARE(m_fakes.messages.calls[0].text, u"You can enter cell number between 1 and 0 only."_s);
        QCOMPARE(w->frameGeometry().width(), Twips::toPx(13560));
        QCOMPARE(ui.paths.Label8->text(), u"Hide File Names only"_s);

        // The file-path box leaves the window as it is.
        QTest::mouseClick(ui.paths.Label8, Qt::LeftButton);
        goTo(ui.goTo.Text3, ui.goTo.GoToFilePath, u"1"_s);
        QCOMPARE(ui.paths.Label8->text(), u"Show File Names only"_s);

        w->showMaximized();
        QTRY_VERIFY(w->isMaximized());
        const QSize size = w->size();
        goTo(ui.goTo.Text5, ui.goTo.GoToFile, u"1"_s);
        QCOMPARE(w->size(), size);
        QCOMPARE(ui.paths.Label8->text(), u"Show File Names only"_s);
    }
};

QTEST_MAIN(TestGoTo)
#include "tst_goto.moc"
