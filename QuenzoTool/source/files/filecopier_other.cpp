// SPDX-License-Identifier: MIT
// Qt's portable means; each file's data are on the disk when its copy ends.
#include "files/filecopier.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>

namespace {

bool isThere(const QString& path)
{
    return QFileInfo::exists(path) || QFileInfo(path).isSymLink();
}

// Copies beside the existing file first, which goes when that copy is whole; why that failed, or null.
QString replace(QFile& source, const TreeFolder& from, const QByteArray& name, const TreeFolder& to)
{
    const QByteArray passing = ".quenzo-" + QByteArray::number(QRandomGenerator::global()->generate64(), 36);
    const QString temporary = TreeFolder::text(to.pathOf(passing));
    if (!source.copy(temporary))
        return source.errorString();
    const bool isItself = from.idOf(name, TreeFolder::LinksFollowed) == to.idOf(name, TreeFolder::LinksKept);
    QString reason;
    if (!to.removeExisting(name))
        reason = errorText(errno);
    else if (isItself && !QFileInfo::exists(source.fileName()))
        reason = FileCopier::replacedItself();
    QFile copy(temporary);
    if (reason.isNull() && !copy.rename(TreeFolder::text(to.pathOf(name))))
        reason = copy.errorString();
    if (!reason.isNull())
        QFile::remove(temporary);
    return reason;
}

QString obstacle(const QString& source, const TreeEntry& entry, const TreeFolder& to)
{
    if (entry.kind != TreeEntry::File)
        return FileCopier::neitherFileNorFolder();
    if (entry.isLink && QFileInfo(source).isDir())
        return FileCopier::linkLeadsBack();
    if (entry.isLink && !QFileInfo::exists(source))
        return FileCopier::linkLeadsNowhere();
    return to.isOpen() ? QString() : errorText(to.error());
}

} // namespace

class FileCopier::Private {
public:
    Existing existing;
    qint64 unflushed = 0;
    QVector<FileState> sources;
};

FileCopier::FileCopier(Durability /*durability*/, Existing existing)
    : d(std::make_unique<Private>())
{
    d->existing = existing;
}

FileCopier::~FileCopier() = default;

FileCopier::Outcome FileCopier::copy(const TreeFolder& from, const TreeEntry* files, int count,
                                     const TreeFolder& to)
{
    d->sources.clear();
    for (int i = 0; i < count; ++i) {
        const QByteArray& name = files[i].name;
        QFile file(TreeFolder::text(from.pathOf(name)));
        const QString target = TreeFolder::text(to.pathOf(name));
        const QString inTheWay = obstacle(file.fileName(), files[i], to);
        if (!inTheWay.isNull())
            return {i, NotCopied, inTheWay};
        const FileState state = from.stateOf(name);
        QString reason;
        if (d->existing == Replaced && isThere(target))
            reason = replace(file, from, name, to);
        else if (isThere(target))
            reason = errorText(EEXIST);
        else if (!file.copy(target))
            reason = file.errorString();
        if (!reason.isNull())
            return {i, NoRoom, reason}; // which is one of the causes that Qt does not tell apart
        d->unflushed += file.size();
        d->sources.append(state);
    }
    return {count, NoTrouble, {}};
}

const QVector<FileState>& FileCopier::sources() const
{
    return d->sources;
}

qint64 FileCopier::unflushedBytes() const
{
    return d->unflushed;
}

bool FileCopier::flush()
{
    d->unflushed = 0;
    return true;
}
