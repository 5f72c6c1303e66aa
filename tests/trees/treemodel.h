// SPDX-License-Identifier: MIT
#ifndef TREEMODEL_H
#define TREEMODEL_H

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>

/** In which order a file system lists the entries of a folder, as far as that can be foretold. */
class ListingOrder {
public:
    /** Finds out by listing folders made for it below an existing one, with names that are going to be used.
     */
    ListingOrder(const QString& place, const QStringList& names);

    bool isKnown() const { return m_policy != Unknown; }

    /** Puts names that were made in the given order into the order in which they are listed. */
    QStringList listed(QStringList made) const;

private:
    enum Policy { Unknown, ByName, AsMade, LastFirst };
    Policy m_policy = Unknown;
    QStringList m_ranked;
};

/**
 * A file tree in memory, with the copying and cutting walks as they are described to hosts, one step at a
 * time: what the real ones, which are faster, must come to. Paths are absolute. Links are not modelled.
 */
class TreeModel {
public:
    explicit TreeModel(const ListingOrder& order);
    ~TreeModel();
    TreeModel(const TreeModel&) = delete;
    TreeModel& operator=(const TreeModel&) = delete;

    void makePath(const QString& path);
    bool makeFolder(const QString& path);
    bool writeFile(const QString& path, const QByteArray& content);

    bool copyDirectory(const QString& source, const QString& target, bool overwrite, bool deleteSource);
    bool cutForOutput(const QString& from, const QString& to, const QStringList* filter);
    bool exceptCut(const QString& from, const QString& to);

    QString outputDir;
    QString exceptDir;
    QStringList log; ///< "source > target" of each failed copy while cutting

    /** Every path below a folder, with a file's content or a folder's rights. */
    QMap<QString, QByteArray> content(const QString& path) const;

    /** The same of the file system, where folders that cannot be entered get other rights for it. */
    static QMap<QString, QByteArray> contentOnDisk(const QString& path);

private:
    struct Node;

    static void describe(const QString& path, const Node& folder, QMap<QString, QByteArray>& found);
    Node* find(const QString& path) const;
    Node* parentOf(const QString& path) const;
    bool isFolder(const QString& path) const;
    QStringList list(const QString& path, bool* readable) const;
    bool removeFile(const QString& path);
    void removeFolder(const QString& path);
    void forceWriteOther(const QString& path);
    bool copyFile(const QString& from, const QString& to);
    bool moveFile(const QString& from, const QString& to);

    const ListingOrder& m_order;
    std::unique_ptr<Node> m_root;
};

#endif
