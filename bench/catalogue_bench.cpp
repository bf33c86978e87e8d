// SPDX-License-Identifier: GPL-3.0-or-later

// quillary-catalogue-bench TREE WORKDIR [COPIES]: the catalogue beside plocate on one tree.
//
//  - walk TREE, then record the walk: recording should take no longer than the walk;
//  - record it COPIES times (default 10) under as many volumes, for a catalogue of COPIES x the tree's entries;
//  - index TREE with plocate's updatedb and search COPIES copies of its database together, so both search the
//    same number of entries;
//  - median times of substring searches (names, ignoring case) over texts from rare to common, both sides
//    counting their hits, and of 1- and 2-character searches;
//  - bytes per entry on disk of both;
//  - the same measures for an SQLite FTS5 trigram index (detail=none) over the same names, unless --no-fts5.
//
// quillary-catalogue-bench --search CATALOGUE [TEXT...]: only the catalogue's own search times, over a catalogue
// already recorded, to time a change to the search without recording again; the given texts, else all of them.
#include "catalogue/ScanRecorder.h"
#include "catalogue/ScanResultSource.h"
#include "catalogue/SqliteCatalogue.h"
#include "scan/FolderWalk.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <algorithm>
#include <cstdio>
#include <sqlite3.h>
#include <vector>

namespace {

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : (v.size() % 2 ? v[v.size() / 2] : (v[v.size() / 2 - 1] + v[v.size() / 2]) / 2);
}

template <typename F> double timeMs(F&& f)
{
    QElapsedTimer t;
    t.start();
    f();
    return double(t.nsecsElapsed()) / 1e6;
}

qint64 fileBytes(const QString& path)
{
    return QFileInfo(path).size() + QFileInfo(path + QStringLiteral("-wal")).size();
}

struct Row
{
    QString text;
    qint64 hits = 0, plocateHits = 0, ftsHits = -1;
    double ms = 0, plocateMs = 0, ftsMs = -1;
};

const QStringList searchTexts = {
    QStringLiteral("qqqzx"),        QStringLiteral("\U0001F3B5 164"),
    QStringLiteral("data set 152"), QStringLiteral("Track2016.l"),
    QStringLiteral("invoice 84"),   QStringLiteral("\u00dcbersicht.h"),
    QStringLiteral("Album 20"),     QStringLiteral("\u0424\u043e\u0442\u043e"),
    QStringLiteral("report.do"),    QStringLiteral("setup.xls"),
    QStringLiteral("emoji"),        QStringLiteral("invoice"),
    QStringLiteral("Track"),        QStringLiteral("album"),
    QStringLiteral(".html"),        QStringLiteral("photo"),
    QStringLiteral(".log"),         QStringLiteral("set"),
    QStringLiteral("ack"),          QStringLiteral("ta s"),
    QStringLiteral("rac"),          QStringLiteral("000"),
};

// One search over every scan, its hits counted as they arrive: what any caller pays at the least.
double timeFind(Catalogue& catalogue, const QString& text, qint64& hits)
{
    FindQuery q;
    q.text = text;
    q.allScans = true;
    hits = 0;
    return timeMs([&] {
        catalogue.find(q, [&](std::vector<FindHit>& batch) {
            hits += qint64(batch.size());
            return true;
        });
    });
}

void timeShortTexts(Catalogue& catalogue)
{
    for (const QString& text :
         {QStringLiteral("a"), QStringLiteral("\u00dc"), QStringLiteral("mp"), QStringLiteral("zq")}) {
        std::vector<double> t;
        qint64 n = 0;
        for (int i = 0; i < 3; ++i)
            t.push_back(timeFind(catalogue, text, n));
        std::printf("Short text %-4s %9lld hits, median %.0f ms\n", qPrintable(text), n, median(t));
        std::fflush(stdout);
    }
}

