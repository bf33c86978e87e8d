// SPDX-License-Identifier: GPL-3.0-or-later

#include "SaveActions.h"

#include "BrowserWindow.h"
#include "common/NativeText.h"
#include "export/CollectionFolder.h"
#include "export/FileOps.h"
#include "platform/InputService.h"
#include "platform/MessageService.h"
#include "platform/ShellService.h"
#include "platform/Twips.h"

#include <QEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>

SaveActions::SaveActions(BrowserWindow& window, const Services& services)
    : QObject(&window), m_window(window), m_services(services)
{
    const BrowserControls& ui = window.controls();
    // Only the grid window times the writing of a set, in a status label between the timing label and the
    // collection folder's label.
    if (window.flavour().walk == ScanResult::Flavour::Long) {
        m_label12 = new QLabel(ui.pathFrame);
        m_label12->setObjectName(QStringLiteral("Label12"));
        m_label12->setAlignment(Qt::AlignCenter);
        m_label12->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        Twips::place(m_label12, QRect(5775, 1455, 930, 195));
        m_label12->hide();
    }
    connect(ui.CreateTextFiles, &QPushButton::clicked, this, [this] { CreateTextFiles_Click(); });
    for (QLabel* label : ui.Label4)
        label->installEventFilter(this);
}

bool SaveActions::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonRelease) {
        auto* mouse = static_cast<QMouseEvent*>(event);
        const auto& labels = m_window.controls().Label4;
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
    const BrowserControls& ui = m_window.controls();
    const std::shared_ptr<const ScanResult> result = m_window.scanResult();
    SystemFileOps ops;
    SaveFlow flow(*m_services.messages, *m_services.input, ops, CollectionFolder());
    // The save flow's timing of a set goes to Label12.
    if (QLabel* label = m_label12)
        flow.setWritingLabel([label](const QString& caption, bool visible) {
            label->setText(caption);
            label->setVisible(visible);
        });
    // The folder the lists came from, whatever the tree has done since.
    const QString parent = result ? NativeText::toDisplay(result->startPath()) : ui.Label2->text();
    flow.run(kind, SaveSources{result.get(), m_window.flavour().walk, ui.Label4[3]->text(), parent});
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
