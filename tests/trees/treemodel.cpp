// SPDX-License-Identifier: MIT
#include "treemodel.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int writeOther = 0002;
constexpr int longestPath = 4096;

QStringList namesIn(const QString& path)
{
    const QDir::Filters all = QDir::Dirs | QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    return QDir(path).entryList(all, QDir::Unsorted);
}

QStringList listedAfterMaking(const QString& place, const QStringList& names)
{
    const QTemporaryDir folder(place + QStringLiteral("/order.XXXXXX"));
    for (const QString& name : names)
        QDir(folder.path()).mkdir(name);
    return namesIn(folder.path());
}

QString parentPath(const QString& path)
{
    return path.left(qMax(path.lastIndexOf(QLatin1Char('/')), 1));
}

QString lastName(const QString& path)
{
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

QByteArray described(bool isFolder, int mode, const QByteArray& content)
{
    return isFolder ? QByteArray("folder " + QByteArray::number(mode, 8)) : QByteArray("file " + content);
}

} // namespace

ListingOrder::ListingOrder(const QString& place, const QStringList& names)
{
    QStringList reversed = names;
    std::reverse(reversed.begin(), reversed.end());
    const QStringList listed = listedAfterMaking(place, names);
    const QStringList again = listedAfterMaking(place, reversed);
    if (listed == again) {
        m_policy = ByName;
        m_ranked = listed;
    } else if (listed == names && again == reversed) {
        m_policy = AsMade;
    } else if (listed == reversed && again == names) {
        m_policy = LastFirst;
    }
}

QStringList ListingOrder::listed(QStringList made) const
{
    if (m_policy == LastFirst)
        std::reverse(made.begin(), made.end());
    if (m_policy == ByName) {
        std::sort(made.begin(), made.end(), [this](const QString& left, const QString& right) {
            return m_ranked.indexOf(left) < m_ranked.indexOf(right);
        });
    }
    return made;
}

struct TreeModel::Node {
    bool isFolder = true;
    int mode = 0755;
    QByteArray content;
    QStringList made; // the names in a folder, in the order in which they were made
    QMap<QString, std::shared_ptr<Node>> entries;

    bool isUsable() const { return geteuid() == 0 || mode != writeOther; }
};

TreeModel::TreeModel(const ListingOrder& order)
    : m_order(order)
    , m_root(std::make_unique<Node>())
{
}

TreeModel::~TreeModel() = default;

void TreeModel::makePath(const QString& path)
{
    if (path == QLatin1String("/"))
        return;
    makePath(parentPath(path));
    makeFolder(path);
}

TreeModel::Node* TreeModel::find(const QString& path) const
{
    if (path.toUtf8().size() >= longestPath)
        return nullptr;
    Node* node = m_root.get();
    const QStringList names = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString& name : names) {
        if (!node->isFolder || !node->isUsable() || !node->entries.contains(name))
            return nullptr;
        node = node->entries.value(name).get();
    }
    return node;
}

// The folder that holds a path, if entries can be made in it and removed from it.
TreeModel::Node* TreeModel::parentOf(const QString& path) const
{
    Node* const parent = find(parentPath(path));
    const bool serves = parent != nullptr && parent->isFolder && parent->isUsable();
    return serves && path.toUtf8().size() < longestPath ? parent : nullptr;
}

bool TreeModel::isFolder(const QString& path) const
{
    const Node* const node = find(path);
    return node != nullptr && node->isFolder;
}

QStringList TreeModel::list(const QString& path, bool* readable) const
{
    const Node* const node = find(path);
    *readable = node != nullptr && node->isFolder && node->isUsable();
    return *readable ? m_order.listed(node->made) : QStringList();
}

bool TreeModel::makeFolder(const QString& path)
{
    Node* const parent = parentOf(path);
    const QString name = lastName(path);
    if (parent == nullptr || parent->entries.contains(name))
        return false;
    parent->made.append(name);
    parent->entries.insert(name, std::make_shared<Node>());
    return true;
}

bool TreeModel::writeFile(const QString& path, const QByteArray& content)
{
    Node* const parent = parentOf(path);
    const QString name = lastName(path);
    if (parent == nullptr || parent->entries.contains(name))
        return false;
    const auto node = std::make_shared<Node>();
    node->isFolder = false;
    node->content = content;
    parent->made.append(name);
    parent->entries.insert(name, node);
    return true;
}

bool TreeModel::removeFile(const QString& path)
{
    Node* const parent = parentOf(path);
    const Node* const node = find(path);
    if (parent == nullptr || node == nullptr || node->isFolder)
        return false;
    parent->made.removeOne(lastName(path));
    parent->entries.remove(lastName(path));
    return true;
}

void TreeModel::removeFolder(const QString& path)
{
    Node* const parent = parentOf(path);
    const Node* const node = find(path);
    if (parent == nullptr || node == nullptr || !node->isFolder || !node->entries.isEmpty())
        return;
    parent->made.removeOne(lastName(path));
    parent->entries.remove(lastName(path));
}

