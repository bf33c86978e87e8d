// SPDX-License-Identifier: GPL-3.0-or-later

#include "DesktopShellService.h"

#include "common/NativeText.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

#ifdef QUILLARY_HAVE_DBUS
#include <QDBusConnection>
#include <QDBusMessage>
#endif

bool DesktopShellService::open(const QString& path)
{
    return QDesktopServices::openUrl(NativeText::fileUrl(path));
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
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{NativeText::fileUrl(path).toString(QUrl::FullyEncoded)} << QString();
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, 5000);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return true;
#endif
    // No file manager answers on the bus (a bare window manager, a container): show the containing folder.
    const QFileInfo info(path);
    return QDesktopServices::openUrl(
        NativeText::fileUrl(info.isDir() && path.endsWith(QLatin1Char('/')) ? path : info.path()));
#endif
}
