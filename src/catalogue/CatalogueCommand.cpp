// SPDX-License-Identifier: GPL-3.0-or-later

#include "CatalogueCommand.h"

#include "OutputTable.h"
#include "catalogue/ScanRecorder.h"
#include "catalogue/SqliteCatalogue.h"
#include "catalogue/VolumeProbe.h"
#include "common/NativeText.h"
#include "scan/FolderReader.h"
#include "scan/FolderWalk.h"

#include <QCommandLineParser>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFileInfo>
#include <map>

using namespace CatalogueRecords;

namespace {

enum Exit { Done = 0, NothingFound = 1, BadArguments = 2, Failed = 3 };

const char* const Usage =
    "Usage: quillary-catalogue [--catalogue FILE] COMMAND ...\n"
#ifdef QUILLARY_CATALOGUE_WINDOW
    "       quillary-catalogue            (no arguments) the catalogue window\n"
#endif
    "\n"
    "Every scan saved by Quillary, searchable with its drive unplugged.\n"
    "\n"
    "Commands:\n"
    "  add [--short] FOLDER       walk FOLDER and record it (no listing files are written)\n"
    "  import [--encoding NAME] FILE...\n"
    "                             record a set of four listing files (any file of the set names it);\n"
    "                             text is UTF-8 when valid, else Windows-1252, unless NAME is given\n"
    "  find [OPTIONS] TEXT        entries whose name holds TEXT, ignoring case\n"
    "      --path                 match the whole path instead of the name\n"
    "      --glob                 TEXT is a pattern of * and ? for the whole name (or path)\n"
    "      --files, --folders     only files, only folders\n"
    "      --min-size N, --max-size N   size in bytes, or with k, M, G\n"
    "      --newer DATE, --older DATE   modified on or after / before DATE (ISO 8601, UTC)\n"
    "      --volume V             only the volume with label or UUID V\n"
    "      --all-scans            older scans too (by default only the newest scan of each\n"
    "                             folder on each volume)\n"
    "      --limit N              at most N entries\n"
    "  scans                      the recorded scans\n"
    "  remove ID...               delete scans\n"
    "  diff A B                   compare scan A with the newer scan B\n"
    "  diff FOLDER                compare the two newest scans of FOLDER\n"
    "\n"
    "Output of find, scans and diff: a table; --tsv tab-separated lines; -0 the same fields with each\n"
    "record ended by NUL. --catalogue FILE uses another catalogue than ~/Quillbox/catalogue.sqlite.\n"
    "\n"
    "Exit status: 0 done; 1 find found nothing; 2 bad arguments; 3 the catalogue failed.\n";

QByteArray isoUtc(qint64 msSinceEpoch)
{
    return QDateTime::fromMSecsSinceEpoch(msSinceEpoch, Qt::UTC).toString(Qt::ISODate).toUtf8();
}

QByteArray mtimeText(qint64 mtime, bool table)
{
    if (mtime == NoTime)
        return table ? "-" : "";
    const QDateTime t = QDateTime::fromSecsSinceEpoch(mtime, Qt::UTC);
    return (table ? t.toString(QStringLiteral("yyyy-MM-dd HH:mm")) : t.toString(Qt::ISODate)).toUtf8();
}

QByteArray scanTimeText(qint64 ms, bool table)
{
    if (!table)
        return isoUtc(ms);
    return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC).toString(QStringLiteral("yyyy-MM-dd HH:mm")).toUtf8();
}

QByteArray sizeText(qint64 bytes, bool table)
{
    if (bytes == NoSize)
        return table ? "-" : "";
    if (!table || bytes < 1024)
        return QByteArray::number(bytes);
    static const char* const units[] = {"k", "M", "G", "T", "P"};
    double v = double(bytes);
    int u = -1;
    while (v >= 1024 && u < 4) {
        v /= 1024;
        ++u;
    }
    return QByteArray::number(v, 'f', v < 10 ? 1 : 0) + units[u];
}

