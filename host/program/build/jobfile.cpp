// SPDX-License-Identifier: MIT
#include "build/job.h"
#include "build/jobchannels.h"
#include "build/jobinputs.h"
#include "build/jobobject.h"
#include "icons/channellist.h"
#include "icons/iconset.h"
#include "jsonplace.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(JobFile)
};

constexpr qint64 mostBytes = 1 << 26; // a channel takes some hundred

QString absolutePath(const QString& path)
{
    return path.startsWith(QLatin1Char('/')) ? path : QDir::currentPath() + QLatin1Char('/') + path;
}

QByteArray contentOf(const QString& path, JobFaults& faults)
{
    const QFileInfo found(path);
    QFile file(path);
    QString fault;
    if (!found.exists())
        fault = Texts::tr("does not exist");
    else if (!found.isFile())
        fault = Texts::tr("is not a regular file");
    else if (found.size() > mostBytes)
        fault = Texts::tr("is larger than a job can be, %1 bytes").arg(mostBytes);
    else if (!file.open(QIODevice::ReadOnly))
        fault = Texts::tr("cannot be read: %1").arg(file.errorString());
    if (!fault.isEmpty()) {
        faults.add({}, fault);
        return {};
    }
    return file.read(found.size());
}

// Undefined with a note when the text is no job at all.
QJsonValue rootOf(const QByteArray& content, JobFaults& faults)
{
    QJsonParseError fault;
    const QJsonDocument document = QJsonDocument::fromJson(content, &fault);
    if (fault.error != QJsonParseError::NoError) {
        faults.add({},
                   Texts::tr("is not JSON: %1 at %2")
                       .arg(fault.errorString(), JsonPlace::lineAndColumn(content, fault.offset)));
        return {QJsonValue::Undefined};
    }
    if (!document.isObject()) {
        faults.add({}, Texts::tr("is an array, not an object"));
        return {QJsonValue::Undefined};
    }
    for (const QString& place : JsonPlace::repeatedKeys(content))
        faults.add(place, Texts::tr("is given twice"));
    return document.object();
}

QVector<int> platformsOf(const JobObject& icons)
{
    const QString key = QStringLiteral("platforms");
    const QStringList known{QStringLiteral("android"), QStringLiteral("ios")};
    if (!icons.has(key))
        return {IconSet::Android};
    if (icons.value(key).isArray() && icons.array(key).isEmpty())
        icons.complain(key, Texts::tr("is empty; the platforms are %1").arg(known.join(QLatin1String(", "))));
    const QStringList names = icons.texts(key, [&known](const QString& name) {
        return known.contains(name) ? QString()
                                    : Texts::tr("is %1, and the platforms are %2")
                                          .arg(JobObject::quoted(name), known.join(QLatin1String(", ")));
    });
    QVector<int> platforms;
    for (const QString& name : names)
        platforms.append(known.indexOf(name));
    std::sort(platforms.begin(), platforms.end());
    return platforms;
}

void readIcons(const JobObject& icons, JobInputs& inputs, Job& job)
{
    if (!icons.exists())
        return;
    icons.allowKeys({QStringLiteral("master"), QStringLiteral("marks"), QStringLiteral("platforms")});
    job.icon = inputs.picture(icons, QStringLiteral("master"), JobObject::Required);
    job.marks = inputs.folder(icons, QStringLiteral("marks"));
    job.platforms = platformsOf(icons);
}

void readSdks(const JobObject& sdks, JobInputs& inputs, Job& job)
{
    QHash<QString, QString> names;
    for (const QString& name : sdks.keys()) {
        const QString fault = ChannelList::faultOfName(name);
        const QString twin = names.value(JobChannels::folded(name));
        if (!fault.isEmpty())
            sdks.complain(name, fault);
        else if (!twin.isEmpty())
            sdks.complain(
                name, Texts::tr("differs from \"%1\" in nothing but the case or form of letters").arg(twin));
        names.insert(JobChannels::folded(name), name);
        const JobObject object = sdks.object(name);
        JobSdk sdk;
        sdk.name = name;
        if (object.exists()) {
            object.allowKeys({QStringLiteral("package"), QStringLiteral("id")});
            sdk.package = inputs.file(object, QStringLiteral("package"), JobObject::Required);
            sdk.id = object.number(QStringLiteral("id"), 0).value_or(-1);
        }
        job.sdks.insert(name, sdk);
    }
}

