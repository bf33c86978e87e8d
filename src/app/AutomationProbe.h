// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QSocketNotifier>

class QWidget;

// A line protocol on standard input and output that lets the end-to-end test see the windows as a person
// would: where a control is on the screen and what it shows. The test clicks and types through the X server
// itself; the probe only answers questions. Enabled by QUILLARY_PROBE=1 and inert otherwise.
//
//   windows               visible top-level windows: objectName|title|x,y,w,h ...
//   geom NAME             screen rectangle of the visible control NAME: x y w h
//   text NAME             what NAME shows (label, button, line edit, combo box)
//   enabled NAME          1 or 0
//   rows NAME             rows of the list or grid NAME
//   cell NAME ROW         text of row ROW of NAME
//   modal                 the open message or input box: title|text
//   button TEXT           screen rectangle of the button TEXT in the open box: x y w h
//   treeitem NAME PATH    screen rectangle of PATH in the folder tree NAME (expanding to it)
//   shot FILE             a PNG of the whole screen
//
// Replies are one line: "ok ..." or "err ...", with line breaks in texts written as \n.
class AutomationProbe : public QObject
{
    Q_OBJECT

public:
    static void installIfRequested(QObject* parent);

private:
    explicit AutomationProbe(QObject* parent);
    void readCommands();
    QString answer(const QString& line);

    QSocketNotifier m_notifier;
    QByteArray m_pending;
};
