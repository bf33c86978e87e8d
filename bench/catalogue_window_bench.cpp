// SPDX-License-Identifier: GPL-3.0-or-later

// quillary-catalogue-window-bench [--text TEXT] CATALOGUE [SCANS [FILES_PER_SCAN]]: the catalogue window over a
// large catalogue. Records SCANS synthetic scans of FILES_PER_SCAN files each (default 10 x 1,000,000) into
// CATALOGUE unless it holds scans already, then opens the window offscreen, searches for TEXT (by default ".raw",
// which one synthetic name in ten holds; on a catalogue of real trees, a text as common), and prints the time to
// the first row and to the last, the sort time, the time to paint the table at random places, and the window's
// resident memory at each step.
#include "catalogue/CatalogueResultModel.h"
#include "catalogue/CatalogueResults.h"
#include "catalogue/CatalogueWindow.h"
#include "catalogue/CatalogueWindowMain.h"
#include "catalogue/ScanSource.h"
#include "catalogue/SqliteCatalogue.h"
#include "platform/Services.h"
#include "volumes/VolumeService.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QTableView>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

namespace {

qint64 statusKb(const char* field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine())
        if (line.startsWith(field))
            return line.mid(qsizetype(qstrlen(field))).trimmed().split(' ').value(0).toLongLong();
    return -1;
}

// CPU time of the calling thread: on a busy machine wall-clock turns mostly measure the other programs.
qint64 threadCpuUs()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return qint64(t.tv_sec) * 1000000 + t.tv_nsec / 1000;
}

void report(const char* step)
{
    std::printf("%-34s RSS %7.1f MB  (peak %7.1f MB; heap and stacks %.1f MB, files %.1f MB)\n", step,
                double(statusKb("VmRSS:")) / 1024.0, double(statusKb("VmHWM:")) / 1024.0,
                double(statusKb("RssAnon:")) / 1024.0, double(statusKb("RssFile:") + statusKb("RssShmem:")) / 1024.0);
    std::fflush(stdout);
}

