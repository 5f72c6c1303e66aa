// SPDX-License-Identifier: MIT
#include "trees/treepaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <climits>

namespace {

struct Paths {
    Q_DECLARE_TR_FUNCTIONS(TreePaths)
};

// The path that a word names, or else what is wrong with the word.
QString absolute(const QString& word, QString& objection)
{
    if (QFile::encodeName(word).size() >= PATH_MAX) {
        // The way up to a folder that exists would take time without end.
        objection = Paths::tr("the name of a folder is longer than %1 bytes").arg(PATH_MAX - 1);
        return {};
    }
    if (word.startsWith(QLatin1Char('/')))
        return word;
    const QString current = QDir::currentPath();
    if (word.isEmpty())
        objection = Paths::tr("the name of a folder is empty");
    else if (!current.startsWith(QLatin1Char('/'))) // Qt makes nothing of it, and the root would be meant
        objection =
            Paths::tr("'%1' cannot be found: the current folder is gone; give a whole path").arg(word);
    // Joined by hand: Qt takes a leading colon for the name of a built-in resource.
    return objection.isEmpty() ? current + QLatin1Char('/') + word : QString();
}

// Where a folder that need not exist yet really is.
QString real(const QString& path)
{
    if (path.isEmpty())
        return {};
    const QFileInfo info(path);
    if (info.exists())
        return info.canonicalFilePath();
    return QDir::cleanPath(real(info.path()) + QLatin1Char('/') + info.fileName());
}

bool isInside(const QString& inner, const QString& outer)
{
    const QString beginning = outer.endsWith(QLatin1Char('/')) ? outer : outer + QLatin1Char('/');
    return inner.startsWith(beginning);
}

} // namespace

TreePaths::TreePaths(const QString& sourceWord, const QString& targetWord)
{
    const QString absoluteSource = absolute(sourceWord, m_objection);
    const QString absoluteTarget = absolute(targetWord, m_objection);
    source = QDir::cleanPath(absoluteSource);
    target = QDir::cleanPath(absoluteTarget);
    realSource = real(absoluteSource);
    realTarget = real(absoluteTarget);
}

bool TreePaths::isNested() const
{
    return isInside(realTarget, realSource);
}

QString TreePaths::objection(THREAD_OPERATE operate) const
{
    QString found = m_objection;
    if (found.isEmpty())
        found = objectionToSource();
    if (found.isEmpty())
        found = objectionToTarget(operate);
    if (!found.isEmpty())
        return found;
    if (realSource == realTarget)
        return Paths::tr("'%1' and '%2' are the same folder").arg(source, target);
    if (operate != OPERATE_CUT_OUTPUT && isNested())
        return Paths::tr("'%1' is inside '%2'").arg(target, source);
    return {};
}

QString TreePaths::objectionToSource() const
{
    const QFileInfo folder(realSource);
    if (!folder.exists())
        return Paths::tr("there is no folder '%1'").arg(source);
    if (!folder.isDir())
        return Paths::tr("'%1' is not a folder").arg(source);
    if (!folder.isReadable() || !folder.isExecutable())
        return Paths::tr("the folder '%1' cannot be read").arg(source);
    return {};
}

QString TreePaths::objectionToTarget(THREAD_OPERATE operate) const
{
    QFileInfo folder(realTarget);
    if (folder.isSymLink())
        return Paths::tr("'%1' is a link that leads nowhere").arg(target);
    if (operate != OPERATE_COPY && !folder.exists() && !QFileInfo::exists(folder.path()))
        return Paths::tr("the folder '%1', in which '%2' is to be made, does not exist")
            .arg(folder.path(), folder.fileName());
    while (!folder.exists() && !folder.isRoot())
        folder.setFile(folder.path());
    if (!folder.isDir())
        return Paths::tr("'%1' is not a folder").arg(folder.filePath());
    if (!folder.isWritable())
        return Paths::tr("the folder '%1' cannot be written to").arg(folder.filePath());
    return {};
}

RemovalPath::RemovalPath(const QString& word)
{
    const QString path = absolute(word, m_objection);
    folder = QDir::cleanPath(path);
    realFolder = real(path);
}

QString RemovalPath::objection() const
{
    if (!m_objection.isEmpty())
        return m_objection;
    const QFileInfo info(folder);
    if (info.isSymLink())
        return Paths::tr("'%1' is a link; name the folder that it leads to").arg(folder);
    if (!QFileInfo::exists(realFolder))
        return Paths::tr("there is no folder '%1'").arg(folder);
    if (!QFileInfo(realFolder).isDir())
        return Paths::tr("'%1' is not a folder").arg(folder);
    const QString current = QDir(QDir::currentPath()).canonicalPath();
    if (QFileInfo(realFolder).isRoot() || current == realFolder || isInside(current, realFolder))
        return Paths::tr("'%1' holds the current folder and is not removed").arg(folder);
    return {};
}
