// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "QtNoticeService.h"
#include "platform/ShellService.h"

#include <QObject>
#include <functional>

// Opens through the desktop's opener; locates with the platform's file manager (Explorer's /select, the
// freedesktop FileManager1 interface, Finder's open -R).
//
// On Windows the shell shows its own dialogue when nothing can open an item; a Linux desktop shows nothing.
// So here, where the opener fails or is missing, or no file manager answers a locate and the folder cannot be
// opened either, one notice says which item and why. Nothing waits: the opener runs and the file manager is
// asked in the background, and the notice does not hold up the window.
class DesktopShellService : public QObject, public ShellService
{
    Q_OBJECT
public:
    struct Setup
    {
        QString opener = QStringLiteral("xdg-open");
        QString fileManager = QStringLiteral("org.freedesktop.FileManager1"); // its D-Bus service
    };
    DesktopShellService();
    explicit DesktopShellService(const Setup& setup);

    bool open(const QString& path) override;
    bool locate(const QString& path) override;

private:
    // Runs the opener on `target`; on failure `failed` gets the reason.
    void runOpener(const QString& target, std::function<void(const QString& reason)> failed);
    void openContainingFolder(const QString& path);
    void notice(const QString& text);

    Setup m_setup;
    QtNoticeService m_notices{QStringLiteral("ShellNotice")};
};