std::optional<qint64> parseSize(const QString& text)
{
    QString t = text.trimmed();
    qint64 factor = 1;
    if (!t.isEmpty()) {
        switch (t.back().toUpper().unicode()) {
        case 'K':
            factor = qint64(1) << 10;
            break;
        case 'M':
            factor = qint64(1) << 20;
            break;
        case 'G':
            factor = qint64(1) << 30;
            break;
        case 'T':
            factor = qint64(1) << 40;
            break;
        }
        if (factor > 1)
            t.chop(1);
    }
    bool ok = false;
    const double v = t.toDouble(&ok);
    if (!ok || v < 0)
        return std::nullopt;
    return qint64(v * double(factor));
}

std::optional<qint64> parseDate(const QString& text)
{
    QDateTime t = QDateTime::fromString(text, Qt::ISODate);
    if (!t.isValid()) {
        const QDate d = QDate::fromString(text, Qt::ISODate);
        if (!d.isValid())
            return std::nullopt;
        t = QDateTime(d, QTime(0, 0), Qt::UTC);
    } else if (t.timeSpec() == Qt::LocalTime) {
        t.setTimeSpec(Qt::UTC);
    }
    return t.toSecsSinceEpoch();
}

class Command
{
public:
    Command(std::FILE* out, std::FILE* err) : m_out(out), m_err(err) {}

    int run(const QByteArrayList& rawArgs)
    {
        QStringList args{QStringLiteral("quillary-catalogue")};
        for (const QByteArray& a : rawArgs)
            args.append(NativeText::toDisplay(a));
        QCommandLineParser p;
        p.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
        p.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsOptions);
        const QCommandLineOption catalogue(QStringLiteral("catalogue"), QString(), QStringLiteral("FILE"));
        const QCommandLineOption tsv(QStringLiteral("tsv"));
        const QCommandLineOption nul(QStringLiteral("0"));
        const QCommandLineOption shortFlavour(QStringLiteral("short"));
        const QCommandLineOption encoding(QStringLiteral("encoding"), QString(), QStringLiteral("NAME"));
        const QCommandLineOption path(QStringLiteral("path")), glob(QStringLiteral("glob"));
        const QCommandLineOption files(QStringLiteral("files")), folders(QStringLiteral("folders"));
        const QCommandLineOption minSize(QStringLiteral("min-size"), QString(), QStringLiteral("N"));
        const QCommandLineOption maxSize(QStringLiteral("max-size"), QString(), QStringLiteral("N"));
        const QCommandLineOption newer(QStringLiteral("newer"), QString(), QStringLiteral("DATE"));
        const QCommandLineOption older(QStringLiteral("older"), QString(), QStringLiteral("DATE"));
        const QCommandLineOption volume(QStringLiteral("volume"), QString(), QStringLiteral("V"));
        const QCommandLineOption allScans(QStringLiteral("all-scans"));
        const QCommandLineOption limit(QStringLiteral("limit"), QString(), QStringLiteral("N"));
        const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
        p.addOptions({catalogue, tsv, nul, shortFlavour, encoding, path, glob, files, folders, minSize, maxSize, newer,
                      older, volume, allScans, limit, help});
        if (!p.parse(args))
            return bad(p.errorText());
        if (p.isSet(help)) {
            std::fputs(Usage, m_out);
            return Done;
        }
        m_form =
            p.isSet(nul) ? OutputTable::Form::Nul : (p.isSet(tsv) ? OutputTable::Form::Tsv : OutputTable::Form::Table);
        m_cataloguePath = p.isSet(catalogue) ? p.value(catalogue) : SqliteCatalogue::defaultPath();
        QStringList pos = p.positionalArguments();
        if (pos.isEmpty())
            return bad(QStringLiteral("No command given."));
        const QString command = pos.takeFirst();

        // Options that belong to one command only are refused elsewhere, so a typo does not pass unnoticed.
        const QList<std::pair<const QCommandLineOption*, QStringList>> owners = {
            {&shortFlavour, {QStringLiteral("add")}},
            {&encoding, {QStringLiteral("import")}},
            {&tsv, {QStringLiteral("find"), QStringLiteral("scans"), QStringLiteral("diff")}},
            {&nul, {QStringLiteral("find"), QStringLiteral("scans"), QStringLiteral("diff")}},
        };
        for (const auto& [option, commands] : owners)
            if (p.isSet(*option) && !commands.contains(command))
                return bad(QStringLiteral("--%1 does not go with %2.").arg(option->names().constFirst(), command));
        for (const QCommandLineOption* o :
             {&path, &glob, &files, &folders, &minSize, &maxSize, &newer, &older, &volume, &allScans, &limit})
            if (p.isSet(*o) && command != QLatin1String("find"))
                return bad(QStringLiteral("--%1 goes with find only.").arg(o->names().constFirst()));

