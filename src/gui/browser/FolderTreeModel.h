// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QAbstractItemModel>
#include <QByteArray>
#include <memory>
#include <vector>

// The folder tree (Dir1) over one volume, on the folders' own bytes. Each node keeps its name exactly as the file
// system gave it and is shown through the lossless display text, so a folder whose name is not UTF-8 is there and
// its path comes back byte for byte. A folder's children are read when the view first asks for them.
//
// The tree does not follow the disk on its own: a folder renamed or removed outside keeps its node, so the
// selection and the path shown stay on the folder the user chose. A folder asked for by path that is not in the
// tree yet (made after its parent was read) is added then.
class FolderTreeModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    explicit FolderTreeModel(QObject* parent = nullptr);
    ~FolderTreeModel() override;

    // The volume root the tree starts from; its sub-folders are the top rows. Forgets everything read before.
    void setRootPath(const QByteArray& root);
    QByteArray rootPath() const;

    // The node of `path`, its parents read on the way down; invalid when `path` is the root, not below it, or
    // not a folder there.
    QModelIndex index(const QByteArray& path);
    using QAbstractItemModel::index;

    // Reads a folder that was read before again, for folders made since; nothing already there goes.
    void readAgain(const QModelIndex& folder);

    QByteArray nativePath(const QModelIndex& index) const;
    QString displayPath(const QModelIndex& index) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;

private:
    struct Node
    {
        QByteArray name; // the root's is its whole path
        Node* parent = nullptr;
        int row = 0;
        bool read = false;
        bool asked = false; // a fetch is on its way
        std::vector<std::unique_ptr<Node>> children;
    };

    Node* nodeOf(const QModelIndex& index) const;
    QModelIndex indexOf(Node* node) const;
    QByteArray pathOf(const Node* node) const;
    // Reads the folder of `node` once; later calls only add folders that were not there before.
    void read(Node* node);

    std::unique_ptr<Node> m_root;
    quint64 m_generation = 0;
};
