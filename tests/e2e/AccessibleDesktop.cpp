// SPDX-License-Identifier: GPL-3.0-or-later

// GLib's headers name struct members "signals", which Qt's keywords would rewrite: AT-SPI comes first.
#include <atspi/atspi.h>

#include "AccessibleDesktop.h"

namespace {

AtspiAccessible* as(const std::shared_ptr<void>& p)
{
    return static_cast<AtspiAccessible*>(p.get());
}

// One of a node's texts from AT-SPI; a failed call gives an empty text.
QString ask(const std::shared_ptr<void>& p, gchar* (*get)(AtspiAccessible*, GError**))
{
    if (!p)
        return {};
    GError* error = nullptr;
    gchar* s = get(as(p), &error);
    g_clear_error(&error);
    const QString text = s ? QString::fromUtf8(s) : QString();
    g_free(s);
    return text;
}

bool isRows(const AccessibleNode& node)
{
    const QString role = node.role();
    return role == QLatin1String("table") || role == QLatin1String("tree table") || role == QLatin1String("list") ||
           role == QLatin1String("tree");
}

} // namespace

AccessibleNode::AccessibleNode(void* object) : m_object(object, [](void* p) { g_object_unref(p); }) {}

AccessibleNode AccessibleNode::application(const QString& name)
{
    static const bool initialised = [] {
        atspi_init();
        return true;
    }();
    Q_UNUSED(initialised);
    AtspiAccessible* desktop = atspi_get_desktop(0);
    if (!desktop)
        return {};
    AccessibleNode root(desktop);
    for (const AccessibleNode& app : root.children()) {
        if (app.name() == name) {
            atspi_accessible_set_cache_mask(as(app.m_object), ATSPI_CACHE_NONE);
            return app;
        }
    }
    return {};
}

QString AccessibleNode::name() const
{
    return ask(m_object, atspi_accessible_get_name);
}

QString AccessibleNode::description() const
{
    return ask(m_object, atspi_accessible_get_description);
}

QString AccessibleNode::role() const
{
    return ask(m_object, atspi_accessible_get_role_name);
}

static bool hasState(const std::shared_ptr<void>& object, AtspiStateType state)
{
    if (!object)
        return false;
    AtspiStateSet* set = atspi_accessible_get_state_set(as(object));
    const bool has = set && atspi_state_set_contains(set, state);
    if (set)
        g_object_unref(set);
    return has;
}

bool AccessibleNode::showing() const
{
    return hasState(m_object, ATSPI_STATE_SHOWING);
}

bool AccessibleNode::enabled() const
{
    return hasState(m_object, ATSPI_STATE_ENABLED);
}

QRect AccessibleNode::extents() const
{
    AtspiComponent* component = isNull() ? nullptr : atspi_accessible_get_component_iface(as(m_object));
    if (!component)
        return {};
    GError* error = nullptr;
    AtspiRect* r = atspi_component_get_extents(component, ATSPI_COORD_TYPE_SCREEN, &error);
    g_clear_error(&error);
    g_object_unref(component);
    if (!r)
        return {};
    const QRect rect(r->x, r->y, r->width, r->height);
    g_free(r);
    return rect;
}

QList<AccessibleNode> AccessibleNode::children() const
{
    QList<AccessibleNode> list;
    if (isNull())
        return list;
    GError* error = nullptr;
    const int count = atspi_accessible_get_child_count(as(m_object), &error);
    g_clear_error(&error);
    for (int i = 0; i < count; ++i) {
        if (AtspiAccessible* child = atspi_accessible_get_child_at_index(as(m_object), i, &error))
            list.append(AccessibleNode(child));
        g_clear_error(&error);
    }
    return list;
}

QString AccessibleNode::cell(int row) const
{
    if (isNull())
        return {};
    GError* error = nullptr;
    AtspiAccessible* item = nullptr;
    if (AtspiTable* table = atspi_accessible_get_table_iface(as(m_object))) {
        item = atspi_table_get_accessible_at(table, row, 0, &error);
        g_object_unref(table);
    } else {
        item = atspi_accessible_get_child_at_index(as(m_object), row, &error);
    }
    g_clear_error(&error);
    return item ? AccessibleNode(item).name() : QString();
}

AccessibleNode AccessibleNode::find(const std::function<bool(const AccessibleNode&)>& match, bool intoRows) const
{
    for (const AccessibleNode& child : children()) {
        if (match(child))
            return child;
        if (!intoRows && isRows(child))
            continue;
        const AccessibleNode found = child.find(match, intoRows);
        if (!found.isNull())
            return found;
    }
    return {};
}

AccessibleNode AccessibleNode::find(const QString& role, const QString& name) const
{
    return find([&](const AccessibleNode& n) { return n.name() == name && n.role() == role; });
}
