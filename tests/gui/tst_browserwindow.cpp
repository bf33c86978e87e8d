#include "FakeServices.h"

#include "browser/BrowserWindow.h"
#include "browser/ClickableLabel.h"
#include "browser/ResultPanes.h"
#include "platform/Twips.h"
#include "scan/ScanResultBuilder.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardPaths>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>
#include <memory>

class TestBrowserWindow : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_tmp;
    FakeServices m_fakes;
    QString m_fixed, m_stick, m_cd;

    std::unique_ptr<BrowserWindow> makeWindow(bool longVersion)
    {
        const BrowserFlavour& f = longVersion ? BrowserFlavour::longBrowser() : BrowserFlavour::shortBrowser();
        auto w = std::make_unique<BrowserWindow>(f, m_fakes.services(), nullptr);
        w->show();
        return w;
    }
    template <typename T> static T* child(const QWidget& w, const char* name)
    {
        T* c = w.findChild<T*>(QLatin1String(name));
        if (!c)
            qFatal("no control %s", name);
        return c;
    }
    static QString text(const QWidget& w, const char* name) { return child<QLabel>(w, name)->text(); }

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        qputenv("HOME", m_tmp.path().toLocal8Bit());
        m_fixed = m_tmp.path() + QStringLiteral("/fixed");
        m_stick = m_tmp.path() + QStringLiteral("/stick");
        m_cd = m_tmp.path() + QStringLiteral("/cd");
        for (const QString& d : {m_fixed + QStringLiteral("/docs/a"), m_stick + QStringLiteral("/music"), m_cd})
            QVERIFY(QDir().mkpath(d));
    }

    void init()
    {
        QDir::setCurrent(m_fixed + QStringLiteral("/docs"));
        m_fakes.messages.calls.clear();
        m_fakes.programEnd.count = 0;
        m_fakes.player.closes = 0;
        m_fakes.volumes.list = {{m_fixed, QStringLiteral("System"), 2, true},
                                {m_stick, QStringLiteral("MyStick"), 1, true},
                                {m_cd, QString(), 4, false}};
    }

    void flavour_data()
    {
        QTest::addColumn<bool>("longVersion");
        QTest::newRow("ShortBrowser") << false;
        QTest::newRow("LongBrowser") << true;
    }

    void loadAndFolderChange_data() { flavour_data(); }
    void loadAndFolderChange()
    {
        QFETCH(bool, longVersion);
        auto w = makeWindow(longVersion);
        QCOMPARE(text(*w, "Label2"), m_fixed + QStringLiteral("/docs"));
        QCOMPARE(text(*w, "Label4_3"),
                 QLatin1Char(' ') + (m_fixed + QStringLiteral(" [System]")).toUpper() + QStringLiteral(": HD DRIVE "));
        QCOMPARE(w->driveText(), m_fixed + QStringLiteral(" [System]"));
        QVERIFY(!child<QPushButton>(*w, "CreateTextFiles")->isEnabled());
        QVERIFY(!child<QPushButton>(*w, "Label9Com")->isEnabled());
        QVERIFY(child<QRadioButton>(*w, "Option2")->isChecked());
        QVERIFY(!w->openMode());
        QVERIFY(child<QWidget>(*w, longVersion ? "Frame7" : "Frame6")->isHidden());
        QCOMPARE(text(*w, "Label10"), longVersion
                                          ? QStringLiteral(" Set Option &  Double Click Folder or File to open")
                                          : QStringLiteral("Set Option &  Double Click Folder or File to open"));

        // What a listing leaves behind.
        ScanResultBuilder b(QFile::encodeName(m_fixed + QStringLiteral("/docs")));
        const std::uint32_t a = b.addFolder("a", 1);
        b.addFile(a, "x");
        b.addFile(0, "y");
        w->listResult(b.finish());
        for (int n = 1; n <= 4; ++n)
            QVERIFY(w->panes().rowCount(n) > 0);
        for (int i = 0; i <= 6; ++i)
            child<QLabel>(*w, qPrintable(QStringLiteral("Label1_%1").arg(i)))->setText(QStringLiteral("Selected: 1"));
        child<QLineEdit>(*w, "Text1")->setText(QStringLiteral("a"));
        child<QLineEdit>(*w, "Text2")->setText(QStringLiteral("b"));
        child<QPushButton>(*w, "CreateTextFiles")->setEnabled(true);
        child<QPushButton>(*w, "Label9Com")->setEnabled(true);
        child<QPushButton>(*w, "List_Folders")->setEnabled(false);
        child<QLabel>(*w, "Label11")->setText(QStringLiteral("Elapsed time: 1 sec"));
        if (longVersion) {
            child<QWidget>(*w, "Frame5")->show();
            child<QWidget>(*w, "Image1")->hide();
        }

        w->setDir1Path(m_fixed + QStringLiteral("/docs/a"));
        QCOMPARE(text(*w, "Label2"), m_fixed + QStringLiteral("/docs/a"));
        for (int n = 1; n <= 4; ++n) {
            QAbstractItemView* pane = longVersion ? static_cast<QAbstractItemView*>(child<QTableView>(
                                                        *w, qPrintable(QStringLiteral("MSFlexGrid%1").arg(n))))
                                                  : child<QListView>(*w, qPrintable(QStringLiteral("List%1").arg(n)));
            QCOMPARE(pane->model()->rowCount(), 0);
        }
        for (int i = 0; i <= 6; ++i)
            QCOMPARE(text(*w, qPrintable(QStringLiteral("Label1_%1").arg(i))), QString());
        QCOMPARE(child<QLineEdit>(*w, "Text1")->text(), QString());
        QCOMPARE(child<QLineEdit>(*w, "Text2")->text(), QString());
        QVERIFY(!child<QPushButton>(*w, "CreateTextFiles")->isEnabled());
        QVERIFY(!child<QPushButton>(*w, "Label9Com")->isEnabled());
        QVERIFY(child<QPushButton>(*w, "List_Folders")->isEnabled());
        QCOMPARE(text(*w, "Label11"), QStringLiteral("Execution Time in msec"));
        if (longVersion) {
            QVERIFY(child<QWidget>(*w, "Frame5")->isHidden());
            QVERIFY(!child<QWidget>(*w, "Image1")->isHidden());
        }
    }

    void driveChange_data() { flavour_data(); }
    void driveChange()
    {
        QFETCH(bool, longVersion);
        auto w = makeWindow(longVersion);
        auto* drive1 = child<QComboBox>(*w, "Drive1");
        QCOMPARE(drive1->count(), 3);

        drive1->setCurrentIndex(1);
        QCOMPARE(text(*w, "Label2"), m_stick);
        QCOMPARE(text(*w, "Label4_3"), QStringLiteral(" CD/ DVD Volume: MYSTICK "));
        QVERIFY(!child<QTreeView>(*w, "Dir1")->isHidden());
        QVERIFY(child<QPushButton>(*w, "List_Folders")->isEnabled());

        // No medium: the tree goes away and listing is impossible, silently; the folder stays the last one.
        drive1->setCurrentIndex(2);
        QVERIFY(child<QTreeView>(*w, "Dir1")->isHidden());
        QVERIFY(!child<QPushButton>(*w, "List_Folders")->isEnabled());
        QCOMPARE(text(*w, "Label4_3"), QStringLiteral(" CD/ DVD Volume: EMPTY "));
        QCOMPARE(text(*w, "Label2"), m_stick);
        QVERIFY(m_fakes.messages.calls.isEmpty());

        drive1->setCurrentIndex(0);
        QVERIFY(!child<QTreeView>(*w, "Dir1")->isHidden());
        QVERIFY(child<QPushButton>(*w, "List_Folders")->isEnabled());
        QCOMPARE(text(*w, "Label2"), m_fixed);
    }

    void driveCaptions_data()
    {
        QTest::addColumn<int>("typeCode");
        QTest::addColumn<QString>("label");
        QTest::addColumn<bool>("ready");
        QTest::addColumn<QString>("caption"); // with %1 for the upper-cased drive text
        QTest::addColumn<QString>("typeText");
        QTest::newRow("fixed, labelled") << 2 << "Data" << true << " %1: HD DRIVE "
                                         << "Fixed";
        QTest::newRow("fixed, no label") << 2 << "" << true << " %1: HD DRIVE "
                                         << "Fixed";
        QTest::newRow("removable, labelled") << 1 << "Stick" << true << " CD/ DVD Volume: STICK "
                                             << "Removable";
        QTest::newRow("removable, no label") << 1 << "" << true << " %1: HD DRIVE "
                                             << "Removable";
        QTest::newRow("cd, no disc") << 4 << "" << false << " CD/ DVD Volume: EMPTY "
                                     << "CD/ DVD";
        QTest::newRow("network, labelled") << 3 << "share" << true << " CD/ DVD Volume: SHARE "
                                           << "Network";
        QTest::newRow("ram disk") << 5 << "" << true << " %1: HD DRIVE "
                                  << "RAM Disk";
        QTest::newRow("unknown code") << 7 << "odd" << true << " CD/ DVD Volume: ODD "
                                      << "";
    }
    void driveCaptions()
    {
        QFETCH(int, typeCode);
        QFETCH(QString, label);
        QFETCH(bool, ready);
        QFETCH(QString, caption);
        QFETCH(QString, typeText);
        const Volume v{m_fixed, label, typeCode, ready};
        m_fakes.volumes.list = {v};
        auto w = makeWindow(false);
        QCOMPARE(text(*w, "Label4_3"), caption.arg(v.driveText().toUpper()));
        child<QPushButton>(*w, "Command1")->click();
        QCOMPARE(m_fakes.messages.calls.size(), 1);
        QCOMPARE(m_fakes.messages.calls.first().text, QStringLiteral("The drive is of the type ") + typeText);
        QCOMPARE(m_fakes.messages.calls.first().style, 0);
    }

    void fileNamesToggle_data() { flavour_data(); }
    void fileNamesToggle()
    {
        QFETCH(bool, longVersion);
        auto w = makeWindow(longVersion);
        auto* label8 = child<ClickableLabel>(*w, "Label8");
        const int height = w->height();
        QCOMPARE(label8->text(), QStringLiteral("Show File Names only"));
        QTest::mouseClick(label8, Qt::LeftButton);
        QCOMPARE(w->frameGeometry().width(), Twips::toPx(13560));
        QCOMPARE(label8->text(), QStringLiteral("Hide File Names only"));
        QTest::mouseClick(label8, Qt::LeftButton);
        QCOMPARE(w->frameGeometry().width(), Twips::toPx(10530));
        QCOMPARE(label8->text(), QStringLiteral("Show File Names only"));
        QCOMPARE(w->height(), height);

        // Maximised, the toggle cannot change the width; back to normal, the design values return.
        auto* pane3 = child<QWidget>(*w, longVersion ? "MSFlexGrid3" : "List3");
        w->showMaximized();
        QTRY_VERIFY(w->isMaximized());
        QTRY_VERIFY(!label8->isEnabled());
        w->showNormal();
        QTRY_VERIFY(label8->isEnabled());
        QCOMPARE(pane3->width(), Twips::toPx(4800));
        QCOMPARE(child<QWidget>(*w, "Text1")->width(), Twips::toPx(7740));
        QCOMPARE(child<QWidget>(*w, longVersion ? "Frame7" : "Frame6")->x(), Twips::toPx(longVersion ? 30 : 165));
    }

    void messagesAndExits()
    {
        auto w = makeWindow(false);
        QTest::mouseClick(child<QRadioButton>(*w, "Option1"), Qt::LeftButton, {}, QPoint(6, 6));
        QVERIFY(w->openMode());
        QTest::mouseClick(child<QRadioButton>(*w, "Option2"), Qt::LeftButton, {}, QPoint(6, 6));
        QVERIFY(!w->openMode());
        QTest::mouseClick(child<ClickableLabel>(*w, "Image2"), Qt::LeftButton);
        QCOMPARE(m_fakes.messages.calls.size(), 3);
        QCOMPARE(m_fakes.messages.calls.at(0).text,
                 QStringLiteral("By choosing this option, you can directly open any FILE/ FOLDER from\r\n"
                                "the generated FILE/ FOLDER lists item."));
        QCOMPARE(m_fakes.messages.calls.at(1).text,
                 QStringLiteral("By choosing this option, you can locate any FILE/ FOLDER by double\r\n"
                                "clicking the generated FILE/ FOLDER lists item."));
        QVERIFY(m_fakes.messages.calls.at(2).text.startsWith(
            QStringLiteral("This Software can be used to create text files & display:\r\n\r\n"
                           "1. LIST OF FOLDERS WITH THEIR SIZE\r\n")));
        for (const auto& call : m_fakes.messages.calls) {
            QCOMPARE(call.style, 64);
            QVERIFY(call.title.isEmpty());
        }

        // The player frame closes from either "Click to Close" label.
        auto* player = child<QWidget>(*w, "Frame6");
        player->show();
        QTest::mouseClick(child<ClickableLabel>(*w, "Label12_1"), Qt::LeftButton);
        QVERIFY(player->isHidden());
        QCOMPARE(m_fakes.player.closes, 1);

        // The emergency exit works only while the listing's wait text shows.
        auto* label11 = child<ClickableLabel>(*w, "Label11");
        QTest::mouseDClick(label11, Qt::LeftButton);
        label11->setText(QStringLiteral("Pl wait..."));
        QTest::mouseDClick(label11, Qt::LeftButton);
        QCOMPARE(m_fakes.programEnd.count, 0);
        label11->setText(QStringLiteral(" Pl wait... "));
        QTest::mouseDClick(label11, Qt::LeftButton);
        QCOMPARE(m_fakes.programEnd.count, 1);

        w->close();
        QCOMPARE(m_fakes.programEnd.count, 2);
    }
};

QTEST_MAIN(TestBrowserWindow)
#include "tst_browserwindow.moc"
