// SPDX-License-Identifier: GPL-3.0-or-later

#include "ListCommand.h"

#include "catalogue/ScanRecorder.h"

#include "common/NativeText.h"
#include "common/NumberText.h"
#include "common/Version.h"
#include "export/FileOps.h"
#include "export/SaveFlow.h"
#include "export/TempFile.h"
#include "platform/InputService.h"
#include "platform/MessageService.h"
#include "scan/FolderReader.h"
#include "scan/FolderWalk.h"
#include "search/ListSearch.h"
#include "volumes/DriveCaption.h"
#include "volumes/VolumeService.h"

#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

const char* const Usage =
    "Usage: quillary-list [--short] [--name NAME] [--out DIR] [--yes] [--no-catalogue] [--] FOLDER\n"
    "       quillary-list [--short] --search TEXT [--in folders|files] [--] FOLDER\n"
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
    "  --yes        replace any of the four files that exist already\n"
    "  --no-catalogue  do not record the scan in the catalogue (~/Quillbox/catalogue.sqlite)\n"
    "  --search TEXT  instead of writing listings, search the folder names (with\n"
    "               their sizes) or the file names for TEXT, ignoring case, and\n"
    "               print the numbered results and their count as the window does\n"
    "  --in folders|files  which list --search searches (default: files)\n"
    "  -h, --help   show this text\n"
    "  --version    show the version\n"
    "  --           end of the options: what follows is FOLDER\n"
    "Options take their value as --name NAME or --name=NAME.\n"
    "\n"
    "Exit status: 0 written; 1 a listing file exists and --yes was not given\n"
    "(nothing written); 2 bad arguments or FOLDER cannot be listed; 3 the files\n"
    "could not be written; 4 written, but some folders could not be read.\n";

// The exit statuses, as the usage text and the manual page give them.
enum Exit { Written = 0, Refused = 1, BadArguments = 2, SaveFailed = 3, SomeUnreadable = 4 };

void print(std::FILE* f, const QString& text)
{
    QString t = text;
    t.replace(QStringLiteral("\t"), QString());
    t.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    const QByteArray bytes = NativeText::fromDisplay(t);
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), f);
    std::fputc('\n', f);
}

// "quillary-list: " + what went wrong, naming the path with its own bytes and the system's reason.
void complain(std::FILE* err, const char* what, const QByteArray& path, const char* reason)
{
    std::fprintf(err, "quillary-list: %s '", what);
    std::fwrite(path.constData(), 1, size_t(path.size()), err);
    std::fprintf(err, "': %s\n", reason);
}

// Answers the save's input box from --name and prints its messages: reports on standard output, warnings and
// errors on standard error. Replacing is settled before the walk, so the save asks no question; one would get No.
class CommandLineAnswers : public MessageService, public InputService
{
public:
    CommandLineAnswers(QString name, std::FILE* out, std::FILE* err) : m_name(std::move(name)), m_out(out), m_err(err)
    {
    }
    QString inputBox(const QString&, const QString&, const QString&) override { return m_name; }
    Answer message(const QString& text, MessageStyle style, const QString&) override
    {
        if (style.asks())
            return Answer::No;
        print(style.icon() == MessageStyle::Icon::Information ? m_out : m_err, text);
        return Answer::Ok;
    }

private:
    QString m_name;
    std::FILE* m_out;
    std::FILE* m_err;
};

#ifndef _WIN32
constexpr char Separator = '/'; // a backslash is an ordinary character in a name here

// The folder as an absolute path of native bytes, at any length, as the walk and the catalogue name it. A folder
// still to be made (--out) is named from the current folder.
QByteArray absoluteFolder(const QByteArray& arg)
{
    const QByteArray real = FolderReader::absoluteFolder(arg);
    if (!real.isEmpty())
        return real;
    QByteArray path = arg;
    if (!path.startsWith(Separator)) {
        const QByteArray cwd = FolderReader::currentFolder();
        if (cwd.isEmpty())
            return arg;
        path = cwd + Separator + path;
    }
    while (path.endsWith("/."))
        path.chop(2);
    while (path.size() > 1 && path.endsWith(Separator))
        path.chop(1);
    return path;
}

