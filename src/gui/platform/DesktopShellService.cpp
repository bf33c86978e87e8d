// SPDX-License-Identifier: GPL-3.0-or-later

#include "DesktopShellService.h"

#include "common/NativeText.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

#ifdef QUILLARY_HAVE_DBUS
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#endif

namespace {

QString quoted(const QString& path)
{
    return QLatin1Char('"') + path + QLatin1Char('"');
}

// xdg-open's exit codes, in words.
QString openerReason(const QString& opener, QProcess::ProcessError error, int exitCode)
{
    if (error == QProcess::FailedToStart)
        return opener + QStringLiteral(", which starts the program for it, is not installed.");
    switch (exitCode) {
    case 2:
        return QStringLiteral("It does not exist.");
    case 3:
        return QStringLiteral("No program that opens it is installed.");
    default:
        return QStringLiteral("The program that should open it failed (") + opener + QStringLiteral(" ended with ") +
               QString::number(exitCode) + QStringLiteral(").");
    }
}

} // namespace

DesktopShellService::DesktopShellService() : DesktopShellService(Setup{}) {}

DesktopShellService::DesktopShellService(const Setup& setup) : m_setup(setup) {}

void DesktopShellService::notice(const QString& text)
{
    m_notices.notice(text);
}

void DesktopShellService::runOpener(const QString& target, std::function<void(const QString& reason)> failed)
{
    // The opener may stay as long as the program it started (xdg-open waits for it on a bare desktop), so it
    // has no parent: a process still running when Quillary ends is left running, not killed with it.
    auto* process = new QProcess;
    process->setProgram(m_setup.opener);
    // A file URL carries the path's own bytes, percent-encoded, whatever the name is made of.
    process->setArguments({NativeText::fileUrl(target).toString(QUrl::FullyEncoded)});
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    const QString opener = m_setup.opener;
    connect(process, &QProcess::errorOccurred, this, [process, opener, failed](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        failed(openerReason(opener, error, 0));
        process->deleteLater();
    });
    connect(process, &QProcess::finished, this, [process, opener, failed](int exitCode, QProcess::ExitStatus status) {
        if (status != QProcess::NormalExit || exitCode != 0)
            failed(openerReason(opener, QProcess::UnknownError, status == QProcess::NormalExit ? exitCode : -1));
        process->deleteLater();
    });
    process->start();
}

bool DesktopShellService::open(const QString& path)
{
#if defined(Q_OS_WIN) || defined(Q_OS_MACOS)
    // The system's own shell reports what it cannot open.
    return QDesktopServices::openUrl(NativeText::fileUrl(path));
#else
    runOpener(path, [this, path](const QString& reason) {
        notice(QStringLiteral("Cannot open ") + quoted(path) + QStringLiteral(".\n\n") + reason);
    });
    return true;
#endif
}

void DesktopShellService::openContainingFolder(const QString& path)
{
    // A folder given with its separator is shown itself; anything else in the folder that holds it.
    const QString folder = path.endsWith(QLatin1Char('/')) ? path : QFileInfo(path).path();
    runOpener(folder, [this, path](const QString& reason) {
        notice(QStringLiteral("Cannot show ") + quoted(path) +
               QStringLiteral(".\n\nNo file manager answers, and its folder could not be opened: ") + reason);
    });
}

bool DesktopShellService::locate(const QString& path)
{
#if defined(Q_OS_WIN)
    return QProcess::startDetached(QStringLiteral("explorer"),
                                   {QStringLiteral("/select,") + QDir::toNativeSeparators(path)});
#elif defined(Q_OS_MACOS)
    return QProcess::startDetached(QStringLiteral("open"), {QStringLiteral("-R"), path});
#else
#ifdef QUILLARY_HAVE_DBUS
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openContainingFolder(path);
        return true;
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(m_setup.fileManager, QStringLiteral("/org/freedesktop/FileManager1"),
                                       QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{NativeText::fileUrl(path).toString(QUrl::FullyEncoded)} << QString();
    // The answer comes later; only a failed call falls back to the folder, so a slow file manager that does
    // answer is not joined by a second window.
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, 5000), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, path](QDBusPendingCallWatcher* done) {
        done->deleteLater();
        if (done->isError())
            openContainingFolder(path);
    });
#else
    // No file manager can be asked: show the containing folder.
    openContainingFolder(path);
#endif
    return true;
#endif
}