        if (command == QLatin1String("add")) {
            if (pos.size() != 1)
                return bad(QStringLiteral("add takes one FOLDER."));
            return add(NativeText::fromDisplay(pos.first()), p.isSet(shortFlavour));
        }
        if (command == QLatin1String("import")) {
            if (pos.isEmpty())
                return bad(QStringLiteral("import takes listing files."));
            return import(pos, p.value(encoding));
        }
        if (command == QLatin1String("scans")) {
            if (!pos.isEmpty())
                return bad(QStringLiteral("scans takes no arguments."));
            return scans();
        }
        if (command == QLatin1String("remove")) {
            std::vector<qint64> ids;
            for (const QString& s : pos) {
                bool ok = false;
                ids.push_back(s.toLongLong(&ok));
                if (!ok)
                    return bad(QStringLiteral("Not a scan id: %1").arg(s));
            }
            if (ids.empty())
                return bad(QStringLiteral("remove takes scan ids."));
            return remove(ids);
        }
        if (command == QLatin1String("diff")) {
            if (pos.size() == 1)
                return diffFolder(NativeText::fromDisplay(pos.first()));
            bool okA = false, okB = false;
            const qint64 a = pos.value(0).toLongLong(&okA), b = pos.value(1).toLongLong(&okB);
            if (pos.size() != 2 || !okA || !okB)
                return bad(QStringLiteral("diff takes two scan ids or one FOLDER."));
            return diff(a, b);
        }
        if (command == QLatin1String("find")) {
            if (pos.size() != 1)
                return bad(QStringLiteral("find takes one TEXT (quote it when it holds blanks)."));
            FindQuery q;
            q.text = pos.first();
            q.glob = p.isSet(glob);
            q.matchPath = p.isSet(path);
            if (p.isSet(files) && p.isSet(folders))
                return bad(QStringLiteral("--files and --folders exclude each other."));
            q.kinds = p.isSet(files) ? FindQuery::Kinds::Files
                                     : (p.isSet(folders) ? FindQuery::Kinds::Folders : FindQuery::Kinds::Both);
            for (const auto& [option, target] : {std::pair{&minSize, &q.minSize}, std::pair{&maxSize, &q.maxSize}}) {
                if (!p.isSet(*option))
                    continue;
                const auto v = parseSize(p.value(*option));
                if (!v)
                    return bad(QStringLiteral("Not a size: %1").arg(p.value(*option)));
                *target = *v;
            }
            for (const auto& [option, target] : {std::pair{&newer, &q.newerThan}, std::pair{&older, &q.olderThan}}) {
                if (!p.isSet(*option))
                    continue;
                const auto v = parseDate(p.value(*option));
                if (!v)
                    return bad(QStringLiteral("Not a date: %1").arg(p.value(*option)));
                *target = *v;
            }
            q.volume = p.value(volume);
            q.allScans = p.isSet(allScans);
            if (p.isSet(limit)) {
                bool ok = false;
                q.limit = p.value(limit).toLongLong(&ok);
                if (!ok || q.limit < 0)
                    return bad(QStringLiteral("Not a limit: %1").arg(p.value(limit)));
            }
            return find(q);
        }
        return bad(QStringLiteral("Unknown command: %1").arg(command));
    }

