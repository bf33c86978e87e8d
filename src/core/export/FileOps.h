// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "common/RuntimeError.h"

#include <QByteArray>
#include <functional>

// The file operations a listing save needs, each answering with a run-time error (None for success).
// An interface so tests can put a failing disk or a locked file under the save flow.
class FileOps
{
public:
    virtual ~FileOps() = default;

    // Receives the bytes of a file being written; false once writing has failed.
    class Output
    {
    public:
        virtual ~Output() = default;
        virtual bool write(const char* data, qint64 size) = 0;
    };

    // Makes sure a folder exists at `path`; something already there under that name counts as present.
    virtual RuntimeError::Number ensureDirectory(const QByteArray& path) = 0;

    // Opens `path` for reading and closes it again: 0 when it exists and can be read, 53 when it does not
    // exist, 76 when a folder on its way does not.
    virtual RuntimeError::Number probe(const QByteArray& path) = 0;

    // A file written beside its target, waiting to replace it.
    struct Pending
    {
        QByteArray path;
        QByteArray temp;
        RuntimeError::Number error = RuntimeError::None; // what stopped the writing
        int fd = -1; // the written file, held open (and locked) until commit or discard
    };

    // Writes what `produce` gives into a new file beside `path`; `path` itself is not touched yet. May run on
    // several threads at once.
    virtual Pending prepare(const QByteArray& path, const std::function<bool(Output&)>& produce) = 0;
    // Puts a prepared file in place of its target, replacing any file there in one step.
    virtual RuntimeError::Number commit(Pending& pending) = 0;
    // Throws a prepared file away.
    virtual void discard(Pending& pending) = 0;

    // Removes what earlier saves into `folder`, killed part-way, left behind; never a file a running save holds.
    virtual void removeStale(const QByteArray& folder) { (void)folder; }

    // Writes `path` anew: a failure never leaves a half-written file where a good one stood.
    RuntimeError::Number writeFile(const QByteArray& path, const std::function<bool(Output&)>& produce);
};

class SystemFileOps : public FileOps
{
public:
    RuntimeError::Number ensureDirectory(const QByteArray& path) override;
    RuntimeError::Number probe(const QByteArray& path) override;
    Pending prepare(const QByteArray& path, const std::function<bool(Output&)>& produce) override;
    RuntimeError::Number commit(Pending& pending) override;
    void discard(Pending& pending) override;
#ifndef _WIN32
    void removeStale(const QByteArray& folder) override;
#endif
};