void TreeModel::forceWriteOther(const QString& path)
{
    if (Node* const node = find(path))
        node->mode = writeOther;
}

bool TreeModel::copyFile(const QString& from, const QString& to)
{
    const Node* const node = find(from);
    return node != nullptr && !node->isFolder && writeFile(to, QByteArray(node->content));
}

bool TreeModel::copyDirectory(const QString& source, const QString& target, bool overwrite, bool deleteSource)
{
    if (target.startsWith(source + QLatin1Char('/')) && isFolder(source))
        return false; // the one thing that is looked at beforehand
    if (!isFolder(target) && !makeFolder(target))
        return false;
    bool readable = false;
    const QStringList names = list(source, &readable);
    if (!readable)
        return false;
    for (const QString& name : names) {
        const QString from = source + QLatin1Char('/') + name;
        const QString to = target + QLatin1Char('/') + name;
        if (isFolder(from)) {
            if (!copyDirectory(from, to, overwrite, deleteSource))
                return false;
            if (deleteSource)
                removeFolder(from);
            continue;
        }
        if (from == to)
            return false;
        if (overwrite)
            removeFile(to);
        if (!copyFile(from, to))
            return false;
        if (deleteSource)
            removeFile(from);
    }
    return true;
}

bool TreeModel::moveFile(const QString& from, const QString& to)
{
    removeFile(to);
    if (copyFile(from, to)) {
        removeFile(from);
        return true;
    }
    log.append(from + QStringLiteral(" > ") + to);
    return false;
}

bool TreeModel::cutForOutput(const QString& from, const QString& to, const QStringList* filter)
{
    if (!isFolder(to) && !makeFolder(to))
        return false;
    if (to.left(from.length()) == from) {
        const QString relative = to.mid(from.length());
        exceptDir = to + relative;
        exceptCut(to, to + relative);
    }
    bool readable = false;
    const QStringList names = list(from, &readable);
    if (!readable)
        return false;
    for (const QString& name : names) {
        const QString path = from + QLatin1Char('/') + name;
        const auto isThis = [&name](const QString& left) { return left.toLower() == name.toLower(); };
        if (filter != nullptr && std::any_of(filter->cbegin(), filter->cend(), isThis))
            continue;
        if (!isFolder(path)) {
            if (!moveFile(path, to + QLatin1Char('/') + name))
                return false;
            continue;
        }
        if (from == outputDir)
            continue;
        if (!cutForOutput(path, to + QLatin1Char('/') + name, nullptr))
            return false;
        forceWriteOther(path);
        removeFolder(path);
    }
    return true;
}

bool TreeModel::exceptCut(const QString& from, const QString& to)
{
    bool readable = false;
    const QStringList names = list(from, &readable);
    if (!readable)
        return false;
    for (const QString& name : names) {
        const QString path = from + QLatin1Char('/') + name;
        if (!isFolder(path)) {
            if (!moveFile(path, to + QLatin1Char('/') + name))
                return false;
            continue;
        }
        if (from == exceptDir)
            continue;
        if (!exceptCut(path, to + QLatin1Char('/') + name))
            return false;
        forceWriteOther(path);
        removeFolder(path);
    }
    return true;
}

QMap<QString, QByteArray> TreeModel::content(const QString& path) const
{
    QMap<QString, QByteArray> found;
    if (const Node* const node = find(path))
        describe(path, *node, found);
    return found;
}

void TreeModel::describe(const QString& path, const Node& folder, QMap<QString, QByteArray>& found)
{
    for (auto entry = folder.entries.cbegin(); entry != folder.entries.cend(); ++entry) {
        const QString entryPath = path + QLatin1Char('/') + entry.key();
        const Node& child = *entry.value();
        found.insert(entryPath, described(child.isFolder, child.mode, child.content));
        describe(entryPath, child, found);
    }
}

QMap<QString, QByteArray> TreeModel::contentOnDisk(const QString& path)
{
    QMap<QString, QByteArray> found;
    const QStringList names = namesIn(path);
    for (const QString& name : names) {
        const QString entry = path + QLatin1Char('/') + name;
        struct stat status { };
        stat(qUtf8Printable(entry), &status);
        const bool isFolder = S_ISDIR(status.st_mode);
        QFile file(entry);
        if (!isFolder && !file.open(QIODevice::ReadOnly))
            qFatal("cannot read %s", qUtf8Printable(entry));
        const QByteArray content = isFolder ? QByteArray() : file.readAll();
        found.insert(entry, described(isFolder, static_cast<int>(status.st_mode & 0777), content));
        if (!isFolder)
            continue;
        chmod(qUtf8Printable(entry), 0755);
        const QMap<QString, QByteArray> inside = contentOnDisk(entry);
        for (auto child = inside.cbegin(); child != inside.cend(); ++child)
            found.insert(child.key(), child.value());
    }
    return found;
}
