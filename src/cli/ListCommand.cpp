// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListCommand.h"

#include "catalogue/ScanRecorder.h"
#include "common/NativeText.h"
#include "common/NumberText.h"
#include "export/FileOps.h"
#include "export/SaveFlow.h"
#include "platform/InputService.h"
#include "platform/MessageService.h"
#include "scan/FolderWalk.h"
#include "search/ListSearch.h"
#include "volumes/DriveCaption.h"
#include "volumes/VolumeService.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <climits>
#include <cstdlib>
#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace {

const char* const Usage = "Usage: quillary-list [--short] [--name NAME] [--out DIR] [--yes] FOLDER\n"
                          "       quillary-list [--short] --search TEXT [--in folders|files] FOLDER\n"
                          "\n"
                          "Lists every folder and file below FOLDER and writes the four listing files of\n"
                          "\"Create Text Files\":\n"
                          "  Folders List WithPath NAME.txt   Folders List - NAME.txt\n"
                          "  Files List WithPath NAME.txt     Files List - NAME.txt\n"
                          "\n"
                          "Options:\n"
                          "  --short      stop at 32767 files, as the Short window does (default: no limit)\n"
                          "  --name NAME  the name in the four file names (default: FOLDER's last component)\n"
                          "  --out DIR    where to write them (default: the collection folder, ~/Quillbox)\n"
                          "  --yes        replace the four files when they all exist already\n"
                          "  --no-catalogue  do not record the scan in the catalogue (~/Quillbox/catalogue.sqlite)\n"
                          "  --search TEXT  instead of writing listings, search the folder names (with\n"
                          "               their sizes) or the file names for TEXT, ignoring case, and\n"
                          "               print the numbered results and their count as the window does\n"
                          "  --in folders|files  which list --search searches (default: files)\n"
                          "  --help       show this text\n"
                          "\n"
                          "Exit status: 0 written; 1 the files exist and --yes was not given;\n"
                          "2 bad arguments or FOLDER is not a folder; 3 the files could not be written.\n";

void print(std::FILE* f, const QString& text)
{
    QString t = text;
    t.replace(QStringLiteral("\t"), QString());
    t.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    const QByteArray bytes = NativeText::fromDisplay(t);
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), f);
    std::fputc('\n', f);
}

// Answers the save's questions from the command line: the name from --name, the replace question (the only
// question a save asks) from --yes. Reports go to standard output, warnings and errors to standard error.
class CommandLineAnswers : public MessageService, public InputService
{
public:
    CommandLineAnswers(QString name, bool yes, std::FILE* out, std::FILE* err)
        : m_name(std::move(name)), m_yes(yes), m_out(out), m_err(err)
    {
    }
    QString inputBox(const QString&, const QString&, const QString&) override { return m_name; }
    Answer message(const QString& text, MessageStyle style, const QString&) override
    {
        if (style.asks())
            return m_yes ? Answer::Yes : Answer::No;
        print(style.icon() == MessageStyle::Icon::Information ? m_out : m_err, text);
        return Answer::Ok;
    }

private:
    QString m_name;
    bool m_yes;
    std::FILE* m_out;
    std::FILE* m_err;
};

enum class FolderCheck { Ok, Missing, NotAFolder };

#ifndef _WIN32
FolderCheck checkFolder(const QByteArray& path)
{
    struct stat st;
    if (::stat(path.constData(), &st) != 0)
        return FolderCheck::Missing;
    return S_ISDIR(st.st_mode) ? FolderCheck::Ok : FolderCheck::NotAFolder;
}

QByteArray absoluteFolder(const QByteArray& arg)
{
    char buf[PATH_MAX];
    if (::realpath(arg.constData(), buf))
        return QByteArray(buf);
    return arg;
}
#else
FolderCheck checkFolder(const QByteArray& path)
{
    const QFileInfo info(QString::fromUtf8(path));
    if (!info.exists())
        return FolderCheck::Missing;
    return info.isDir() ? FolderCheck::Ok : FolderCheck::NotAFolder;
}

QByteArray absoluteFolder(const QByteArray& arg)
{
    return QDir::toNativeSeparators(QFileInfo(QString::fromUtf8(arg)).canonicalFilePath()).toUtf8();
}
#endif

} // namespace

