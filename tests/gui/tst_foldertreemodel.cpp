// SPDX-License-Identifier: GPL-3.0-or-later

#include "browser/FolderTreeModel.h"
#include "common/NativeText.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

// The folder tree's model on a real tree.
class TestFolderTreeModel : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QByteArray m_root;

    QByteArray at(const QByteArray& relative) const { return m_root + '/' + relative; }
    static QStringList names(const FolderTreeModel& model, const QModelIndex& parent = {})
    {
        QStringList out;
        for (int row = 0; row < model.rowCount(parent); ++row)
            out.append(model.index(row, 0, parent).data().toString());
        return out;
    }

private slots:
    void init()
    {
        QVERIFY(m_dir.isValid());
        m_root = QFile::encodeName(m_dir.path()) + "/tree";
        for (const char* folder : {"", "/beta", "/Alpha", "/Alpha/inner", "/g\xE9mma"})
            QCOMPARE(::mkdir((m_root + folder).constData(), 0755), 0);
        QFile file(QFile::decodeName(at("file.txt")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(::symlink(at("Alpha").constData(), at("link").constData()), 0);
    }

    void cleanup()
    {
        // QDir cannot remove a name that is not UTF-8: give it one first.
        QCOMPARE(::rename(at("g\xE9mma").constData(), at("gemma").constData()), 0);
        QVERIFY(QDir(QFile::decodeName(m_root)).removeRecursively());
    }

    // Only folders, links left out, in the walk's order. A removal outside leaves the node where it is; a folder
    // made later is found by its path, or when its parent is read again. A chosen node renamed away, and the bytes
    // of a name that is not UTF-8, are the window's test (tst_browserwindow).
    void foldersAndChangesOutside()
    {
        FolderTreeModel model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setRootPath(m_root);
        QVERIFY(model.canFetchMore({}));
        model.fetchMore({});
        const QString gemma = NativeText::toDisplay(QByteArray("g\xE9mma"));
        QTRY_COMPARE(names(model), (QStringList{u"Alpha"_s, u"beta"_s, gemma}));
        QVERIFY(!model.index(at("file.txt")).isValid());
        QVERIFY(!model.index(QByteArray("/elsewhere")).isValid());

        const QPersistentModelIndex removed = model.index(at("Alpha/inner"));
        QVERIFY(removed.isValid());
        QCOMPARE(::rmdir(at("Alpha/inner").constData()), 0);
        QCOMPARE(model.index(at("Alpha/inner")), QModelIndex(removed));
        QCOMPARE(::mkdir(at("delta").constData(), 0755), 0);
        QVERIFY(model.index(at("delta")).isValid());
        QCOMPARE(::mkdir(at("epsilon").constData(), 0755), 0);
        model.readAgain({});
        QCOMPARE(names(model), (QStringList{u"Alpha"_s, u"beta"_s, u"delta"_s, u"epsilon"_s, gemma}));
    }
};

QTEST_MAIN(TestFolderTreeModel)
#include "tst_foldertreemodel.moc"
