// SPDX-License-Identifier: MIT
#include "iconrun.h"

#include "iconpictures.h"

#include <QBuffer>
#include <QColor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>

#include <atomic>
#include <sys/stat.h>

using namespace IconPictures;
using namespace IconRun;

namespace {

QList<int> sidesOf(int platform)
{
    return platform == android ? QList<int>{36, 48, 72, 96, 144, 192}
                               : QList<int>{29, 40, 50, 57, 58, 72, 76, 80, 87, 100, 114, 120, 144, 152, 180};
}

QString nameOf(int platform, int side)
{
    return platform == android ? QStringLiteral("icon%1x%1.png").arg(side)
                               : QStringLiteral("Icon-%1.png").arg(side);
}

} // namespace

namespace IconRun {

QStringList namesOf(int platform)
{
    QStringList names{QStringLiteral("icon512x512.png")};
    for (const int side : sidesOf(platform))
        names.append(nameOf(platform, side));
    names.sort();
    return names;
}

ST_CHANNEL_ICON channel(const char* mark, const char* folder, int corner, int x, int y)
{
    return {x, y, corner, QString::fromUtf8(mark), QString::fromUtf8(folder)};
}

void makePipe(const QString& path)
{
    if (mkfifo(QFile::encodeName(path).constData(), 0600) != 0)
        qFatal("cannot make the pipe %s", qPrintable(path));
}

QString differencesFrom(const QImage& icon, const QString& folder, int platform)
{
    QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden);
    names.sort();
    if (names != namesOf(platform))
        return QStringLiteral("the files are ") + names.join(QLatin1Char(' '));
    QMap<QString, QImage> expected{{QStringLiteral("icon512x512.png"), icon}};
    for (const int side : sidesOf(platform))
        expected.insert(nameOf(platform, side),
                        icon.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    QStringList paths;
    for (auto one = expected.cbegin(); one != expected.cend(); ++one) {
        QFile file(folder + QLatin1Char('/') + one.key());
        if (!file.open(QIODevice::ReadOnly))
            return one.key() + QStringLiteral(" cannot be read");
        const QByteArray content = file.readAll();
        const QByteArray plain = savedByQt(one.value(), 100);
        if (chunksBesideData(content) != chunksBesideData(plain))
            return one.key() + QStringLiteral(" differs beside the data");
        if (QImage::fromData(content) != QImage::fromData(plain))
            return one.key() + QStringLiteral(" differs in its pixels");
        paths.append(file.fileName());
    }
    return faultsOf(paths);
}

Job::Job()
{
    const QList<QPair<QString, int>> marks{{QStringLiteral("red"), 0}, {QStringLiteral("blue"), 220}};
    for (const auto& mark : marks) {
        int side = 40;
        for (const QString& corner : corners())
            writePicture(markPath(mark.first, corner),
                         IconPictures::mark(side += 8, QColor::fromHsv(mark.second, 255, 255, 170)));
    }
    writePicture(icon, photograph(256, 256));
}

QStringList Job::corners()
{
    return {QStringLiteral("left-top"), QStringLiteral("left-bottom"), QStringLiteral("right-top"),
            QStringLiteral("right-bottom")};
}

QString Job::markPath(const QString& mark, const QString& corner) const
{
    return path(QStringLiteral("marks/%1/icon/%2.png").arg(mark, corner));
}

QImage Job::markPicture(const char* mark, int corner) const
{
    return QImage(markPath(QString::fromUtf8(mark), corners().at(corner)));
}

void Job::writePicture(const QString& file, const QImage& picture, const char* format) const
{
    write(file, [&] {
        QByteArray content;
        QBuffer buffer(&content);
        // Without compression PNG files are made fastest.
        if (!picture.save(&buffer, format, qstrcmp(format, "PNG") == 0 ? 100 : -1))
            qFatal("cannot encode a picture for %s", qPrintable(file));
        return content;
    }());
}

void Job::write(const QString& file, const QByteArray& content) const
{
    QDir().mkpath(QFileInfo(file).path());
    QFile target(file);
    if (!target.open(QIODevice::WriteOnly) || target.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(file));
}

void Job::run(const QList<ST_CHANNEL_ICON>& channels, int platform)
{
    thread.setGameInfo(icon, defaultCorner, defaultX, defaultY, platform);
    thread.setInfo(path(QStringLiteral("marks")), channels);
    thread.setOutputDir(outputDir);
    // The thread sanitizer sees no order in Qt's waiting, but in this.
    std::atomic<bool> ended{false};
    const auto telling = QObject::connect(
        &thread, &QThread::finished, &thread, [&ended] { ended.store(true); }, Qt::DirectConnection);
    thread.start();
    thread.wait();
    QObject::disconnect(telling);
    if (!ended.load())
        qFatal("the thread did not say that it finished");
}

QStringList Job::filesIn(const QString& folder) const
{
    QStringList names = QDir(out(folder)).entryList(QDir::Files | QDir::Hidden);
    names.sort();
    return names;
}

QImage Job::produced(const char* folder) const
{
    return QImage(out(QString::fromUtf8(folder) + QStringLiteral("/icon512x512.png")));
}

} // namespace IconRun
