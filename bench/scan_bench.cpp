// SPDX-License-Identifier: GPL-3.0-or-later

// quillary-bench FOLDER [OUTDIR [THREADS]]: walks FOLDER (no limit) and writes its four listings into OUTDIR, printing
// how long each step took and what the scan result costs per entry.
#include "export/FileOps.h"
#include "export/SaveFlow.h"
#include "platform/InputService.h"
#include "platform/MessageService.h"
#include "scan/FolderWalk.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <cstdio>

namespace {

class QuietAnswers : public MessageService, public InputService
{
public:
    QString inputBox(const QString&, const QString&, const QString&) override { return QStringLiteral("bench"); }
    Answer message(const QString&, MessageStyle, const QString&) override { return Answer::Yes; }
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: quillary-bench FOLDER [OUTDIR]\n");
        return 2;
    }
    const QByteArray folder(argv[1]);
    const QString outDir =
        argc > 2 ? QString::fromLocal8Bit(argv[2]) : QDir::tempPath() + QStringLiteral("/quillary-bench");
    QDir().mkpath(outDir);

    QElapsedTimer clock;
    clock.start();
    WalkOptions options;
    options.threads = argc > 3 ? QByteArray(argv[3]).toInt() : 0;
    const auto result = FolderWalk::run(folder, options);
    const qint64 walkMs = clock.elapsed();
    const qint64 entries = result->folderCount() + result->fileCount();

    QuietAnswers answers;
    SystemFileOps ops;
    SaveFlow flow(answers, answers, ops, CollectionFolder(outDir));
    SaveSources src;
    src.result = result.get();
    src.flavour = ScanResult::Flavour::Long;
    clock.restart();
    const auto outcome = flow.run(SaveFlow::Kind::Set, src);
    const qint64 writeMs = clock.elapsed();

    std::printf("folders %lld files %lld\n", qint64(result->folderCount()), qint64(result->fileCount()));
    std::printf("walk_ms %lld write_ms %lld (error %d)\n", walkMs, writeMs, int(outcome.error));
    std::printf("bytes_per_entry_beyond_names %.1f (index %zu B, names %zu B, arena reserved %zu B)\n",
                double(result->indexBytes()) / double(entries ? entries : 1), result->indexBytes(), result->nameBytes(),
                result->memoryUsage() - result->indexBytes());
    return 0;
}
