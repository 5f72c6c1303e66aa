// SPDX-License-Identifier: MIT
#include "iconscene.h"

#include "iconpictures.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

using namespace IconPictures;

void IconScene::prepare()
{
    m_folder = std::make_unique<QTemporaryDir>();
    const auto save = [this](const QImage& picture, const QString& relative) {
        if (!picture.save(path(relative)))
            qFatal("cannot write %s", qPrintable(path(relative)));
    };
    QDir().mkpath(path(QStringLiteral("marks/red/icon")));
    save(photograph(100, 100), QStringLiteral("game.png"));
    int side = 16;
    for (const QString& corner : cornerNames())
        save(mark(side += 4, Qt::red), QStringLiteral("marks/red/icon/%1.png").arg(corner));
}

void IconScene::prepareLayouts()
{
    prepare();
    if (!photograph(120, 60).save(path(QStringLiteral("back.png"))))
        qFatal("cannot write back.png");
}

QStringList IconScene::layout(const QString& name)
{
    const QStringList words{QStringLiteral("--layout"), name};
    return name == QLatin1String("android-adaptive")
        ? words + QStringList{QStringLiteral("--background"), QStringLiteral("back.png")}
        : words;
}

const QStringList& IconScene::cornerNames()
{
    static const QStringList names{QStringLiteral("left-top"), QStringLiteral("left-bottom"),
                                   QStringLiteral("right-top"), QStringLiteral("right-bottom")};
    return names;
}

QByteArray IconScene::contentOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(path));
    return file.readAll();
}

QStringList IconScene::filesBelow(const QString& folder)
{
    QStringList files;
    QDirIterator entries(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        entries.next();
        if (entries.fileName() != marker())
            files.append(QDir(folder).relativeFilePath(entries.filePath()));
    }
    files.sort();
    return files;
}

void IconScene::makePipe(const QString& path)
{
    if (mkfifo(QFile::encodeName(path).constData(), 0600) != 0)
        qFatal("cannot make the pipe %s", qPrintable(path));
}

void IconScene::write(const QString& file, const QByteArray& content) const
{
    QDir().mkpath(QFileInfo(file).path());
    QFile target(file);
    if (!target.open(QIODevice::WriteOnly) || target.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(file));
}

QImage IconScene::markPicture(int corner) const
{
    return QImage(path(QStringLiteral("marks/red/icon/%1.png").arg(cornerNames().at(corner))));
}

QStringList IconScene::arguments(const QStringList& further, const QString& outDir)
{
    const bool hasPlatform =
        further.contains(QStringLiteral("--platform")) || further.contains(QStringLiteral("--layout"));
    return words("icons --icon game.png --marks marks --out") + QStringList{outDir}
    + (hasPlatform ? QStringList() : words("--platform android")) + further + words("channels.json");
}

Ended IconScene::icons(const QByteArray& list, const QStringList& further, const QString& outDir) const
{
    write(path(QStringLiteral("channels.json")), list);
    return quenzo(arguments(further, outDir));
}
