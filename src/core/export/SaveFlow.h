// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "common/Answer.h"
#include "export/CollectionFolder.h"
#include "export/ListingWriter.h"

#include <QDate>
#include <QStringList>
#include <functional>

class FileOps;

// What a save asks the user and tells them. A window answers through its message and input boxes; the
// headless lister answers from its options; tests answer from a queue.
class SaveHost
{
public:
    virtual ~SaveHost() = default;
    // An input box with no title and an empty default; Cancel gives the empty text.
    virtual QString inputBox(const QString& prompt) = 0;
    // A message box with the program's title; `style` is the classic number (16 critical, 19 Yes/No/Cancel
    // with critical, 48 exclamation, 64 information, 0 plain OK).
    virtual Answer messageBox(const QString& text, int style) = 0;
    // The Long window's writing label (" Writing files.. ", then the time taken); others ignore it.
    virtual void writingLabel(const QString& caption, bool visible)
    {
        (void)caption;
        (void)visible;
    }
};

// What a save writes from: the result lists of a window and the two header captions.
struct SaveSources
{
    const ScanResult* result = nullptr;
    ScanResult::Flavour flavour = ScanResult::Flavour::Short;
    QString driveCaption; // the drive label's caption, for the SOURCE line
    QString parentFolder; // the scanned folder, for the Parent Folder line
};

// Saving listings: the set of four ("Create Text Files") and the single-list saves, with their questions,
// refusals, reports and error boxes in the order users have always seen them.
class SaveFlow
{
public:
    enum class Kind { Set, SingleFolders, SingleFiles };

    struct Outcome
    {
        QStringList written;  // full names of the files written, in the order written
        int error = 0;        // the run-time error that stopped the save, or 0
        bool refused = false; // the user declined to replace
    };

    SaveFlow(SaveHost& host, FileOps& ops, CollectionFolder folder = CollectionFolder());

    // The day the Date line names; today unless a test says otherwise.
    void setClock(std::function<QDate()> today) { m_today = std::move(today); }

    Outcome run(Kind kind, const SaveSources& sources);

    static QString namePrompt() { return QStringLiteral("Write a valid file name:"); }

private:
    struct Planned
    {
        int number; // the classic file number: 1..4, 2 for the single folders file, 3 for the single files file
        QString path;
        ListingFile file;
    };

    void reportError(int error, Outcome& outcome);
    bool writeAll(const std::vector<Planned>& files, Outcome& outcome);
    Answer askReplace(const QString& path);

    SaveHost& m_host;
    FileOps& m_ops;
    CollectionFolder m_folder;
    std::function<QDate()> m_today;
};
