// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "common/Answer.h"
#include "common/RuntimeError.h"
#include "export/CollectionFolder.h"
#include "export/ListingWriter.h"

#include <QDate>
#include <QStringList>
#include <functional>

class FileOps;
class InputService;
class MessageService;

// What a save writes from: the result lists of a window and the two header captions.
struct SaveSources
{
    const ScanResult* result = nullptr;
    ScanResult::Flavour flavour = ScanResult::Flavour::Short;
    QString driveCaption; // the drive label's caption, for the SOURCE line
    QString parentFolder; // the scanned folder, for the Parent Folder line
};

// Saving listings: the set of four ("Create Text Files") and the single-list saves, with their questions,
// refusals, reports and error boxes in the order users have always seen them. A window answers through its
// message and input boxes; the headless lister answers from its options; tests answer from a queue.
class SaveFlow
{
public:
    enum class Kind { Set, SingleFolders, SingleFiles };

    struct Outcome
    {
        QStringList written;                             // full names of the files written, in the order written
        RuntimeError::Number error = RuntimeError::None; // what stopped the save
        bool refused = false;                            // the user declined to replace
        QString name;                                    // the NAME the files were given
    };

    SaveFlow(MessageService& messages, InputService& input, FileOps& ops, CollectionFolder folder = CollectionFolder());

    // Where the grid window shows the writing of a set (" Writing files.. ", then the time taken); nowhere
    // unless set.
    using WritingLabel = std::function<void(const QString& caption, bool visible)>;
    void setWritingLabel(WritingLabel show) { m_writingLabel = std::move(show); }

    // The day the Date line names; today unless a test says otherwise.
    void setClock(std::function<QDate()> today) { m_today = std::move(today); }

    // No existence test and no question: every file is written, replacing what is there. For the headless
    // lister, which refuses or replaces existing files before it walks.
    void setReplaceExisting(bool replace) { m_replaceExisting = replace; }

    Outcome run(Kind kind, const SaveSources& sources);

    static QString namePrompt() { return QStringLiteral("Write a valid file name:"); }

private:
    struct Planned
    {
        int number; // the classic file number: 1..4, 2 for the single folders file, 3 for the single files file
        QString path;
        ListingFile file;
    };

    // `reason` follows the error's description when the collection folder itself was refused.
    void reportError(RuntimeError::Number error, Outcome& outcome, const QString& reason = {});
    void writingLabel(const QString& caption, bool visible);
    bool writeAll(const std::vector<Planned>& files, Outcome& outcome);
    Answer askReplace(const QString& path);

    MessageService& m_messages;
    InputService& m_input;
    FileOps& m_ops;
    CollectionFolder m_folder;
    std::function<QDate()> m_today;
    WritingLabel m_writingLabel;
    bool m_replaceExisting = false;
};