void readEncryption(const JobObject& encryption, JobInputs& inputs, Job& job)
{
    encryption.allowKeys({QStringLiteral("key"), QStringLiteral("exclude")});
    job.key = inputs.file(encryption, QStringLiteral("key"));
    job.exclude = encryption.texts(QStringLiteral("exclude"));
}

// "env:NAME"; empty with a note when the run would not find it there.
QString environmentPassword(const JobObject& password)
{
    static const QRegularExpression form(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
    const QString key = QStringLiteral("environment");
    const QString name = password.text(key);
    if (name.isEmpty())
        return {};
    if (!form.match(name).hasMatch())
        password.complain(key, Texts::tr("is no name of an environment variable"));
    else if (!qEnvironmentVariableIsSet(name.toLatin1().constData()))
        password.complain(key, Texts::tr("names %1, which the environment does not have").arg(name));
    return QStringLiteral("env:") + name;
}

QString passwordOf(const JobObject& password, JobInputs& inputs)
{
    if (!password.exists())
        return {};
    const QString file = QStringLiteral("file");
    const QString environment = QStringLiteral("environment");
    password.allowKeys({file, environment});
    if (!password.has(file) && !password.has(environment))
        password.complain(file, Texts::tr("is missing, and \"environment\" as well"));
    if (password.has(file) && password.has(environment))
        password.complain(environment, Texts::tr("stands beside \"file\": one of them is wanted"));
    if (!password.has(file))
        return environmentPassword(password);
    const QString path = inputs.file(password, file);
    return path.isEmpty() ? QString() : QStringLiteral("file:") + path;
}

void readSigning(const JobObject& signing, JobInputs& inputs, Job& job)
{
    if (!signing.exists())
        return;
    signing.allowKeys({QStringLiteral("keystore"), QStringLiteral("alias"), QStringLiteral("password")});
    JobSigning read;
    read.keystore = inputs.file(signing, QStringLiteral("keystore"), JobObject::Required);
    read.alias = signing.text(QStringLiteral("alias"));
    read.password = passwordOf(signing.object(QStringLiteral("password"), JobObject::Required), inputs);
    job.signing = read;
}

// A run is there for its packages.
QString faultOfLeaving(const QString& name, const Job& job)
{
    const auto isItsPackage = [&](const JobChannel& channel) {
        return name.compare(channel.folder + QStringLiteral(".apk"), Qt::CaseInsensitive) == 0;
    };
    if (std::any_of(job.channels.cbegin(), job.channels.cend(), isItsPackage))
        return Texts::tr("is a channel's package, which belongs to the output");
    return ChannelList::faultOfName(name);
}

void readRoot(const JobObject& root, JobFaults& faults, Job& job)
{
    root.allowKeys({QStringLiteral("$schema"), QStringLiteral("game"), QStringLiteral("base"),
                    QStringLiteral("icons"), QStringLiteral("sdks"), QStringLiteral("defaults"),
                    QStringLiteral("channels"), QStringLiteral("encryption"), QStringLiteral("signing"),
                    QStringLiteral("work"), QStringLiteral("output"), QStringLiteral("leave")});
    JobInputs inputs(job.path, faults);
    root.text(QStringLiteral("$schema"));
    job.game = root.text(QStringLiteral("game"), JobObject::Required);
    job.base = inputs.archive(root, QStringLiteral("base"), JobObject::Required);
    readIcons(root.object(QStringLiteral("icons")), inputs, job);
    readSdks(root.object(QStringLiteral("sdks")), inputs, job);
    JobChannels(inputs, faults, job).read(root);
    readEncryption(root.object(QStringLiteral("encryption")), inputs, job);
    readSigning(root.object(QStringLiteral("signing")), inputs, job);
    job.leave = root.texts(QStringLiteral("leave"),
                           [&job](const QString& name) { return faultOfLeaving(name, job); });
    job.work = inputs.place(root, QStringLiteral("work"));
    job.output = inputs.place(root, QStringLiteral("output"));
    inputs.keepApart(root, job.work, job.output);
}

} // namespace

Job JobFile::read(const QString& path, QVector<JobFault>& faults)
{
    Job job;
    job.path = absolutePath(path);
    JobFaults found;
    const QByteArray content = contentOf(job.path, found);
    const QJsonValue root = found.all().isEmpty() ? rootOf(content, found) : QJsonValue();
    if (root.isObject())
        readRoot(JobObject(root, {}, found), found, job);
    faults = found.all();
    return job;
}
