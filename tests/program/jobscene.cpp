// SPDX-License-Identifier: MIT
#include "jobscene.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <sys/stat.h>

JobScene::JobScene()
{
    write(QStringLiteral("game.apk"), QByteArray("PK\3\4 and so on"));
    for (const char* name : {"pay.zip", "key", "store", "pw.txt", "files/assets/a.txt"})
        write(QLatin1String(name), "content");
    QImage picture(8, 8, QImage::Format_ARGB32);
    picture.fill(Qt::red);
    QDir().mkpath(path(QStringLiteral("marks/red/icon")));
    for (const char* name : {"icon.png", "marks/red/icon/left-top.png", "marks/red/icon/right-bottom.png"}) {
        if (!picture.save(path(QLatin1String(name))))
            qFatal("cannot write %s", name);
    }
    if (mkfifo(QFile::encodeName(path(QStringLiteral("pipe"))).constData(), 0600) != 0)
        qFatal("cannot make a pipe");
}

void JobScene::write(const QString& relative, const QByteArray& content) const
{
    QDir().mkpath(QFileInfo(path(relative)).path());
    QFile file(path(relative));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(relative));
}

Job JobScene::read(const QByteArray& json)
{
    write(QStringLiteral("job.json"), json);
    return JobFile::read(path(QStringLiteral("job.json")), m_faults);
}

QStringList JobScene::faults() const
{
    QStringList lines;
    for (const JobFault& fault : m_faults)
        lines.append(
            QStringLiteral("%1: %2").arg(fault.place, fault.text).replace(root(), QStringLiteral("@")));
    return lines;
}

QByteArray JobScene::with(const QByteArray& members)
{
    return R"({"game": "G", "base": "game.apk", "channels": [{"folder": "a"}], )" + members + '}';
}

QByteArray JobScene::channel(const QByteArray& object)
{
    return R"({"game": "G", "base": "game.apk", "icons": {"master": "icon.png", "marks": "marks"},
               "sdks": {"pay": {"package": "pay.zip"}}, "channels": [)"
        + object + "]}";
}
