// SPDX-License-Identifier: GPL-3.0-or-later

#include "CopyActions.h"

#include "UnhandledError.h"
#include "browser/BrowserWindow.h"
#include "browser/ResultPanes.h"
#include "common/NativeText.h"
#include "export/CollectionFolder.h"
#include "export/FileOps.h"
#include "export/ItemCopy.h"
#include "platform/CopyProgressService.h"
#include "platform/MessageService.h"

#include <QLineEdit>

namespace {

// The flavour's texts carry the item's name as %1; one of them has no place for it.
QString withName(QString text, const QString& name)
{
    return text.replace(QStringLiteral("%1"), name);
}

} // namespace

CopyActions::CopyActions(const BrowserWindow& window, const Services& services) : m_window(window), m_services(services)
{
}

void CopyActions::copySelectedFile()
{
    const BrowserFlavour& flavour = m_window.flavour();
    const ResultPanes& panes = m_window.panes();
    QString source, bareName;
    if (flavour.menusReadCurrentCells) {
        source = m_window.controls().Text2->text();
        bareName = panes.text(4, panes.currentRow(4));
    } else {
        const int index = panes.currentRow(3);
        source = panes.text(3, index);
        bareName = panes.text(4, index);
    }
    const CollectionFolder collection;
    // No home folder, or a ~/Quillbox that is not the user's own: as if the folder were missing.
    if (const RuntimeError::Number error = collection.check()) {
        failUnhandled(m_services, error);
        return;
    }
    const QByteArray target = NativeText::fromDisplay(collection.filePath(bareName));
    const QString name = bareName.toUpper();

    QString report;
    if (ItemCopy::fileExists(target)) {
        const QString question = withName(collection.inText(flavour.replaceFileQuestion), name);
        if (m_services.messages->message(question, MessageStyle::YesNoExclamation) != Answer::Yes)
            return;
        // The old file is not deleted first: the copy replaces it only once complete, so a failing copy leaves
        // the user's file as it was.
        report = QStringLiteral("File ") + name +
                 collection.inText(QStringLiteral(" replaced successfully in C:\\QUILLBOX."));
    } else {
        report =
            QStringLiteral("File ") + name + collection.inText(QStringLiteral(" saved successfully in C:\\QUILLBOX."));
    }
    if (const RuntimeError::Number error = ItemCopy::copyFile(NativeText::fromDisplay(source), target)) {
        failUnhandled(m_services, error);
        return;
    }
    m_services.messages->message(report, MessageStyle::Information);
}

void CopyActions::CopyFolders()
{
    const QString source = m_window.controls().Text1->text();
    const CollectionFolder collection;
    // The copy makes its folder under the collection folder, which may not be there yet; the outcome is the
    // copy's own to report either way.
    SystemFileOps ops;
    collection.ensureExists(ops);

    CopyProgressService& window = *m_services.copyProgress;
    ItemCopy::TreeCallbacks callbacks;
    callbacks.confirmReplace = [&](const QByteArray& target) {
        return window.confirmReplace(NativeText::toDisplay(target));
    };
    callbacks.progress = [&](qint64 done, qint64 total, const QByteArray& current) {
        return window.progress(done, total, NativeText::toDisplay(current));
    };
    callbacks.problem = [&](const QByteArray& path, RuntimeError::Number error) {
        window.problem(NativeText::toDisplay(path), error);
    };
    if (const RuntimeError::Number refused = collection.check())
        window.problem(collection.path(), refused); // nothing is written into a folder that is not the user's
    else
        ItemCopy::copyTree(NativeText::fromDisplay(source), collection.nativePath(), callbacks);
    window.finish();

    const ResultPanes& panes = m_window.panes();
    const QString folder = panes.text(2, panes.currentRow(2)).toUpper();
    m_services.messages->message(withName(collection.inText(m_window.flavour().folderCopiedReport), folder),
                                 MessageStyle::Information);
}
