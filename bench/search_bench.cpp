// SPDX-License-Identifier: GPL-3.0-or-later

// quillary-search-bench [FILES]: searches the file-name list of a synthetic scan of FILES names (default
// 10,000,000) for a few texts and prints how long each search took.
#include "scan/ScanResultBuilder.h"
#include "search/ListSearch.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <cstdio>
#include <random>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const qint64 files = argc > 1 ? QByteArray(argv[1]).toLongLong() : 10'000'000;
    static const char* stems[] = {"report",
                                  "Report",
                                  "IMG_",
                                  "DSC",
                                  "data",
                                  "notes",
                                  "invoice ",
                                  "photo",
                                  "Scan ",
                                  "r\xc3\xa9sum\xc3\xa9",
                                  "\xc3\x9c"
                                  "bersicht",
                                  "song ",
                                  "Track",
                                  "README",
                                  "setup",
                                  "draft v",
                                  "log",
                                  "index",
                                  "thumb",
                                  "Final FINAL"};
    static const char* exts[] = {"", ".txt", ".TXT", ".jpg", ".JPG", ".png", ".pdf", ".doc", ".mp3", ".mp4"};
    std::mt19937 rng(7);
    QElapsedTimer clock;
    clock.start();
    ScanResultBuilder b("/data");
    const qint64 perFolder = 100;
    std::string name;
    for (qint64 i = 0; i < files; ++i) {
        if (i % perFolder == 0)
            b.setParent(b.addFolder("folder " + std::to_string(i / perFolder), 1), 0);
        name = stems[rng() % 20];
        name += std::to_string(rng() % 5000);
        name += exts[rng() % 10];
        b.addFile(std::uint32_t(i / perFolder + 1), name);
    }
    const std::shared_ptr<const ScanResult> scan = b.finish();
    std::printf("built %lld file names in %lld ms (%.1f MB of names)\n", files, clock.elapsed(),
                double(scan->nameBytes()) / 1e6);
    for (const char* text : {"report", "img_12", "zzz-no-match", "\xc3\xa9", ".MP3"}) {
        clock.restart();
        const SearchResult r = ListSearch::run(scan, SearchResult::Kind::Files, QString::fromUtf8(text));
        std::printf("search %-14s %9lld matches in %5lld ms\n", text, r.count(), clock.elapsed());
    }
    return 0;
}
