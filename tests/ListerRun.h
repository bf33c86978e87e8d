// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QProcess>
#include <QStringList>

// A command line's words, split at spaces: arguments that hold none written as one text.
inline QStringList words(const char* line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

// One run of quillary-list (QUILLARY_LIST), or of another program, with HOME pointed at `home` (unset when `home` is
// null), optionally behind `prefix` (a shell that sets a limit or passes bytes that are not UTF-8, a switch to another
// user).
struct ListerRun
{
    int code = -1;
    QProcess::ExitStatus status = QProcess::CrashExit;
    QByteArray out, err;

    ListerRun(const QString& home, const QStringList& args, const QStringList& prefix = {})
    {
        run(prefix + QStringList{QStringLiteral(QUILLARY_LIST)} + args, home);
    }
    // Another of the programs, `program`, run the same way.
    static ListerRun of(const QString& program, const QString& home, const QStringList& args)
    {
        ListerRun r;
        r.run(QStringList{program} + args, home);
        return r;
    }

private:
    ListerRun() = default;
    void run(const QStringList& all, const QString& home)
    {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        if (home.isNull())
            env.remove(QStringLiteral("HOME"));
        else
            env.insert(QStringLiteral("HOME"), home);
        p.setProcessEnvironment(env);
        p.start(all.first(), all.mid(1));
        if (!p.waitForFinished(120000))
            return;
        status = p.exitStatus();
        code = status == QProcess::NormalExit ? p.exitCode() : -1;
        out = p.readAllStandardOutput();
        err = p.readAllStandardError();
    }
};
