// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QProcess>
#include <QStringList>

// One run of quillary-list (QUILLARY_LIST) with HOME pointed at `home` (unset when `home` is null), optionally behind
// `prefix` (a shell that sets a limit or passes bytes that are not UTF-8, a switch to another user).
struct ListerRun
{
    int code = -1;
    QProcess::ExitStatus status = QProcess::CrashExit;
    QByteArray out, err;

    ListerRun(const QString& home, const QStringList& args, const QStringList& prefix = {})
    {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        if (home.isNull())
            env.remove(QStringLiteral("HOME"));
        else
            env.insert(QStringLiteral("HOME"), home);
        p.setProcessEnvironment(env);
        const QStringList all = prefix + QStringList{QStringLiteral(QUILLARY_LIST)} + args;
        p.start(all.first(), all.mid(1));
        if (!p.waitForFinished(60000))
            return;
        code = p.exitCode();
        status = p.exitStatus();
        out = p.readAllStandardOutput();
        err = p.readAllStandardError();
    }
};
