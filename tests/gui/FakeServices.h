// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/AdminCheck.h"
#include "platform/CopyProgressService.h"
#include "platform/InputService.h"
#include "platform/MediaPlayer.h"
#include "platform/MessageService.h"
#include "platform/NoticeService.h"
#include "platform/ProgramEnd.h"
#include "platform/Services.h"
#include "platform/ShellService.h"
#include "volumes/VolumeService.h"

#include <QList>
#include <QStringList>
#include <deque>
#include <functional>

// Services that record what they were asked and answer from queues held per instance.
template <typename T> T takeFront(std::deque<T>& queue, T otherwise)
{
    if (!queue.empty()) {
        otherwise = queue.front();
        queue.pop_front();
    }
    return otherwise;
}

struct FakeMessages : MessageService
{
    struct Call
    {
        QString text;
        int style; // the classic style number
        QString title;
    };
    QList<Call> calls;
    std::deque<Answer> answers;      // Yes for a question, Ok otherwise, when empty
    std::function<void()> onMessage; // runs while the box would be up

    Answer message(const QString& text, MessageStyle style, const QString& title) override
    {
        calls.append({text, style.classic(), title});
        if (onMessage)
            onMessage();
        return takeFront(answers, style.asks() ? Answer::Yes : Answer::Ok);
    }
    // Each box as "style|text", for comparing a whole exchange at once.
    QStringList texts() const
    {
        QStringList out;
        for (const Call& call : calls)
            out.append(QString::number(call.style) + QLatin1Char('|') + call.text);
        return out;
    }
};

struct FakeInput : InputService
{
    std::deque<QString> answers;
    QString inputBox(const QString&, const QString&, const QString&) override { return takeFront(answers, QString()); }
};

struct FakeAdmin : AdminCheck
{
    bool admin = true;
    bool isUserAnAdmin() const override { return admin; }
};

struct FakeVolumes : VolumeService
{
    QList<Volume> list;
    QList<Volume> volumes() const override { return list; }
    Volume volumeOf(const QString& path) const override
    {
        Volume best;
        for (const Volume& v : list) {
            if ((path == v.root || path.startsWith(v.root + QLatin1Char('/'))) && v.root.size() > best.root.size())
                best = v;
        }
        return best;
    }
};

struct FakeShell : ShellService
{
    QStringList opened, located;
    bool open(const QString& path) override
    {
        opened.append(path);
        return true;
    }
    bool locate(const QString& path) override
    {
        located.append(path);
        return true;
    }
};

struct FakePlayer : MediaPlayer
{
    QStringList urls;
    int closes = 0;
    void setUrl(const QString& path) override { urls.append(path); }
    void close() override { ++closes; }
};

struct FakeProgramEnd : ProgramEnd
{
    int count = 0;
    void end() override { ++count; }
    bool ended() const override { return count > 0; }
};

struct FakeCopyProgress : CopyProgressService
{
    QStringList asked, problems;
    std::deque<ItemCopy::Reply> replies; // Yes when empty
    int finishes = 0;

    bool progress(qint64, qint64, const QString&) override { return true; }
    ItemCopy::Reply confirmReplace(const QString& target) override
    {
        asked.append(target);
        return takeFront(replies, ItemCopy::Reply::Yes);
    }
    void problem(const QString& path, RuntimeError::Number) override { problems.append(path); }
    void finish() override { ++finishes; }
};

struct FakeNotices : NoticeService
{
    QStringList shown;
    void notice(const QString& text) override { shown.append(text); }
};

struct FakeServices
{
    FakeMessages messages;
    FakeInput input;
    FakeAdmin admin;
    FakeVolumes volumes;
    FakeShell shell;
    FakePlayer player;
    FakeProgramEnd programEnd;
    FakeCopyProgress copyProgress;
    FakeNotices notices;

    Services services()
    {
        return {&messages, &input, &admin, &volumes, &shell, &player, &programEnd, &copyProgress, &notices};
    }
    // Forgets what was asked and queued; the windows keep their pointers, the answers to admin and volumes stay.
    void reset()
    {
        messages = FakeMessages();
        input = FakeInput();
        shell = FakeShell();
        player = FakePlayer();
        programEnd = FakeProgramEnd();
        copyProgress = FakeCopyProgress();
        notices = FakeNotices();
    }
};