int searchOnly(const QString& path, const QStringList& only)
{
    QString error;
    auto catalogue = SqliteCatalogue::open(path, &error);
    if (!catalogue) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    std::vector<double> medians;
    for (const QString& text : only.isEmpty() ? searchTexts : only) {
        std::vector<double> t;
        qint64 n = 0;
        for (int i = 0; i < 5; ++i)
            t.push_back(timeFind(*catalogue, text, n));
        medians.push_back(median(t));
        std::printf("  %-16s catalogue %9lld hits %8.1f ms\n", qPrintable(text), n, medians.back());
        std::fflush(stdout);
    }
    std::printf("Median over %zu texts: catalogue %.1f ms\n", medians.size(), median(medians));
    if (only.isEmpty())
        timeShortTexts(*catalogue);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    const bool fts = !args.removeAll(QStringLiteral("--no-fts5"));
    if (args.size() >= 2 && args[0] == QStringLiteral("--search"))
        return searchOnly(args[1], args.mid(2));
    if (args.size() < 2) {
        std::fprintf(stderr, "usage: quillary-catalogue-bench TREE WORKDIR [COPIES] [--no-fts5]\n"
                             "       quillary-catalogue-bench --search CATALOGUE [TEXT...]\n");
        return 2;
    }
    const QByteArray tree = QFile::encodeName(QDir(args[0]).absolutePath());
    const QString work = QDir(args[1]).absolutePath();
    const int copies = args.size() > 2 ? args[2].toInt() : 10;
    const int runs = 5;
    QDir().mkpath(work);
    const QString dbPath = work + QStringLiteral("/catalogue.sqlite");
    for (const QString& suffix : {QString(), QStringLiteral("-wal"), QStringLiteral("-shm")})
        QFile::remove(dbPath + suffix);

    // Walk, warm: the first run fills the page cache, the best of the next two counts.
    std::unique_ptr<ScanResult> result;
    std::vector<double> walks;
    for (int i = 0; i < 3; ++i)
        walks.push_back(timeMs([&] { result = FolderWalk::run(tree); }));
    const double walkMs = std::min(walks[1], walks[2]);
    const qint64 entries = result->nodeCount() - 1 + result->fileCount();
    std::printf("Tree: %lld folders, %lld files\n", result->folderCount(), result->fileCount());
    std::printf("Walk: %.0f ms\n", walkMs);

    auto catalogue = SqliteCatalogue::open(dbPath);
    std::vector<double> records;
    for (int i = 0; i < copies; ++i) {
        const ScanRecorder::Walk walk{result.get(), 1700000000000 + i, qint64(walkMs), QString()};
        ScanInfo info;
        info.scannedAtMs = walk.startedAtMs;
        info.startPath = result->startPath();
        info.volume.label = QStringLiteral("Volume %1").arg(i);
        info.volume.uuid = QStringLiteral("bench-%1").arg(i);
        info.totalBytes = result->nodeBytes(0);
        QString error;
        const double ms = timeMs([&] {
            if (!catalogue->record(info, ScanResultSource(*result), &error))
                std::fprintf(stderr, "record: %s\n", qPrintable(error));
        });
        records.push_back(ms);
        std::printf("Record %d: %.0f ms\n", i + 1, ms);
        std::fflush(stdout);
    }
    catalogue.reset();
    {
        sqlite3* db = nullptr;
        sqlite3_open(QFile::encodeName(dbPath).constData(), &db);
        sqlite3_exec(db, "PRAGMA wal_checkpoint(TRUNCATE)", nullptr, nullptr, nullptr);
        sqlite3_close(db);
    }
    catalogue = SqliteCatalogue::open(dbPath);
    const qint64 total = entries * copies;
    std::printf("Recording 1 scan of %lld entries: %.0f ms (walk %.0f ms, ratio %.2f)\n", entries, records.front(),
                walkMs, records.front() / walkMs);
    std::printf("Catalogue: %lld entries, %lld bytes, %.1f bytes per entry\n", total, fileBytes(dbPath),
                double(fileBytes(dbPath)) / double(total));

    // plocate over the same tree, its database searched `copies` times in one run.
    const QString plocateDb = work + QStringLiteral("/plocate.db");
    const double updatedbMs = timeMs([&] {
        QProcess::execute(QStringLiteral("updatedb"),
                          {QStringLiteral("-U"), QFile::decodeName(tree), QStringLiteral("-o"), plocateDb,
                           QStringLiteral("--require-visibility"), QStringLiteral("no")});
    });
    QStringList dbs;
    for (int i = 0; i < copies; ++i) {
        const QString copy = work + QStringLiteral("/plocate-%1.db").arg(i);
        QFile::remove(copy);
        QFile::copy(plocateDb, copy);
        dbs.append(copy);
    }
    std::printf("plocate updatedb of 1 tree: %.0f ms; database %lld bytes, %.1f bytes per entry\n", updatedbMs,
                QFileInfo(plocateDb).size(), double(QFileInfo(plocateDb).size()) / double(entries));
    const QString dbList = dbs.join(QLatin1Char(':'));

    sqlite3* ftsDb = nullptr;
    const QString ftsPath = work + QStringLiteral("/fts5.sqlite");
    if (fts) {
        QFile::remove(ftsPath);
        sqlite3_open(QFile::encodeName(ftsPath).constData(), &ftsDb);
        sqlite3_exec(ftsDb,
                     "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF;"
                     "CREATE VIRTUAL TABLE f USING fts5(name, tokenize='trigram', detail='none');",
                     nullptr, nullptr, nullptr);
        const double ms = timeMs([&] {
            sqlite3_exec(ftsDb, "BEGIN", nullptr, nullptr, nullptr);
            sqlite3_stmt* ins = nullptr;
            sqlite3_prepare_v2(ftsDb, "INSERT INTO f(name) VALUES (?)", -1, &ins, nullptr);
            for (int c = 0; c < copies; ++c) {
                const auto put = [&](std::string_view n) {
                    sqlite3_bind_text(ins, 1, n.data(), int(n.size()), SQLITE_STATIC);
                    sqlite3_step(ins);
                    sqlite3_reset(ins);
                };
                for (qint64 k = 1; k < result->nodeCount(); ++k)
                    put(result->nodeName(k));
                for (qint64 k = 0; k < result->fileCount(); ++k)
                    put(result->fileName(k));
            }
            sqlite3_finalize(ins);
            sqlite3_exec(ftsDb, "COMMIT", nullptr, nullptr, nullptr);
        });
        std::printf("FTS5 trigram (detail=none, names only): %.0f ms to fill, %lld bytes, %.1f bytes per entry\n", ms,
                    QFileInfo(ftsPath).size(), double(QFileInfo(ftsPath).size()) / double(total));
    }
    std::fflush(stdout);

    std::vector<Row> rows;
    for (const QString& text : searchTexts) {
        Row row;
        row.text = text;
        std::vector<double> ours, theirs, ftsTimes;
        for (int i = 0; i < runs; ++i) {
            ours.push_back(timeFind(*catalogue, text, row.hits));
            QProcess p;
            theirs.push_back(timeMs([&] {
                p.start(QStringLiteral("plocate"), {QStringLiteral("-d"), dbList, QStringLiteral("-b"),
                                                    QStringLiteral("-i"), QStringLiteral("-c"), text});
                p.waitForFinished(-1);
            }));
            row.plocateHits = p.readAllStandardOutput().trimmed().toLongLong();
            if (ftsDb) {
                const QByteArray like = "%" + text.toUtf8() + "%";
                sqlite3_stmt* st = nullptr;
                sqlite3_prepare_v2(ftsDb, "SELECT count(*) FROM f WHERE name LIKE ?", -1, &st, nullptr);
                ftsTimes.push_back(timeMs([&] {
                    sqlite3_bind_text(st, 1, like.constData(), int(like.size()), SQLITE_STATIC);
                    sqlite3_step(st);
                    row.ftsHits = sqlite3_column_int64(st, 0);
                }));
                sqlite3_finalize(st);
            }
        }
        row.ms = median(ours);
        row.plocateMs = median(theirs);
        row.ftsMs = ftsDb ? median(ftsTimes) : -1;
        rows.push_back(row);
        std::printf("  %-16s catalogue %9lld hits %8.1f ms | plocate %9lld hits %8.1f ms | fts5 %9lld hits %8.1f ms\n",
                    qPrintable(text), row.hits, row.ms, row.plocateHits, row.plocateMs, row.ftsHits, row.ftsMs);
        std::fflush(stdout);
    }
    std::vector<double> a, b, c;
    for (const Row& r : rows) {
        a.push_back(r.ms);
        b.push_back(r.plocateMs);
        c.push_back(r.ftsMs);
    }
    std::printf("Median over %zu texts: catalogue %.1f ms, plocate %.1f ms, FTS5 %.1f ms\n", rows.size(), median(a),
                median(b), median(c));

    timeShortTexts(*catalogue);
    if (ftsDb)
        sqlite3_close(ftsDb);
    return 0;
}
