// SPDX-License-Identifier: GPL-3.0-or-later

#include "FolderTreeModel.h"

#include "common/NativeText.h"
#include "export/NativePath.h"
#include "scan/FolderWalk.h"
#include "scan/SubFolderReader.h"

#include <QApplication>
#include <QStyle>
#include <algorithm>

namespace {

bool lessByName(const QByteArray& a, const QByteArray& b)
{
    return FolderWalk::lessByName(std::string_view(a.constData(), size_t(a.size())),
                                  std::string_view(b.constData(), size_t(b.size())));
}

} // namespace

FolderTreeModel::FolderTreeModel(QObject* parent) : QAbstractItemModel(parent), m_root(std::make_unique<Node>()) {}

FolderTreeModel::~FolderTreeModel() = default;

void FolderTreeModel::setRootPath(const QByteArray& root)
{
    beginResetModel();
    ++m_generation;
    m_root = std::make_unique<Node>();
    m_root->name = root;
    endResetModel();
}

QByteArray FolderTreeModel::rootPath() const
{
    return m_root->name;
}

FolderTreeModel::Node* FolderTreeModel::nodeOf(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<Node*>(index.internalPointer()) : m_root.get();
}

QModelIndex FolderTreeModel::indexOf(Node* node) const
{
    return node == m_root.get() ? QModelIndex() : createIndex(node->row, 0, node);
}

QByteArray FolderTreeModel::pathOf(const Node* node) const
{
    if (!node->parent)
        return node->name;
    return SubFolderReader::join(pathOf(node->parent), node->name);
}

QByteArray FolderTreeModel::nativePath(const QModelIndex& index) const
{
    return pathOf(nodeOf(index));
}

QString FolderTreeModel::displayPath(const QModelIndex& index) const
{
    return NativeText::toDisplay(nativePath(index));
}

QModelIndex FolderTreeModel::index(const QByteArray& path)
{
    QByteArray root = m_root->name;
    if (!root.endsWith(NativePath::Separator))
        root += NativePath::Separator;
    if (m_root->name.isEmpty() || !path.startsWith(root))
        return {};
    Node* node = m_root.get();
    for (const QByteArray& name : path.mid(root.size()).split(NativePath::Separator)) {
        if (name.isEmpty())
            continue; // a doubled or trailing separator
        read(node);
        auto found = std::find_if(node->children.begin(), node->children.end(),
                                  [&](const std::unique_ptr<Node>& child) { return child->name == name; });
        if (found == node->children.end()) {
            // Made after this folder was read: read it again for what is new.
            node->read = false;
            read(node);
            found = std::find_if(node->children.begin(), node->children.end(),
                                 [&](const std::unique_ptr<Node>& child) { return child->name == name; });
            if (found == node->children.end())
                return {};
        }
        node = found->get();
    }
    return indexOf(node);
}

void FolderTreeModel::readAgain(const QModelIndex& folder)
{
    Node* node = nodeOf(folder);
    if (!node->read)
        return; // its first reading is still to come and brings everything
    node->read = false;
    read(node);
}

void FolderTreeModel::read(Node* node)
{
    if (node->read)
        return;
    node->read = true;
    const QList<QByteArray> names = SubFolderReader::read(pathOf(node));
    const QModelIndex parentIndex = indexOf(node);
    // Both lists are in the walk's order: walk them side by side and insert what is missing, one block at a time.
    // Nothing is removed: a folder gone from the disk keeps its node (see the class comment).
    int row = 0;
    for (qsizetype i = 0; i < names.size();) {
        while (row < int(node->children.size()) && lessByName(node->children[size_t(row)]->name, names[i]))
            ++row;
        if (row < int(node->children.size()) && node->children[size_t(row)]->name == names[i]) {
            ++row;
            ++i;
            continue;
        }
        // names[i] .. names[end - 1] all belong before children[row].
        qsizetype end = i + 1;
        while (end < names.size() &&
               (row == int(node->children.size()) || lessByName(names[end], node->children[size_t(row)]->name)))
            ++end;
        beginInsertRows(parentIndex, row, row + int(end - i) - 1);
        for (qsizetype k = i; k < end; ++k) {
            auto child = std::make_unique<Node>();
            child->name = names[k];
            child->parent = node;
            node->children.insert(node->children.begin() + row + (k - i), std::move(child));
        }
        for (size_t r = size_t(row); r < node->children.size(); ++r)
            node->children[r]->row = int(r);
        endInsertRows();
        row += int(end - i);
        i = end;
    }
}

QModelIndex FolderTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    const Node* node = nodeOf(parent);
    if (column != 0 || row < 0 || row >= int(node->children.size()))
        return {};
    return createIndex(row, 0, node->children[size_t(row)].get());
}

QModelIndex FolderTreeModel::parent(const QModelIndex& child) const
{
    if (!child.isValid())
        return {};
    return indexOf(nodeOf(child)->parent);
}

int FolderTreeModel::rowCount(const QModelIndex& parent) const
{
    if (parent.column() > 0)
        return 0;
    return int(nodeOf(parent)->children.size());
}

int FolderTreeModel::columnCount(const QModelIndex&) const
{
    return 1;
}

QVariant FolderTreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return NativeText::toDisplay(nodeOf(index)->name);
    case Qt::DecorationRole:
        return QApplication::style()->standardIcon(QStyle::SP_DirIcon);
    default:
        return {};
    }
}

bool FolderTreeModel::hasChildren(const QModelIndex& parent) const
{
    if (parent.column() > 0)
        return false;
    const Node* node = nodeOf(parent);
    // Unread folders offer to open; reading each one only to draw its expander would read the whole level below.
    return !node->read || !node->children.empty();
}

bool FolderTreeModel::canFetchMore(const QModelIndex& parent) const
{
    return parent.column() <= 0 && !nodeOf(parent)->read && !m_root->name.isEmpty();
}

void FolderTreeModel::fetchMore(const QModelIndex& parent)
{
    Node* node = nodeOf(parent);
    if (!canFetchMore(parent) || node->asked)
        return;
    node->asked = true;
    // The rows come in from the event loop, not inside the call: a view or a tester may ask while it is still
    // handling another change of this model.
    const QPersistentModelIndex where(parent);
    const quint64 generation = m_generation;
    QMetaObject::invokeMethod(
        this,
        [this, where, generation] {
            // Nodes go only with a new root, which makes `where` stale.
            if (generation == m_generation)
                read(nodeOf(where));
        },
        Qt::QueuedConnection);
}