// 0 when `path` is a folder that can be listed, else the errno that says why not (ENOTDIR: not a folder).
int listable(const QByteArray& path)
{
    const int fd = FolderReader::openPath(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return errno;
    ::close(fd);
    return 0;
}

// Makes `path` and the folders above it, as mkdir -p does; errno of the failure, or 0.
int makeFolders(const QByteArray& path)
{
    for (qsizetype cut = path.indexOf(Separator, 1); cut >= 0; cut = path.indexOf(Separator, cut + 1)) {
        if (::mkdir(path.left(cut).constData(), 0777) != 0 && errno != EEXIST)
            return errno;
    }
    if (::mkdir(path.constData(), 0777) != 0 && errno != EEXIST)
        return errno;
    return 0;
}

// Whether a file can be made in `folder`: tried with one of the save's own temporary files, so a read-only
// file system counts even for root.
int writable(const QByteArray& folder)
{
    QByteArray temp;
    const int fd = TempFile::create(folder, temp);
    if (fd < 0)
        return errno;
    ::unlink(temp.constData());
    ::close(fd);
    TempFile::forget(temp);
    return 0;
}

bool exists(const QByteArray& path)
{
    struct stat st;
    return ::lstat(path.constData(), &st) == 0;
}
#else
constexpr char Separator = '\\';

QByteArray absoluteFolder(const QByteArray& arg)
{
    return QDir::toNativeSeparators(QFileInfo(QString::fromUtf8(arg)).absoluteFilePath()).toUtf8();
}

int listable(const QByteArray& path)
{
    const QFileInfo info(QString::fromUtf8(path));
    if (!info.exists())
        return ENOENT;
    return info.isDir() ? 0 : ENOTDIR;
}

int makeFolders(const QByteArray& path)
{
    return QDir().mkpath(QString::fromUtf8(path)) ? 0 : EACCES;
}

int writable(const QByteArray& folder)
{
    return QFileInfo(QString::fromUtf8(folder)).isWritable() ? 0 : EACCES;
}

bool exists(const QByteArray& path)
{
    return QFileInfo::exists(QString::fromUtf8(path));
}
#endif

} // namespace