int runListCommand(const QByteArrayList& args, std::FILE* out, std::FILE* err)
{
    bool isShort = false, yes = false, haveName = false, search = false, catalogue = true;
    QString name, outDir, searchText, searchIn = QStringLiteral("files");
    QByteArray folder;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QByteArray& a = args[i];
        const auto value = [&](QString& into) {
            if (i + 1 >= args.size()) {
                std::fprintf(err, "quillary-list: %s needs a value\n", a.constData());
                return false;
            }
            into = NativeText::toDisplay(args[++i]);
            return true;
        };
        if (a == "--help" || a == "-h") {
            std::fputs(Usage, out);
            return 0;
        } else if (a == "--short") {
            isShort = true;
        } else if (a == "--yes") {
            yes = true;
        } else if (a == "--no-catalogue") {
            catalogue = false;
        } else if (a == "--name") {
            if (!value(name))
                return 2;
            haveName = true;
        } else if (a == "--out") {
            if (!value(outDir))
                return 2;
        } else if (a == "--search") {
            if (!value(searchText))
                return 2;
            search = true;
        } else if (a == "--in") {
            if (!value(searchIn))
                return 2;
            if (searchIn != QLatin1String("folders") && searchIn != QLatin1String("files")) {
                std::fputs("quillary-list: --in takes folders or files\n", err);
                return 2;
            }
        } else if (a == "--") {
            if (i + 1 < args.size() && folder.isEmpty())
                folder = args[++i];
        } else if (a.startsWith('-') && a.size() > 1) {
            std::fprintf(err, "quillary-list: unknown option %s\nTry quillary-list --help.\n", a.constData());
            return 2;
        } else if (folder.isEmpty()) {
            folder = a;
        } else {
            std::fprintf(err, "quillary-list: only one FOLDER may be given\n");
            return 2;
        }
    }
    if (folder.isEmpty()) {
        std::fputs("quillary-list: no FOLDER given\nTry quillary-list --help.\n", err);
        return 2;
    }
    const FolderCheck check = checkFolder(folder);
    if (check == FolderCheck::Missing) {
        std::fprintf(err, "quillary-list: %s: no such folder\n", folder.constData());
        return 2;
    }
    if (check == FolderCheck::NotAFolder) {
        std::fprintf(err, "quillary-list: %s: not a folder\n", folder.constData());
        return 2;
    }

    const QByteArray start = absoluteFolder(folder);
    const QString startText = NativeText::toDisplay(start);
    if (!haveName) {
#ifdef _WIN32
        const qsizetype cut = start.lastIndexOf('\\');
#else
        const qsizetype cut = start.lastIndexOf('/'); // a backslash is an ordinary character in a name here
#endif
        name = NativeText::toDisplay(start.mid(cut + 1));
    }

    CollectionFolder collection;
    if (!outDir.isEmpty()) {
        const QString dir = QDir(outDir).absolutePath();
        QDir().mkpath(dir);
        collection = CollectionFolder(dir);
    }

    WalkOptions options;
    options.flavour = isShort ? ScanResult::Flavour::Short : ScanResult::Flavour::Long;
    QElapsedTimer clock;
    clock.start();
    const qint64 startedAtMs = QDateTime::currentMSecsSinceEpoch();
    const std::unique_ptr<ScanResult> result = FolderWalk::run(start, options);
    const qint64 elapsed = clock.elapsed();
    if (result->limitReached())
        print(err, ScanResult::limitMessage());

    if (search) {
        const auto kind =
            searchIn == QLatin1String("folders") ? SearchResult::Kind::Folders : SearchResult::Kind::Files;
        const SearchResult found =
            ListSearch::run(std::shared_ptr<const ScanResult>(result.get(), [](auto*) {}), kind, searchText);
        if (searchText.isEmpty())
            return 0; // the window clears its results and shows no count
        QByteArray lines;
        for (qint64 i = 0; i < found.count(); ++i) {
            lines += NativeText::fromDisplay(found.line(i));
            lines += '\n';
            if (lines.size() > (1 << 20)) {
                std::fwrite(lines.constData(), 1, size_t(lines.size()), out);
                lines.clear();
            }
        }
        std::fwrite(lines.constData(), 1, size_t(lines.size()), out);
        print(out, found.countCaption());
        return 0;
    }

    if (result->noFolderFound())
        print(out, QString::fromLatin1(ScanResult::NoFolderFound.data(), qsizetype(ScanResult::NoFolderFound.size())));
    else
        print(out, QStringLiteral("Total Folders: ") + QString::number(result->folderCount()));
    print(out, QStringLiteral("Total Files: ") + QString::number(result->fileCount()));
    print(out, QStringLiteral("Elapsed time: ") + NumberText::seconds(elapsed) + QStringLiteral(" sec"));

    SystemVolumeService volumes;
    SaveSources sources;
    sources.result = result.get();
    sources.flavour = options.flavour;
    sources.driveCaption = DriveCaption::captionForPath(volumes, startText);
    sources.parentFolder = startText;

    CommandLineAnswers answers(name, yes, out, err);
    SystemFileOps ops;
    SaveFlow flow(answers, answers, ops, collection);
    const SaveFlow::Outcome outcome = flow.run(SaveFlow::Kind::Set, sources);
    if (outcome.refused)
        return 1;
    if (outcome.error != RuntimeError::None)
        return 3;
    if (catalogue) {
        // The listing stands whatever happens here; a catalogue that cannot be written is only reported.
        QString error;
        if (!ScanRecorder::recordInCollection({result.get(), startedAtMs, elapsed, name}, &error))
            print(err, QStringLiteral("quillary-list: the scan was not recorded in the catalogue: ") + error);
    }
    return 0;
}
