// SPDX-License-Identifier: GPL-3.0-or-later

#include "SaveFlow.h"

#include "common/NumberText.h"
#include "common/RuntimeError.h"
#include "export/FileOps.h"
#include "platform/InputService.h"
#include "platform/MessageService.h"

#include <QElapsedTimer>
#include <algorithm>
#include <atomic>
#include <thread>

namespace {

const QString FolderRefusal = QStringLiteral("Folder List not saved, recommended to try again.");
const QString FileRefusal = QStringLiteral("File List not saved, recommended to try again.");

QString countTitle(const char* prefix, qint64 count)
{
    return QLatin1String(prefix) + QString::number(count) + QStringLiteral("):");
}

} // namespace

SaveFlow::SaveFlow(MessageService& messages, InputService& input, FileOps& ops, CollectionFolder folder)
    : m_messages(messages), m_input(input), m_ops(ops), m_folder(std::move(folder)),
      m_today([] { return QDate::currentDate(); })
{
}

Answer SaveFlow::askReplace(const QString& path)
{
    return m_messages.message(QStringLiteral("You are already having a file with the name ") + path +
                                  QStringLiteral(" in the default folder.\r\n"
                                                 "Would you still like to save by and replace the original file?"),
                              MessageStyle::YesNoCancelCritical);
}

// The one error handler of a save, looking at the number in a fixed order: a bad name gets its own box and
// then the numbered box as well; an access error gets its advice; anything else its number and description.
void SaveFlow::reportError(RuntimeError::Number error, Outcome& outcome, const QString& reason)
{
    outcome.error = error;
    if (error == RuntimeError::PathNotFound)
        m_messages.message(QStringLiteral("Invalid file name, choose different file name."), MessageStyle::Critical);
    if (error == RuntimeError::PathFileAccess) {
        m_messages.message(
            QStringLiteral("Change the SAVE Location. Access denied to Save in the application location."),
            MessageStyle::Exclamation);
        return;
    }
    QString description = RuntimeError::description(error);
    if (!reason.isEmpty())
        description += QStringLiteral(" (") + reason + QLatin1Char(')');
    m_messages.message(QString::number(error) + QStringLiteral("\r\n") + description, MessageStyle::Plain);
}

void SaveFlow::writingLabel(const QString& caption, bool visible)
{
    if (m_writingLabel)
        m_writingLabel(caption, visible);
}

bool SaveFlow::writeAll(const std::vector<Planned>& files, Outcome& outcome)
{
    // The files are produced side by side, the largest first, then put in place one after another in their
    // order: after a failure the user finds exactly what writing them one by one would have left.
    std::vector<FileOps::Pending> pending(files.size());
    std::vector<std::size_t> claimOrder(files.size());
    for (std::size_t k = 0; k < files.size(); ++k)
        claimOrder[k] = k;
    std::stable_sort(claimOrder.begin(), claimOrder.end(), [&](std::size_t a, std::size_t b) {
        return files[a].file.list == ScanResult::List::FilePaths && files[b].file.list != ScanResult::List::FilePaths;
    });
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        for (std::size_t k; (k = next.fetch_add(1)) < files.size();) {
            const Planned& p = files[claimOrder[k]];
            pending[claimOrder[k]] = m_ops.prepare(CollectionFolder::native(p.path),
                                                   [&](FileOps::Output& out) { return p.file.writeTo(out); });
        }
    };
    const std::size_t helpers =
        std::min<std::size_t>(files.size(), std::max(1u, std::thread::hardware_concurrency())) - 1;
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < helpers; ++t)
        threads.emplace_back(work);
    work();
    for (std::thread& t : threads)
        t.join();

    for (std::size_t k = 0; k < files.size(); ++k) {
        const RuntimeError::Number error = m_ops.commit(pending[k]);
        if (error != RuntimeError::None) {
            for (std::size_t rest = k; rest < files.size(); ++rest)
                m_ops.discard(pending[rest]);
            reportError(error, outcome);
            return false;
        }
        outcome.written.append(files[k].path);
    }
    return true;
}