int runListCommand(const QByteArrayList& args, std::FILE* out, std::FILE* err)
{
    // The parser works on text: each argument goes in with its bytes kept (those that are not UTF-8 as lone
    // surrogates) and comes back to the same bytes.
    QStringList texts{QStringLiteral("quillary-list")};
    for (const QByteArray& a : args)
        texts.append(NativeText::toDisplay(a));
    QCommandLineParser parser;
    const QCommandLineOption shortOption(QStringLiteral("short"));
    const QCommandLineOption yesOption(QStringLiteral("yes"));
    const QCommandLineOption noCatalogueOption(QStringLiteral("no-catalogue"));
    const QCommandLineOption nameOption(QStringLiteral("name"), QString(), QStringLiteral("NAME"));
    const QCommandLineOption outOption(QStringLiteral("out"), QString(), QStringLiteral("DIR"));
    const QCommandLineOption searchOption(QStringLiteral("search"), QString(), QStringLiteral("TEXT"));
    const QCommandLineOption inOption(QStringLiteral("in"), QString(), QStringLiteral("LIST"), QStringLiteral("files"));
    const QCommandLineOption helpOption(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption versionOption(QStringLiteral("version"));
    parser.addOptions({shortOption, yesOption, noCatalogueOption, nameOption, outOption, searchOption, inOption,
                       helpOption, versionOption});
    parser.addPositionalArgument(QStringLiteral("FOLDER"), QString());
    if (!parser.parse(texts)) {
        print(err,
              QStringLiteral("quillary-list: ") + parser.errorText() + QStringLiteral("\nTry 'quillary-list --help'."));
        return BadArguments;
    }
    if (parser.isSet(helpOption)) {
        std::fputs(Usage, out);
        return Written;
    }
    if (parser.isSet(versionOption)) {
        std::fputs("quillary-list " QUILLARY_VERSION "\n", out);
        return Written;
    }
    const QString searchIn = parser.value(inOption);
    if (searchIn != QLatin1String("folders") && searchIn != QLatin1String("files")) {
        std::fputs("quillary-list: --in takes folders or files\n", err);
        return BadArguments;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.isEmpty()) {
        std::fputs("quillary-list: no FOLDER given\nTry 'quillary-list --help'.\n", err);
        return BadArguments;
    }
    if (positional.size() > 1) {
        std::fputs("quillary-list: only one FOLDER may be given\n", err);
        return BadArguments;
    }
    const QByteArray folder = NativeText::fromDisplay(positional.first());
    if (const int e = listable(folder)) {
        if (e == ENOTDIR)
            complain(err, "cannot list", folder, "Not a folder");
        else
            complain(err, "cannot read", folder, std::strerror(e));
        return BadArguments;
    }

    const QByteArray start = absoluteFolder(folder);
    const QString startText = NativeText::toDisplay(start);
    const bool search = parser.isSet(searchOption);
    const bool yes = parser.isSet(yesOption);
    const QString name = parser.isSet(nameOption) ? parser.value(nameOption)
                                                  : NativeText::toDisplay(start.mid(start.lastIndexOf(Separator) + 1));

    // Where the files go, and whether they may go there, is settled before the walk, which can take long.
    CollectionFolder collection;
    if (!search) {
        if (parser.isSet(outOption)) {
            const QByteArray dir = absoluteFolder(NativeText::fromDisplay(parser.value(outOption)));
            int e = makeFolders(dir);
            if (e == 0)
                e = writable(dir);
            if (e != 0) {
                complain(err, "cannot write into", dir, std::strerror(e));
                return SaveFailed;
            }
            collection = CollectionFolder(NativeText::toDisplay(dir));
        } else if (const QString why = collection.refusal(); !why.isEmpty()) {
            print(err, QStringLiteral("quillary-list: will not write into the collection folder: ") + why);
            return SaveFailed;
        }
        // Never a file replaced without --yes, not even one of a half-present set.
        if (!yes) {
            for (const ListingFile::Kind kind : {ListingFile::FoldersWithPaths, ListingFile::Folders,
                                                 ListingFile::FilesWithPaths, ListingFile::Files}) {
                const QString path = collection.filePath(ListingFile::fileName(kind, name));
                if (exists(NativeText::fromDisplay(path))) {
                    print(err, QStringLiteral("quillary-list: '") + path +
                                   QStringLiteral("' exists already; --yes replaces it"));
                    print(err, QStringLiteral("Folder List not saved, recommended to try again."));
                    return Refused;
                }
            }
        }
    }

    WalkOptions options;
    options.flavour = parser.isSet(shortOption) ? ScanResult::Flavour::Short : ScanResult::Flavour::Long;
    QElapsedTimer clock;
    clock.start();
    const std::unique_ptr<ScanResult> result = FolderWalk::run(start, options);
    const qint64 elapsed = clock.elapsed();
    if (result->limitReached())
        print(err, ScanResult::limitMessage());

    if (search) {
        const QString searchText = parser.value(searchOption);
        const auto kind =
            searchIn == QLatin1String("folders") ? SearchResult::Kind::Folders : SearchResult::Kind::Files;
        const SearchResult found =
            ListSearch::run(std::shared_ptr<const ScanResult>(result.get(), [](auto*) {}), kind, searchText);
        if (searchText.isEmpty())
            return Written; // the window clears its results and shows no count
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
        return Written;
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

    CommandLineAnswers answers(name, out, err);
    SystemFileOps ops;
    SaveFlow flow(answers, answers, ops, collection);
    flow.setReplaceExisting(true); // settled above
    const SaveFlow::Outcome outcome = flow.run(SaveFlow::Kind::Set, sources);
    if (outcome.error != RuntimeError::None)
        return SaveFailed;
    if (!parser.isSet(noCatalogueOption)) {
        // The listing stands whatever happens here; a catalogue that cannot be written is only reported.
        QString error;
        if (!ScanRecorder::recordInCollection({result.get(), 0, elapsed, name}, &error))
            print(err, QStringLiteral("quillary-list: the scan was not recorded in the catalogue: ") + error);
    }
    // The listing stands with what could be read; as find and du do, each folder that could not be read is named
    // and the status says the listing is incomplete.
    for (const ScanResult::UnreadableFolder& unreadable : result->unreadableFolders())
        complain(err, "cannot read", unreadable.path, std::strerror(unreadable.error));
    return result->unreadableFolders().empty() ? Written : SomeUnreadable;
}
