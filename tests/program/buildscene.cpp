// SPDX-License-Identifier: MIT
#include "buildscene.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

namespace {

bool copyFolder(const QString& source, const QString& target)
{
    QDirIterator entries(source, QDir::Files, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        const QString copy = target + path.mid(source.size());
        if (!QDir().mkpath(QFileInfo(copy).path()) || !QFile::copy(path, copy))
            return false;
    }
    return true;
}

} // namespace

BuildScene::BuildScene()
{
    const QString sample = QStringLiteral(SAMPLE);
    m_valid = QFile::copy(sample + QStringLiteral("/skyharbour.apk"), path(QStringLiteral("base.apk")))
        && QFile::copy(sample + QStringLiteral("/packages/harbourpay.zip"), path(QStringLiteral("pay.zip")))
        && QFile::copy(sample + QStringLiteral("/icons/icon.png"), path(QStringLiteral("icon.png")))
        && copyFolder(sample + QStringLiteral("/icons/marks"), path(QStringLiteral("marks")))
        && write(QStringLiteral("own/assets/text/story_en.txt"), "another story\n")
        && write(QStringLiteral("own/assets/own.txt"), "of this channel alone\n");
    job = {{QStringLiteral("game"), QStringLiteral("Sky Harbour")},
           {QStringLiteral("base"), QStringLiteral("base.apk")},
           {QStringLiteral("icons"),
            QJsonObject{{QStringLiteral("master"), QStringLiteral("icon.png")},
                        {QStringLiteral("marks"), QStringLiteral("marks")}}},
           {QStringLiteral("sdks"),
            QJsonObject{{QStringLiteral("pay"),
                         QJsonObject{{QStringLiteral("package"), QStringLiteral("pay.zip")},
                                     {QStringLiteral("id"), 7}}}}},
           {QStringLiteral("channels"),
            QJsonArray{QJsonObject{{QStringLiteral("folder"), QStringLiteral("plain")},
                                   {QStringLiteral("name"), QStringLiteral("Plain")}},
                       QJsonObject{{QStringLiteral("folder"), QStringLiteral("harbor")},
                                   {QStringLiteral("mark"), QStringLiteral("harbor")},
                                   {QStringLiteral("sdks"), QJsonArray{QStringLiteral("pay")}}},
                       QJsonObject{{QStringLiteral("folder"), QStringLiteral("meadow")},
                                   {QStringLiteral("mark"), QStringLiteral("meadow")},
                                   {QStringLiteral("corner"), QStringLiteral("left-top")},
                                   {QStringLiteral("sdks"), QJsonArray{QStringLiteral("pay")}},
                                   {QStringLiteral("files"), QStringLiteral("own")},
                                   {QStringLiteral("settings"),
                                    QJsonObject{{QStringLiteral("store"), QStringLiteral("meadow")}}}}}}};
}

QJsonObject BuildScene::channel(int number) const
{
    return job.value(QStringLiteral("channels")).toArray().at(number).toObject();
}

void BuildScene::setChannel(int number, const QJsonObject& channel)
{
    QJsonArray channels = job.value(QStringLiteral("channels")).toArray();
    channels.replace(number, channel);
    job.insert(QStringLiteral("channels"), channels);
}

bool BuildScene::write(const QString& name, const QByteArray& content) const
{
    QFile file(path(name));
    return QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly)
        && file.write(content) == content.size();
}

QByteArray BuildScene::read(const QString& name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

bool BuildScene::writeJob() const
{
    return write(QStringLiteral("job.json"), QJsonDocument(job).toJson());
}

bool BuildScene::signAtGate()
{
    const QString signer = QStringLiteral("bin/apksigner");
    job.insert(QStringLiteral("signing"),
               QJsonObject{{QStringLiteral("keystore"), QStringLiteral("release.p12")},
                           {QStringLiteral("password"),
                            QJsonObject{{QStringLiteral("file"), QStringLiteral("password")}}}});
    return write(QStringLiteral("release.p12"), "key") && write(QStringLiteral("password"), "secret\n")
        && write(signer,
                 "#!/bin/sh\nfor last; do :; done\ncase $1 in\n"
                 "sign) apk=${last##*/}; echo $PPID > \"$0.$apk\"; while [ ! -e '"
                     + path(QStringLiteral("gate")).toUtf8()
                     + "' ]; do sleep 0.02; done; cp \"$last\" \"$9\" ;;\n"
                       "verify) echo 'Signer #1 certificate SHA-256 digest: 00ff' ;;\n"
                       "--version) cat \"${0%/*}/version\" 2>/dev/null ;;\nesac\n")
        && QFile::setPermissions(path(signer), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
}

int BuildScene::waiting() const
{
    return QDir(path(QStringLiteral("bin"))).entryList({QStringLiteral("apksigner.*")}).size();
}

qint64 BuildScene::processAtGate(const QString& channel) const
{
    QFile file(path(QStringLiteral("bin/apksigner.%1.apk").arg(channel)));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toLongLong() : 0;
}

std::unique_ptr<QuenzoProcess> BuildScene::process(const QByteArray& words) const
{
    writeJob();
    auto process = std::make_unique<QuenzoProcess>(
        QuenzoProcess::words(QByteArray("build job.json " + words).trimmed().constData()), path({}));
    process->setVariable("XDG_DATA_HOME", path(QStringLiteral("data")));
    process->setVariable("PATH", path(QStringLiteral("bin:")) + qEnvironmentVariable("PATH"));
    for (const char* name : {"QUENZO_KEY", "SLURM_ARRAY_TASK_ID", "JOB_COMPLETION_INDEX", "CI_NODE_INDEX"})
        process->setVariable(name, {});
    return process;
}

Ended BuildScene::run(const QByteArray& words) const
{
    return process(words)->end();
}

QMap<QString, QByteArray> BuildScene::finished() const
{
    QMap<QString, QByteArray> files;
    const QString output = path(QStringLiteral("output"));
    QDirIterator entries(output, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString file = entries.next().mid(output.size() + 1);
        if (file.contains(QLatin1Char('/')) && !file.startsWith(QStringLiteral("slices/")))
            files.insert(file, read(QStringLiteral("output/") + file));
    }
    return files;
}

QMap<QString, QString> BuildScene::outcomes(const Ended& ended)
{
    QMap<QString, QString> outcomes;
    for (const auto& channel : ended.result()
                                   .value(QStringLiteral("report"))
                                   .toObject()
                                   .value(QStringLiteral("channels"))
                                   .toArray())
        outcomes.insert(channel.toObject().value(QStringLiteral("folder")).toString(),
                        channel.toObject().value(QStringLiteral("outcome")).toString());
    return outcomes;
}

QJsonObject BuildScene::reportOf(const Ended& ended, const QString& channel)
{
    for (const auto& one : ended.result()
                               .value(QStringLiteral("report"))
                               .toObject()
                               .value(QStringLiteral("channels"))
                               .toArray()) {
        if (one.toObject().value(QStringLiteral("folder")).toString() == channel)
            return one.toObject();
    }
    return {};
}

QByteArray BuildScene::entry(const QString& channel, const QString& name) const
{
    const QString package = QStringLiteral("output/%1/%1.apk").arg(channel);
    QDir(path(QStringLiteral("unpacked"))).removeRecursively();
    const Ended ended =
        QuenzoProcess({QStringLiteral("unpack"), package, QStringLiteral("unpacked")}, path({})).end();
    return ended.code == 0 ? read(QStringLiteral("unpacked/") + name) : ended.error;
}