SaveFlow::Outcome SaveFlow::run(Kind kind, const SaveSources& src)
{
    Outcome outcome;
    // What a Long save (the grid window's, and the lister's unless --short) does otherwise than a Short one: it
    // times the writing of a set (on the writing label and in the report), leaves out the empty line after the
    // headers, and counts the rows of the folder-name grid for the single folders file.
    const bool longSave = src.flavour == ScanResult::Flavour::Long;
    const bool timesWriting = longSave;
    const bool extraEmptyLine = !longSave;
    const bool countsFolderNameRows = longSave;
    const bool isSet = kind == Kind::Set;

    if (const RuntimeError::Number error = m_folder.ensureExists(m_ops)) {
        reportError(error, outcome, m_folder.refusal());
        return outcome;
    }
    m_ops.removeStale(m_folder.nativePath());

    using L = ScanResult::List;
    const ScanResult* r = src.result;
    const auto count = [&](L list) { return r ? r->count(list) : qint64(0); };
    const QString folderPathsTitle = countTitle("LIST OF FOLDERS WITH THEIR PATHS (", count(L::FolderPaths));
    const QString foldersTitle = countTitle("LIST OF ALL FOLDERS & SUB FOLDERS (", count(L::FolderNames));
    const QString filesTitle = countTitle("LIST OF ALL FILES (", count(L::FilePaths));
    ListingFile base;
    base.sourceLine = QStringLiteral("SOURCE:") + src.driveCaption;
    base.parentLine = QStringLiteral("Parent Folder: ") + src.parentFolder;
    base.result = r;
    base.extraEmptyLine = extraEmptyLine;

    if (isSet && timesWriting)
        writingLabel(QStringLiteral(" Writing files.. "), true);

    const QString name = m_input.inputBox(namePrompt());
    outcome.name = name;
    base.dateLine = ListingFile::dateLineFor(m_today());

    std::vector<Planned> plan;
    const auto add = [&](int number, ListingFile::Kind fileKind, const QString& title, L list, qint64 rows) {
        ListingFile f = base;
        f.title = title;
        f.list = list;
        f.rows = rows;
        plan.push_back({number, m_folder.filePath(ListingFile::fileName(fileKind, name)), f});
    };
    switch (kind) {
    case Kind::Set:
        // Written in this order: 1, 2, 4, 3.
        add(1, ListingFile::FoldersWithPaths, folderPathsTitle, L::FolderPaths, count(L::FolderPaths));
        add(2, ListingFile::Folders, foldersTitle, L::FolderNames, count(L::FolderNames));
        add(4, ListingFile::Files, filesTitle, L::FileNames, count(L::FileNames));
        add(3, ListingFile::FilesWithPaths, filesTitle, L::FilePaths, count(L::FilePaths));
        break;
    case Kind::SingleFolders:
        // The grid window counts the rows of its folder-name grid while reading its folder-path grid; both
        // hold one row per folder.
        add(2, ListingFile::SingleFolders, folderPathsTitle, L::FolderPaths,
            countsFolderNameRows ? count(L::FolderNames) : count(L::FolderPaths));
        break;
    case Kind::SingleFiles:
        add(3, ListingFile::FilesWithPaths, filesTitle, L::FilePaths, count(L::FilePaths));
        break;
    }

    // The existence test opens the files in number order and leaves each open until all are open. A missing
    // file ends the test with the earlier ones still open; writing then meets file 1 still open ("file already
    // open") when the first file existed and a later one did not.
    std::vector<const Planned*> byNumber;
    for (const Planned& p : plan)
        byNumber.push_back(&p);
    std::sort(byNumber.begin(), byNumber.end(), [](auto* a, auto* b) { return a->number < b->number; });
    bool allExist = !m_replaceExisting; // the lister settles replacing before it walks, and is asked nothing
    int leftOpen = 0;
    for (const Planned* p : byNumber) {
        if (m_replaceExisting)
            break;
        const RuntimeError::Number error = m_ops.probe(CollectionFolder::native(p->path));
        if (error == RuntimeError::FileNotFound) {
            allExist = false;
            break;
        }
        if (error != RuntimeError::None) {
            reportError(error, outcome);
            return outcome;
        }
        ++leftOpen;
    }

    const QString refusal = kind == Kind::SingleFiles ? FileRefusal : FolderRefusal;
    if (allExist) {
        if (askReplace(byNumber.front()->path) != Answer::Yes) {
            m_messages.message(refusal, MessageStyle::Exclamation);
            outcome.refused = true;
            if (isSet && timesWriting)
                writingLabel(QString(), false);
            return outcome;
        }
    } else if (leftOpen > 0) {
        // Only a set of four can get here: a single save opens one file.
        if (askReplace(byNumber.front()->path) == Answer::Yes) {
            reportError(RuntimeError::FileAlreadyOpen, outcome);
            return outcome;
        }
        m_messages.message(refusal, MessageStyle::Exclamation);
        // The files are closed and the writing goes ahead all the same.
    }

    QElapsedTimer clock;
    clock.start();
    if (!writeAll(plan, outcome))
        return outcome;

    if (!isSet) {
        m_messages.message(QStringLiteral("Following Text File created & saved successfully:\t\t\r\n\r\n") +
                               plan.front().path,
                           MessageStyle::Information);
        return outcome;
    }
    QString report = QStringLiteral("Following 4 Text Files created & saved successfully:\t\t\r\n\r\n") + plan[0].path +
                     QStringLiteral("\r\n") + plan[1].path + QStringLiteral("\r\n") + plan[3].path +
                     QStringLiteral("\r\n") + plan[2].path;
    if (timesWriting) {
        const QString caption = QLatin1Char(' ') + NumberText::seconds(clock.elapsed()) + QStringLiteral(" sec ");
        writingLabel(caption, true);
        report += QStringLiteral("\r\n\r\nFiles created in: ") + caption;
        m_messages.message(report, MessageStyle::Information);
        writingLabel(caption, false);
    } else {
        m_messages.message(report, MessageStyle::Information);
    }
    return outcome;
}
