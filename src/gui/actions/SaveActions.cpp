// SPDX-License-Identifier: GPL-3.0-or-later

#include "SaveActions.h"

#include "common/NativeText.h"
#include "export/CollectionFolder.h"
#include "export/FileOps.h"
#include "panes/ResultPanes.h"
#include "platform/InputService.h"
#include "platform/MessageService.h"
#include "platform/NoticeService.h"
#include "platform/ShellService.h"

#include <QEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>

SaveActions::SaveActions(const BrowserBehaviour& behaviour, const NavigationControls& navigation,
                         const StatusControls& status, const ResultPanes& panes, const Services& services,
                         QObject* parent)
    : QObject(parent), m_behaviour(behaviour), m_navigation(navigation), m_status(status), m_panes(panes),
      m_services(services)
{
    connect(navigation.CreateTextFiles, &QPushButton::clicked, this, [this] { CreateTextFiles_Click(); });
    for (QLabel* label : status.Label4)
        label->installEventFilter(this);
}

bool SaveActions::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonRelease) {
        auto* mouse = static_cast<QMouseEvent*>(event);
        const auto& labels = m_status.Label4;
        for (int i = 0; i < int(labels.size()); ++i) {
            if (watched == labels[i] && mouse->button() == Qt::LeftButton &&
                labels[i]->rect().contains(mouse->position().toPoint())) {
                Label4_Click(i);
                return true;
            }
        }
    }
    return QObject::eventFilter(watched, event);
}

void SaveActions::CreateTextFiles_Click()
{
    save(SaveFlow::Kind::Set);
}

void SaveActions::saveFolderList()
{
    save(SaveFlow::Kind::SingleFolders);
}

void SaveActions::saveFileList()
{
    save(SaveFlow::Kind::SingleFiles);
}

void SaveActions::save(SaveFlow::Kind kind)
{
    const std::shared_ptr<const ScanResult> result = m_panes.result();
    SystemFileOps ops;
    SaveFlow flow(*m_services.messages, *m_services.input, ops, CollectionFolder());
    if (m_behaviour.timesWriting) {
        QLabel* label = m_status.Label12;
        flow.setWritingLabel([label](const QString& caption, bool visible) {
            label->setText(caption);
            label->setVisible(visible);
        });
    }
    // The folder the lists came from, whatever the tree has done since.
    const QString parent = result ? NativeText::toDisplay(result->startPath()) : m_navigation.Label2->text();
    const SaveFlow::Outcome outcome =
        flow.run(kind, SaveSources{result.get(), m_behaviour.walk, m_status.Label4[3]->text(), parent});
    if (kind == SaveFlow::Kind::Set && result && outcome.error == RuntimeError::None && !outcome.refused)
        record(result, outcome.name);
}

void SaveActions::record(std::shared_ptr<const ScanResult> result, const QString& listingName)
{
    // The listing files stand whatever happens here; a catalogue that cannot be written is only noticed. The
    // queue is destroyed before the rest of this object, so the failure is posted to a live receiver, and Qt
    // drops the posted call if this object goes before it runs.
    m_recordings.add(std::move(result), listingName, [this](const QString& reason) {
        QMetaObject::invokeMethod(
            this,
            [this, reason] {
                if (m_services.notices)
                    m_services.notices->notice(
                        QStringLiteral("The listing files are saved, but the scan was not recorded in the "
                                       "catalogue: ") +
                        reason);
            },
            Qt::QueuedConnection);
    });
}

void SaveActions::Label4_Click(int Index)
{
    if (Index != 1)
        return;
    const CollectionFolder collection;
    const Answer answer = m_services.messages->message(QStringLiteral("Listed files are saved in the folder ") +
                                                           collection.pathWithSeparator() +
                                                           QStringLiteral(". Would you like to open this Folder?"),
                                                       MessageStyle::YesNoInformation);
    if (answer == Answer::Yes)
        m_services.shell->open(collection.path());
}
