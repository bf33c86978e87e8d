#pragma once

#include <QByteArray>
#include <functional>

// The file operations a listing save needs, each answering with a run-time error number (0 for success).
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
    virtual int ensureDirectory(const QByteArray& path) = 0;

    // Opens `path` for reading and closes it again: 0 when it exists and can be read, 53 when it does not
    // exist, 76 when a folder on its way does not.
    virtual int probe(const QByteArray& path) = 0;

    // Writes `path` anew with what `produce` gives. The new content goes to a file beside it and replaces the
    // old one only once complete, so a failure never leaves a half-written file where a good one stood.
    virtual int writeFile(const QByteArray& path, const std::function<bool(Output&)>& produce) = 0;
};

class SystemFileOps : public FileOps
{
public:
    int ensureDirectory(const QByteArray& path) override;
    int probe(const QByteArray& path) override;
    int writeFile(const QByteArray& path, const std::function<bool(Output&)>& produce) override;
};