// Folders of 1,000 files; every tenth file is a ".raw", the text searched for.
class SyntheticScan : public ScanSource
{
public:
    SyntheticScan(qint64 files, int seed) : m_files(files), m_seed(seed) {}
    qint64 folderCount() const override { return 1 + (m_files + 999) / 1000; }
    qint64 fileCount() const override { return m_files; }
    Entry folder(qint64 index) const override
    {
        m_name = index == 0 ? std::string() : "roll " + std::to_string(m_seed) + "-" + std::to_string(index);
        return {0, m_name, 1000 * 4096, 1600000000 + index};
    }
    Entry file(qint64 index) const override
    {
        m_name = "IMG_" + std::to_string(m_seed) + "_" + std::to_string(index) + (index % 10 == 0 ? ".raw" : ".jpg");
        return {std::uint32_t(1 + index / 1000), m_name, 4096 + (index * 7919) % 100000, 1600000000 + index};
    }

private:
    qint64 m_files;
    int m_seed;
    mutable std::string m_name;
};

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    QString text = QStringLiteral(".raw");
    if (const qsizetype at = args.indexOf(QStringLiteral("--text")); at >= 0 && at + 1 < args.size()) {
        text = args[at + 1];
        args.remove(at, 2);
    }
    if (args.isEmpty()) {
        std::fprintf(stderr, "usage: %s [--text TEXT] CATALOGUE [SCANS [FILES_PER_SCAN]]\n", argv[0]);
        return 2;
    }
    const QString path = args[0];
    const int scans = args.size() > 1 ? args[1].toInt() : 10;
    const qint64 perScan = args.size() > 2 ? args[2].toLongLong() : 1'000'000;

    QString error;
    {
        std::unique_ptr<SqliteCatalogue> catalogue = SqliteCatalogue::open(path, &error);
        if (!catalogue) {
            std::fprintf(stderr, "%s\n", qPrintable(error));
            return 1;
        }
        qint64 entries = 0;
        for (const ScanInfo& s : catalogue->scans().value_or(std::vector<ScanInfo>()))
            entries += s.fileCount + s.folderCount;
        if (entries == 0) {
            QElapsedTimer clock;
            clock.start();
            for (int i = 0; i < scans; ++i) {
                ScanInfo info;
                info.scannedAtMs = 1700000000000 + i;
                info.startPath = "/archive/disk" + QByteArray::number(i);
                info.volume.label = QStringLiteral("ARCHIVE%1").arg(i);
                info.volume.uuid = QStringLiteral("0000-%1").arg(i, 4, 10, QLatin1Char('0'));
                info.volume.mountPoint = "/media/archive" + QByteArray::number(i);
                SyntheticScan scan(perScan, i);
                info.fileCount = scan.fileCount();
                info.folderCount = scan.folderCount() - 1;
                if (!catalogue->record(info, scan, &error)) {
                    std::fprintf(stderr, "%s\n", qPrintable(error));
                    return 1;
                }
                entries += scan.fileCount() + scan.folderCount();
            }
            std::printf("recorded %lld entries in %.1f s\n", entries, double(clock.elapsed()) / 1000.0);
        }
        std::printf("catalogue: %lld entries\n", entries);
    }
    report("before the window");

    SystemVolumeService volumes;
    Services services;
    services.volumes = &volumes;
    // The catalogue opened as the program opens it for its window.
    CatalogueWindow window(services, [path](QString* e) { return openWindowCatalogue(path, e); });
    window.resize(1200, 800);
    window.show();
    QApplication::processEvents();
    report("window open");

    auto* table = window.findChild<QTableView*>(QStringLiteral("resultTable"));
    CatalogueResultModel* model = window.resultModel();
    QElapsedTimer clock;
    qint64 firstRow = -1;
    QObject::connect(model, &QAbstractItemModel::rowsInserted, &window, [&] {
        if (firstRow < 0)
            firstRow = clock.elapsed();
    });
    bool finished = false;
    QObject::connect(&window, &CatalogueWindow::searchFinished, &window, [&] { finished = true; });
    clock.start();
    window.findChild<QLineEdit*>(QStringLiteral("searchBox"))->setText(text);
    qint64 longestEventLoop = 0, longestCpu = 0;
    const auto turn = [&] {
        QElapsedTimer step;
        step.start();
        const qint64 cpu = threadCpuUs();
        QApplication::processEvents(QEventLoop::AllEvents);
        longestEventLoop = std::max(longestEventLoop, step.elapsed());
        longestCpu = std::max(longestCpu, threadCpuUs() - cpu);
    };
    while (!finished || model->sorting())
        turn();
    const qint64 total = clock.elapsed();
    std::printf("search '%s': first row after %lld ms (typing pause included), %d rows, all listed and sorted "
                "after %lld ms; longest event-loop turn %lld ms wall, %.1f ms of the window thread's CPU\n",
                qPrintable(text), firstRow, model->rowCount(), total, longestEventLoop, double(longestCpu) / 1000.0);
    std::printf("result store: %.1f MB (%.1f bytes per hit)\n", double(model->results().bytesUsed()) / 1048576.0,
                model->rowCount() ? double(model->results().bytesUsed()) / model->rowCount() : 0.0);
    report("all results listed");

    // Painting the table at random rows, as a scroll-bar drag does.
    std::vector<qint64> paints, paintCpu;
    QRandomGenerator random(7);
    for (int i = 0; i < 200; ++i) {
        table->verticalScrollBar()->setValue(int(random.bounded(std::max(1, table->verticalScrollBar()->maximum()))));
        QElapsedTimer paint;
        paint.start();
        const qint64 cpu = threadCpuUs();
        table->viewport()->repaint();
        paintCpu.push_back(threadCpuUs() - cpu);
        paints.push_back(paint.nsecsElapsed() / 1000);
    }
    std::sort(paints.begin(), paints.end());
    std::sort(paintCpu.begin(), paintCpu.end());
    std::printf("paint at a random row: median %.2f ms wall (%.2f ms CPU), worst %.2f ms wall (%.2f ms CPU)\n",
                double(paints[paints.size() / 2]) / 1000.0, double(paintCpu[paintCpu.size() / 2]) / 1000.0,
                double(paints.back()) / 1000.0, double(paintCpu.back()) / 1000.0);

    clock.restart();
    table->sortByColumn(CatalogueResultModel::Size, Qt::DescendingOrder);
    longestEventLoop = longestCpu = 0;
    while (model->sorting())
        turn();
    std::printf("sort by size: %lld ms; longest event-loop turn %lld ms wall, %.1f ms CPU\n", clock.elapsed(),
                longestEventLoop, double(longestCpu) / 1000.0);
    report("after sorting");
    return 0;
}
