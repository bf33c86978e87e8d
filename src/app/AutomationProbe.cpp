// SPDX-License-Identifier: GPL-3.0-or-later

#include "AutomationProbe.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFileSystemModel>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QScreen>
#include <QTreeView>
#include <QWindow>
#include <cstdio>
#include <unistd.h>

namespace {

QString rectText(QWidget* w, QRect local)
{
    const QPoint topLeft = w->mapToGlobal(local.topLeft());
    return QStringLiteral("%1 %2 %3 %4").arg(topLeft.x()).arg(topLeft.y()).arg(local.width()).arg(local.height());
}

// The visible control of that name, searching the active window first.
QWidget* find(const QString& name)
{
    QList<QWidget*> tops = QApplication::topLevelWidgets();
    if (QWidget* active = QApplication::activeWindow())
        tops.prepend(active);
    for (QWidget* top : tops) {
        if (!top->isVisible())
            continue;
        if (top->objectName() == name)
            return top;
        for (QWidget* w : top->findChildren<QWidget*>(name))
            if (w->isVisible())
                return w;
    }
    return nullptr;
}

QString shown(QWidget* w)
{
    if (auto* l = qobject_cast<QLabel*>(w))
        return l->text();
    if (auto* b = qobject_cast<QAbstractButton*>(w))
        return b->text();
    if (auto* e = qobject_cast<QLineEdit*>(w))
        return e->text();
    if (auto* c = qobject_cast<QComboBox*>(w))
        return c->currentText();
    return w->windowTitle();
}

QWidget* openBox()
{
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    for (QWidget* top : QApplication::topLevelWidgets())
        if (top->isVisible() && qobject_cast<QDialog*>(top))
            return top;
    return nullptr;
}

} // namespace

void AutomationProbe::installIfRequested(QObject* parent)
{
    if (qEnvironmentVariable("QUILLARY_PROBE") == QLatin1String("1"))
        new AutomationProbe(parent);
}

AutomationProbe::AutomationProbe(QObject* parent) : QObject(parent), m_notifier(STDIN_FILENO, QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &AutomationProbe::readCommands);
}

void AutomationProbe::readCommands()
{
    char buf[4096];
    const ssize_t n = ::read(STDIN_FILENO, buf, sizeof buf);
    if (n <= 0) {
        m_notifier.setEnabled(false);
        return;
    }
    m_pending.append(buf, n);
    for (qsizetype eol; (eol = m_pending.indexOf('\n')) >= 0;) {
        const QString line = QString::fromUtf8(m_pending.left(eol)).trimmed();
        m_pending.remove(0, eol + 1);
        QString reply = answer(line);
        reply.replace(QLatin1Char('\r'), QString()).replace(QLatin1Char('\n'), QStringLiteral("\\n"));
        std::fprintf(stdout, "%s\n", reply.toUtf8().constData());
        std::fflush(stdout);
    }
}

QString AutomationProbe::answer(const QString& line)
{
    const QString cmd = line.section(QLatin1Char(' '), 0, 0);
    const QString arg = line.section(QLatin1Char(' '), 1);
    const QString ok = QStringLiteral("ok ");
    if (cmd == QLatin1String("windows")) {
        QStringList out;
        for (QWidget* top : QApplication::topLevelWidgets())
            if (top->isVisible())
                out.append(top->objectName() + QLatin1Char('|') + top->windowTitle() + QLatin1Char('|') +
                           rectText(top, top->rect()));
        return ok + out.join(QStringLiteral(" ; "));
    }
    if (cmd == QLatin1String("modal")) {
        QWidget* box = openBox();
        if (!box)
            return QStringLiteral("err no box");
        QString text;
        if (auto* m = qobject_cast<QMessageBox*>(box))
            text = m->text();
        else if (auto* i = qobject_cast<QInputDialog*>(box))
            text = i->labelText();
        return ok + box->windowTitle() + QLatin1Char('|') + text;
    }
    if (cmd == QLatin1String("button")) {
        QWidget* box = openBox();
        if (!box)
            return QStringLiteral("err no box");
        for (QAbstractButton* b : box->findChildren<QAbstractButton*>())
            if (b->isVisible() && b->text().remove(QLatin1Char('&')) == arg)
                return ok + rectText(b, b->rect());
        return QStringLiteral("err no button ") + arg;
    }
    if (cmd == QLatin1String("shot")) {
        QScreen* screen = QGuiApplication::primaryScreen();
        return screen && screen->grabWindow(0).save(arg, "PNG") ? ok : QStringLiteral("err cannot grab");
    }
    const QString name = arg.section(QLatin1Char(' '), 0, 0);
    QWidget* w = find(name);
    if (!w)
        return QStringLiteral("err no visible ") + name;
    if (cmd == QLatin1String("geom"))
        return ok + rectText(w, w->rect());
    if (cmd == QLatin1String("text"))
        return ok + shown(w);
    if (cmd == QLatin1String("enabled"))
        return ok + (w->isEnabled() ? QStringLiteral("1") : QStringLiteral("0"));
    auto* view = qobject_cast<QAbstractItemView*>(w);
    if (cmd == QLatin1String("rows"))
        return view && view->model() ? ok + QString::number(view->model()->rowCount())
                                     : QStringLiteral("err not a list");
    if (cmd == QLatin1String("cell")) {
        if (!view || !view->model())
            return QStringLiteral("err not a list");
        const QModelIndex index = view->model()->index(arg.section(QLatin1Char(' '), 1).toInt(), 0);
        return ok + index.data().toString();
    }
    if (cmd == QLatin1String("treeitem")) {
        auto* tree = qobject_cast<QTreeView*>(w);
        auto* model = tree ? qobject_cast<QFileSystemModel*>(tree->model()) : nullptr;
        if (!model)
            return QStringLiteral("err not a folder tree");
        const QModelIndex index = model->index(arg.section(QLatin1Char(' '), 1));
        if (!index.isValid())
            return QStringLiteral("err not loaded yet");
        tree->scrollTo(index);
        const QRect r = tree->visualRect(index);
        if (!r.isValid())
            return QStringLiteral("err not shown yet");
        return ok + rectText(tree->viewport(), r);
    }
    return QStringLiteral("err unknown command ") + cmd;
}
