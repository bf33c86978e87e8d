// SPDX-License-Identifier: GPL-3.0-or-later

// quillary-search-list-bench [FILES]: "Search Files" in LongBrowser over a synthetic scan of FILES files (default
// 10,000,000) that all match, timed from the button to the result list filled and painted, and to its last line.
#include "browser/BrowserWindow.h"
#include "platform/SystemServices.h"
#include "scan/ScanResultBuilder.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <cstdio>

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const qint64 files = argc > 1 ? QByteArray(argv[1]).toLongLong() : 10'000'000;

    ScanResultBuilder b("/archive");
    const std::uint32_t folder = b.addFolder("roll", 1);
    for (qint64 i = 0; i < files; ++i) {
        const QByteArray name = "IMG_" + QByteArray::number(i) + ".jpg";
        b.addFile(folder, std::string_view(name.constData(), size_t(name.size())));
    }
    SystemServices system;
    BrowserWindow w(BrowserFlavour::longBrowser(), system.services(), nullptr);
    w.show();
    w.listResult(b.finish());
    w.controls().navigation.Label9Com->click();
    QApplication::processEvents();

    QListView* list5 = w.controls().search.List5;
    w.controls().search.srchFolder->setText(QStringLiteral("img_"));
    QElapsedTimer clock;
    clock.start();
    w.controls().search.SearchFiles->click();
    list5->viewport()->repaint();
    const qint64 filled = clock.elapsed();
    list5->scrollToBottom();
    list5->viewport()->repaint();
    const qint64 last = clock.elapsed();
    std::printf("%lld results: list filled and painted in %lld ms, last line shown after %lld ms\n",
                static_cast<long long>(list5->model()->rowCount()), static_cast<long long>(filled),
                static_cast<long long>(last));
    return 0;
}
