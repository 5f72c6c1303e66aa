// SPDX-License-Identifier: MIT
// Qt's portable means; each file's data are on the disk when its copy ends.
#include "filecopier.h"

#include <QFile>
#include <QFileInfo>

class FileCopier::Private {
public:
    qint64 unflushed = 0;
};

FileCopier::FileCopier(Durability /*durability*/)
    : d(std::make_unique<Private>())
{
}

FileCopier::~FileCopier() = default;

FileCopier::Outcome FileCopier::copy(const TreeFolder& from, const TreeEntry* files, int count,
                                     const TreeFolder& to)
{
    for (int i = 0; i < count; ++i) {
        const QString source = TreeFolder::text(from.pathOf(files[i].name));
        const QString target = TreeFolder::text(to.pathOf(files[i].name));
        if (files[i].kind != TreeEntry::File || !from.isOpen() || !to.isOpen())
            return {i, NotCopied};
        if (QFileInfo::exists(target) || QFileInfo(target).isSymLink())
            return {i, NameTaken};
        QFile file(source);
        if (!file.copy(target))
            return {i, NoRoom}; // which is one of the causes that Qt does not tell apart
        d->unflushed += file.size();
    }
    return {count, NoTrouble};
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
