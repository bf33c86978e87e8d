// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QRect>
#include <QString>
#include <functional>
#include <memory>

// The desktop as a screen reader sees it, over the accessibility bus (AT-SPI): applications, their windows and
// controls, each with its role, name, states, place on the screen and, for lists and grids, their rows.
// Every question goes to the program as it runs; nothing is cached between two of them.
class AccessibleNode
{
public:
    AccessibleNode() = default;

    // The running application called `name` on the desktop, or a null node.
    static AccessibleNode application(const QString& name);

    bool isNull() const { return !m_object; }
    QString name() const;
    QString description() const;
    QString role() const; // AT-SPI's role name: "push button", "label", "table", "dialog", ...
    bool showing() const;
    bool enabled() const;
    QRect extents() const; // on the screen
    QList<AccessibleNode> children() const;

    // The text at one row of a list or a grid, in its first column.
    QString cell(int row) const;

    // The first node below this one (depth first) that `match` accepts. The rows of lists, grids and trees are
    // not searched: ask those through cell(), or find() on the list itself.
    AccessibleNode find(const std::function<bool(const AccessibleNode&)>& match, bool intoRows = false) const;
    AccessibleNode find(const QString& role, const QString& name) const;

private:
    explicit AccessibleNode(void* object);
    std::shared_ptr<void> m_object; // an AtspiAccessible
};
