// SPDX-License-Identifier: MIT
#include "build/jobtemplate.h"

#include "build/jobchannels.h"
#include "build/jobinputs.h"
#include "fileidentity.h"
#include "icons/channellist.h"
#include "icons/iconset.h"
#include "wholesave.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSet>
#include <QTemporaryDir>

namespace {

struct Template {
    Q_DECLARE_TR_FUNCTIONS(JobTemplate)
};

const QString sample = QStringLiteral(":/quenzo/sample/");
const QString jobName = QStringLiteral("job.json");
constexpr QDir::Filters everything = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;

// A text as JSON has it, quotation marks included.
QString json(const QString& text)
{
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.mid(1, array.size() - 2));
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A path as the job in a folder names it: relative, so that both may be moved together.
QString pathFrom(const QString& folder, const QString& path)
{
    return QDir(folder).relativeFilePath(placeOf(path));
}

bool isWhole(const QString& mark)
{
    for (int corner = 0; corner <= IconSet::RightBottom; ++corner) {
        if (!JobInputs::faultOfPicture(mark + QLatin1Char('/') + IconSet::cornerFile(corner)).isEmpty())
            return false;
    }
    return true;
}

QString channelLine(const QString& folder, const QString& mark)
{
    return QStringLiteral(R"({"folder": %1, "mark": %2})").arg(json(folder), json(mark));
}

// Each mark of a person's own has pictures for a channel that is named after it.
QStringList ownChannels(const QString& marks)
{
    const QString unmarked = QStringLiteral("official");
    QSet<QString> taken{unmarked};
    QStringList lines{QStringLiteral(R"({"folder": %1})").arg(json(unmarked))};
    for (const QString& mark : QDir(marks).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const QString folded = JobChannels::folded(mark);
        if (!ChannelList::faultOfName(mark).isEmpty() || JobChannels::isReserved(mark)
            || taken.contains(folded) || !isWhole(marks + QLatin1Char('/') + mark))
            continue;
        taken.insert(folded);
        lines.append(channelLine(mark, mark));
    }
    return lines;
}

QString channelsOf(const JobTemplate::OwnFiles& own)
{
    const QString between = QStringLiteral(",\n    ");
    if (!own.marks.isEmpty())
        return ownChannels(own.marks).join(between);
    // The sample's list as it is written, without its brackets. Its developer records are of the sample's
    // game.
    const QString name =
        own.base.isEmpty() ? QStringLiteral("channels.json") : QStringLiteral("icons/channels.json");
    const QString list = QString::fromUtf8(contentOf(sample + name)).trimmed();
    return list.mid(1, list.size() - 2).trimmed();
}

// Unless a person says otherwise, what the package's file is called, without its ending.
QString gameOf(const JobTemplate::OwnFiles& own)
{
    if (own.base.isEmpty())
        return QStringLiteral("Sky Harbour");
    if (!own.game.isEmpty())
        return own.game;
    const QFileInfo file(own.base);
    return file.completeBaseName().isEmpty() ? file.fileName() : file.completeBaseName();
}

QString baseMembers(const QString& folder, const JobTemplate::OwnFiles& own)
{
    const QString base = own.base.isEmpty() ? QStringLiteral("skyharbour.apk") : pathFrom(folder, own.base);
    const QStringList comment{
        Template::tr("A job of quenzo build. Paths are relative to this file."),
        Template::tr("quenzo build --check job.json looks at it and changes nothing; quenzo build job.json "
                     "makes the packages."),
        Template::tr("For signed packages: \"signing\": {\"keystore\": \"FILE\", \"alias\": \"NAME\", "
                     "\"password\": {\"environment\": \"NAME\"}}.")};
    QStringList lines;
    for (const QString& line : comment)
        lines.append(json(line));
    return QStringLiteral("  \"//\": [\n    %1\n  ],\n  \"game\": %2,\n  \"base\": %3,\n")
        .arg(lines.join(QStringLiteral(",\n    ")), json(gameOf(own)), json(base));
}

QString iconMembers(const QString& folder, const JobTemplate::OwnFiles& own)
{
    const QString icon = own.icon.isEmpty() ? QStringLiteral("icon.png") : pathFrom(folder, own.icon);
    const QString marks = own.marks.isEmpty() ? QStringLiteral("marks") : pathFrom(folder, own.marks);
    return QStringLiteral("  \"icons\": {\n    \"//\": %1,\n    \"master\": %2,\n    \"marks\": %3,\n"
                          "    \"platforms\": [\"android\", \"ios\"]\n  },\n")
        .arg(json(Template::tr("The game's icon, and a folder a mark with its picture for each corner.")),
             json(icon), json(marks));
}

// The sample's SDK belongs to the sample's game.
QString sdkMembers(const JobTemplate::OwnFiles& own)
{
    const QString comment =
        json(Template::tr("SDK packages by names of your own: \"NAME\": {\"package\": \"FILE.zip\", "
                          "\"id\": 7}; \"id\" is the number that the package has to bear."));
    const QString defaults = json(
        Template::tr("What holds for every channel that does not say otherwise: mark, corner, x, y, sdks, "
                     "files, settings, encrypt."));
    const QString sdk =
        QStringLiteral(",\n    \"harbourpay\": {\"package\": \"packages/harbourpay.zip\", \"id\": 7}");
    const QString names = own.base.isEmpty() ? QStringLiteral("\"harbourpay\"") : QString();
    return QStringLiteral("  \"sdks\": {\n    \"//\": %1%2\n  },\n  \"defaults\": {\n    \"//\": %3,\n"
                          "    \"sdks\": [%4]\n  },\n")
        .arg(comment, own.base.isEmpty() ? sdk : QString(), defaults, names);
}

QString jobText(const QString& folder, const JobTemplate::OwnFiles& own)
{
    return QStringLiteral("{\n%1%2%3  \"channels\": [\n    %4\n  ]\n}\n")
        .arg(baseMembers(folder, own), iconMembers(folder, own), sdkMembers(own), channelsOf(own));
}

// The sample's files that nothing of the person's own stands for.
QStringList sampleFiles(const JobTemplate::OwnFiles& own)
{
    QStringList names;
    if (own.base.isEmpty())
        names = QStringList{QStringLiteral("skyharbour.apk"), QStringLiteral("packages/harbourpay.zip")};
    if (own.icon.isEmpty())
        names.append(QStringLiteral("icon.png"));
    if (!own.marks.isEmpty())
        return names;
    QDirIterator marks(sample + QStringLiteral("marks"), QDir::Files, QDirIterator::Subdirectories);
    while (marks.hasNext())
        names.append(marks.next().mid(sample.size()));
    return names;
}

QString cannotWrite(const QString& path, const QString& cause)
{
    return Template::tr("%1 cannot be written: %2").arg(path, cause);
}

QString writeFile(const QString& path, const QByteArray& content)
{
    const QString folder = QFileInfo(path).path();
    if (!QDir().mkpath(folder))
        return Template::tr("the folder %1 cannot be made").arg(folder);
    const QString fault = saveWhole(path, content);
    return fault.isEmpty() ? QString() : cannotWrite(path, fault);
}

// Everything in a folder whose place is another one.
QString writeAll(const QString& at, const QString& folder, const JobTemplate::OwnFiles& own)
{
    for (const QString& name : sampleFiles(own)) {
        QString fault = writeFile(at + QLatin1Char('/') + name, contentOf(sample + name));
        if (!fault.isEmpty())
            return fault;
    }
    return writeFile(at + QLatin1Char('/') + jobName, jobText(folder, own).toUtf8());
}

// Into a folder that is there, the job last; what was moved goes again when the rest cannot be.
QString moveInto(const QString& from, const QString& folder)
{
    QStringList names = QDir(from).entryList(everything, QDir::Name);
    names.removeAll(jobName);
    names.append(jobName);
    for (int i = 0; i < names.size(); ++i) {
        const QString target = folder + QLatin1Char('/') + names.at(i);
        if (QDir().rename(from + QLatin1Char('/') + names.at(i), target))
            continue;
        for (const QString& moved : names.mid(0, i))
            QDir(folder + QLatin1Char('/') + moved).removeRecursively();
        return Template::tr("%1 cannot be put in its place").arg(target);
    }
    return {};
}

// How the folders are called in which what belongs into a folder is made.
QString makingPrefix(const QString& folder)
{
    constexpr int length = 12;
    const QByteArray name = QCryptographicHash::hash(QFile::encodeName(folder), QCryptographicHash::Sha1);
    return QStringLiteral(".quenzo-init-") + QString::fromLatin1(name.toHex().left(length))
        + QLatin1Char('-');
}

// What an init of this folder has left that was killed.
QStringList leftIn(const QString& near, const QString& folder)
{
    return QDir(near).entryList({makingPrefix(folder) + QLatin1Char('*')}, everything);
}

// Makes everything beside its place, or in it where that is there already, and puts it there.
QString place(const QString& near, const QString& folder, const JobTemplate::OwnFiles& own)
{
    for (const QString& left : leftIn(near, folder))
        QDir(near + QLatin1Char('/') + left).removeRecursively();
    QTemporaryDir making(near + QLatin1Char('/') + makingPrefix(folder) + QStringLiteral("XXXXXX"));
    if (!making.isValid())
        return cannotWrite(folder, making.errorString());
    // A folder inside: the outer one is for nobody else's eyes.
    const QString whole = making.filePath(QStringLiteral("whole"));
    QString fault = writeAll(whole, folder, own);
    if (!fault.isEmpty())
        return fault;
    if (near == folder)
        return moveInto(whole, folder);
    return QDir().rename(whole, folder) ? QString()
                                        : Template::tr("%1 cannot be put in its place").arg(folder);
}

} // namespace

QString JobTemplate::objectionTo(const QString& folder)
{
    const QFileInfo found(folder);
    if (found.exists() && !found.isDir())
        return Template::tr("%1 is not a folder").arg(folder);
    if (found.exists() && QDir(folder).entryList(everything).size() > leftIn(folder, folder).size())
        return Template::tr("the folder %1 is not empty").arg(folder);
    return {};
}

QString JobTemplate::write(const QString& folder, const OwnFiles& own)
{
    const QString near = QFileInfo::exists(folder) ? folder : QFileInfo(folder).path();
    QString above = near;
    while (!QFileInfo::exists(above))
        above = QFileInfo(above).path();
    QString fault = QDir().mkpath(near) ? place(near, folder, own)
                                        : Template::tr("the folder %1 cannot be made").arg(near);
    if (!fault.isEmpty()) {
        for (QString made = near; made != above && QDir().rmdir(made);)
            made = QFileInfo(made).path();
    }
    return fault;
}