private:
    bool table() const { return m_form == OutputTable::Form::Table; }

    int bad(const QString& why)
    {
        say(m_err, why);
        std::fputs(Usage, m_err);
        return BadArguments;
    }

    int failed(const QString& why)
    {
        say(m_err, why);
        return Failed;
    }

    void say(std::FILE* f, const QString& text)
    {
        const QByteArray b = NativeText::fromDisplay(text) + '\n';
        std::fwrite(b.constData(), 1, size_t(b.size()), f);
    }

    std::unique_ptr<Catalogue> open()
    {
        QString error;
        auto c = SqliteCatalogue::open(m_cataloguePath, &error);
        if (!c)
            say(m_err, error);
        return c;
    }

    bool mounted(const ScanInfo& s)
    {
        const auto it = m_mounted.find(s.id);
        if (it != m_mounted.end())
            return it->second;
        return m_mounted[s.id] = VolumeProbe::isMounted(s);
    }

    int add(const QByteArray& folder, bool shortFlavour)
    {
        // Named as quillary-list names it, so both record one folder under one path, at any length.
        const QByteArray start = FolderReader::absoluteFolder(folder);
        if (start.isEmpty())
            return bad(QStringLiteral("Not a folder: %1").arg(NativeText::toDisplay(folder)));
        auto c = open();
        if (!c)
            return Failed;
        WalkOptions o;
        o.flavour = shortFlavour ? ScanResult::Flavour::Short : ScanResult::Flavour::Long;
        const qint64 startedAt = QDateTime::currentMSecsSinceEpoch();
        QElapsedTimer timer;
        timer.start();
        const auto result = FolderWalk::run(start, o);
        QString error;
        const auto id = ScanRecorder::record(*c, {result.get(), startedAt, timer.elapsed(), QString()}, &error);
        if (!id)
            return failed(error);
        say(m_out, QStringLiteral("Recorded scan %1: %2 folders, %3 files, %4 bytes%5.")
                       .arg(*id)
                       .arg(result->folderCount())
                       .arg(result->fileCount())
                       .arg(std::max<qint64>(result->nodeBytes(0), 0))
                       .arg(result->limitReached() ? QStringLiteral(" (stopped at the Short limit)") : QString()));
        return Done;
    }

    int import(const QStringList& files, const QString& encoding)
    {
        auto c = open();
        if (!c)
            return Failed;
        QString error;
        const auto id = c->importListing(files, {encoding, 0}, &error);
        if (!id)
            return failed(error);
        const auto all = c->scans();
        for (const ScanInfo& s : all ? *all : std::vector<ScanInfo>())
            if (s.id == *id)
                say(m_out, QStringLiteral("Imported scan %1 of %2: %3 folders, %4 files (paths and folder sizes only).")
                               .arg(*id)
                               .arg(NativeText::toDisplay(s.startPath))
                               .arg(s.folderCount)
                               .arg(s.fileCount));
        return Done;
    }

    int scans()
    {
        auto c = open();
        if (!c)
            return Failed;
        QString error;
        const auto all = c->scans(&error);
        if (!all)
            return failed(error);
        OutputTable t(m_form,
                      table() ? QList<QByteArray>{"ID", "SCANNED", "LABEL", "UUID", "MOUNT POINT", "START FOLDER",
                                                  "FILES", "FOLDERS", "SIZE", "COMPLETE", "MOUNTED"}
                              : QList<QByteArray>{},
                      m_out);
        t.setRightAligned({0, 6, 7, 8});
        for (const ScanInfo& s : *all) {
            QByteArray complete = s.complete ? "yes" : "no";
            if (table() && s.imported)
                complete += " (imported)";
            t.add({QByteArray::number(s.id), scanTimeText(s.scannedAtMs, table()), s.volume.label.toUtf8(),
                   s.volume.uuid.toUtf8(), s.volume.mountPoint, s.startPath, QByteArray::number(s.fileCount),
                   QByteArray::number(s.folderCount), sizeText(s.totalBytes, table()), complete,
                   mounted(s) ? "yes" : "no"});
        }
        return Done;
    }

    int remove(const std::vector<qint64>& ids)
    {
        auto c = open();
        if (!c)
            return Failed;
        QString error;
        if (!c->remove(ids, &error))
            return failed(error);
        for (const qint64 id : ids)
            say(m_out, QStringLiteral("Removed scan %1.").arg(id));
        return Done;
    }

    int find(const FindQuery& q)
    {
        auto c = open();
        if (!c)
            return Failed;
        OutputTable t(m_form,
                      table() ? QList<QByteArray>{"NAME", "FOLDER", "SIZE", "MODIFIED", "VOLUME", "SCANNED", "MOUNTED"}
                              : QList<QByteArray>{},
                      m_out);
        t.setRightAligned({2});
        qint64 count = 0;
        QString error;
        const bool ok = c->find(
            q,
            [&](std::vector<FindHit>& batch) {
                for (const FindHit& h : batch) {
                    if (table()) {
                        const QByteArray folder = h.path.left(std::max(h.nameOffset - 1, 0));
                        t.add({h.name(), folder.isEmpty() ? h.path.left(h.nameOffset) : folder, sizeText(h.bytes, true),
                               mtimeText(h.mtime, true), h.scan->volume.label.toUtf8(),
                               scanTimeText(h.scan->scannedAtMs, true), mounted(*h.scan) ? "yes" : "no"});
                    } else {
                        t.add({h.path, sizeText(h.bytes, false), mtimeText(h.mtime, false),
                               h.scan->volume.label.toUtf8(), h.scan->volume.uuid.toUtf8(),
                               QByteArray::number(h.scan->id), isoUtc(h.scan->scannedAtMs)});
                    }
                }
                count += qint64(batch.size());
                return true;
            },
            &error);
        t.flush();
        if (!ok)
            return failed(error);
        return count > 0 ? Done : NothingFound;
    }

    int diffFolder(const QByteArray& folder)
    {
        auto c = open();
        if (!c)
            return Failed;
        // The path add and the lister record the folder under, else the path as given, for a folder gone since.
        QByteArray start = FolderReader::absoluteFolder(folder);
        if (start.isEmpty())
            start = folder;
        QString error;
        auto pair = c->lastTwoScans(start, &error);
        if (!pair && start != folder)
            pair = c->lastTwoScans(folder, &error);
        if (!pair)
            return failed(error);
        return diffWith(*c, pair->first, pair->second);
    }

    int diff(qint64 a, qint64 b)
    {
        auto c = open();
        if (!c)
            return Failed;
        return diffWith(*c, a, b);
    }

    int diffWith(Catalogue& c, qint64 a, qint64 b)
    {
        QString error;
        const auto d = c.diff(a, b, &error);
        if (!d)
            return failed(error);
        static const char* const words[] = {"added", "removed", "changed"};
        {
            OutputTable t(m_form,
                          table() ? QList<QByteArray>{"CHANGE", "PATH", "OLD SIZE", "NEW SIZE", "OLD MODIFIED",
                                                      "NEW MODIFIED", "DIFFERENCE"}
                                  : QList<QByteArray>{},
                          m_out);
            t.setRightAligned({2, 3, 6});
            for (const DiffItem& i : d->items) {
                const qint64 delta = (i.newBytes == NoSize ? 0 : i.newBytes) - (i.oldBytes == NoSize ? 0 : i.oldBytes);
                QByteArray deltaText = QByteArray::number(delta);
                if (delta > 0)
                    deltaText.prepend('+');
                t.add({i.folder ? QByteArray("folder") : QByteArray(words[int(i.change)]), i.path,
                       sizeText(i.oldBytes, table()), sizeText(i.newBytes, table()), mtimeText(i.oldMtime, table()),
                       mtimeText(i.newMtime, table()), deltaText});
            }
        }
        if (table()) {
            say(m_out, QStringLiteral("\nScan %1 (%2) -> scan %3 (%4): %5 files added, %6 removed, %7 changed; "
                                      "%8 folders changed in size; %9 bytes difference in all.")
                           .arg(d->older.id)
                           .arg(QString::fromUtf8(scanTimeText(d->older.scannedAtMs, true)))
                           .arg(d->newer.id)
                           .arg(QString::fromUtf8(scanTimeText(d->newer.scannedAtMs, true)))
                           .arg(d->filesAdded)
                           .arg(d->filesRemoved)
                           .arg(d->filesChanged)
                           .arg(d->foldersChanged)
                           .arg(d->bytesDelta));
        } else {
            OutputTable t(m_form, {}, m_out);
            t.add({"totals", QByteArray::number(d->filesAdded), QByteArray::number(d->filesRemoved),
                   QByteArray::number(d->filesChanged), QByteArray::number(d->foldersChanged),
                   QByteArray::number(d->bytesDelta)});
        }
        return Done;
    }

    std::FILE* m_out;
    std::FILE* m_err;
    OutputTable::Form m_form = OutputTable::Form::Table;
    QString m_cataloguePath;
    std::map<qint64, bool> m_mounted;
};

} // namespace

const char* catalogueUsage()
{
    return Usage;
}

int runCatalogueCommand(const QByteArrayList& args, std::FILE* out, std::FILE* err)
{
    return Command(out, err).run(args);
}
