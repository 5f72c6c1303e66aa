// SPDX-License-Identifier: MIT
// Qt's portable means; each file's data are on the disk when its copy ends.
#include "files/filecopier.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>

class FileCopier::Private {
public:
    qint64 unflushed = 0;
    QVector<FileState> sources;
};

FileCopier::FileCopier(Durability /*durability*/)
    : d(std::make_unique<Private>())
{
}

FileCopier::~FileCopier() = default;

FileCopier::Outcome FileCopier::copy(const TreeFolder& from, const TreeEntry* files, int count,
                                     const TreeFolder& to)
{
    d->sources.clear();
    for (int i = 0; i < count; ++i) {
        const QString source = TreeFolder::text(from.pathOf(files[i].name));
        const QString target = TreeFolder::text(to.pathOf(files[i].name));
        if (files[i].kind != TreeEntry::File)
            return {i, NotCopied, neitherFileNorFolder()};
        if (files[i].isLink && QFileInfo(source).isDir())
            return {i, NotCopied, linkLeadsBack()};
        if (files[i].isLink && !QFileInfo::exists(source))
            return {i, NotCopied, linkLeadsNowhere()};
        if (!to.isOpen())
            return {i, NotCopied, errorText(to.error())};
        if (QFileInfo::exists(target) || QFileInfo(target).isSymLink())
            return {i, NameTaken, errorText(EEXIST)};
        QFile file(source);
        const FileState state = from.stateOf(files[i].name);
        if (!file.copy(target))
            return {i, NoRoom, file.errorString()}; // which is one of the causes that Qt does not tell apart
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
