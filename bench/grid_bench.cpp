// SPDX-License-Identifier: GPL-3.0-or-later

// quillary-grid-bench [FILES]: LongBrowser's grids over a synthetic scan of FILES files (default 10,000,000).
// Prints the time from the end of the walk to grids that are filled and painted, the time to jump to the last
// row and paint it, and the memory the grids add beyond the scan result itself. Runs offscreen unless told
// otherwise.
#include "browser/BrowserWindow.h"
#include "panes/ResultPanes.h"
#include "platform/SystemServices.h"
#include "scan/ScanResultBuilder.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTableView>
#include <cstdio>
#include <string>

namespace {

// Resident memory of this process in bytes, from the kernel's own count.
qint64 residentBytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine()) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toLongLong() * 1024;
    }
    return -1;
}

void settle()
{
    for (int i = 0; i < 3; ++i)
        QApplication::processEvents();
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const qint64 files = argc > 1 ? QByteArray(argv[1]).toLongLong() : 10'000'000;

    // Folders of 1,000 files each, ten to a parent folder, as a photo or mail archive might be.
    QElapsedTimer clock;
    clock.start();
    ScanResultBuilder b("/archive");
    const qint64 perFolder = 1000;
    std::string name;
    for (qint64 i = 0; i < files; ++i) {
        if (i % perFolder == 0)
            b.addFolder("roll " + std::to_string(i / perFolder), 12345);
        name = "IMG_" + std::to_string(i) + ".jpg";
        b.addFile(std::uint32_t(i / perFolder + 1), name);
    }
    // Group every ten folders under a folder listed after them.
    const std::uint32_t leaves = std::uint32_t((files + perFolder - 1) / perFolder);
    for (std::uint32_t first = 1; first <= leaves; first += 10) {
        const std::uint32_t group = b.addFolder("year " + std::to_string(first / 10), 123450);
        for (std::uint32_t k = first; k < first + 10 && k <= leaves; ++k)
            b.setParent(k, group);
        b.setParent(group, 0);
    }
    std::shared_ptr<const ScanResult> scan = b.finish();
    std::printf("built a result of %lld files, %lld folders in %lld ms (%.1f MB)\n", scan->fileCount(),
                scan->folderCount(), clock.elapsed(), double(scan->memoryUsage()) / 1e6);

    SystemServices system;
    BrowserWindow window(BrowserFlavour::longBrowser(), system.services(), nullptr);
    window.show();
    window.grab();
    settle();
    const qint64 before = residentBytes();

    clock.restart();
    window.listResult(scan);
    const double filled = double(clock.nsecsElapsed()) / 1e6;
    window.grab();
    const double ready = double(clock.nsecsElapsed()) / 1e6;
    settle();
    const qint64 after = residentBytes();

    qint64 rows = 0;
    for (int n = 1; n <= 4; ++n)
        rows += window.panes().rowCount(n);
    std::printf("walk end to grids filled: %.1f ms; filled and painted: %.1f ms\n", filled, ready);

    auto* grid = window.findChild<QTableView*>(QStringLiteral("MSFlexGrid3"));
    const int last = window.panes().rowCount(3) - 1;
    clock.restart();
    window.panes().setCurrentRow(3, last);
    grid->scrollTo(grid->model()->index(last, 0));
    grid->viewport()->grab();
    const double jump = double(clock.nsecsElapsed()) / 1e6;
    std::printf("jump to row %d and paint it: %.2f ms (%s)\n", last + 1, jump,
                qPrintable(grid->model()->index(last, 0).data().toString()));

    const double added = double(after - before);
    std::printf("memory the grids add: %.1f MB over %lld grid rows = %.2f bytes per row (%.2f per file)\n", added / 1e6,
                rows, added / double(rows), added / double(scan->fileCount()));
    return 0;
}
