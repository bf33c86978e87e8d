// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QListView>

// A list box of results. listClicked() comes as a list box's click does: on a click on an entry and on every
// move of the selection by the keyboard, but not when the program selects an entry itself.
class ResultList : public QListView
{
    Q_OBJECT
public:
    explicit ResultList(QWidget* parent = nullptr);

    // The list box's ListIndex: the current entry, -1 for none. In a list that allows several selected entries
    // it is the entry with the focus, selected or not.
    int listIndex() const;
    // Makes `row` current and the only selected entry; -1 leaves nothing selected.
    void setListIndex(int row);
    int count() const;
    QString entry(int row) const;

signals:
    void listClicked();

protected:
    void keyPressEvent(QKeyEvent* event) override;
};
