// SPDX-License-Identifier: MIT
#include "build/jobchannels.h"

#include "icons/channellist.h"
#include "icons/iconset.h"
#include "jsonplace.h"
#include "suggestion.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>

#include <limits>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(JobChannels)
};

const QString folderKey = QStringLiteral("folder");
const QString nameKey = QStringLiteral("name");
const QString numberKey = QStringLiteral("number");
const QString packageKey = QStringLiteral("package");
const QString markKey = QStringLiteral("mark");
const QString cornerKey = QStringLiteral("corner");
const QString sdksKey = QStringLiteral("sdks");
const QString filesKey = QStringLiteral("files");
const QString settingsKey = QStringLiteral("settings");
const QString encryptKey = QStringLiteral("encrypt");

QStringList sharedKeys()
{
    return {markKey, cornerKey, QStringLiteral("x"), QStringLiteral("y"),
            sdksKey, filesKey,  settingsKey,         encryptKey};
}

// Who says it: the channel, where it does.
const JobObject& giverOf(const QString& key, const JobObject& channel, const JobObject& defaults)
{
    return channel.has(key) ? channel : defaults;
}

QString recordNumberOf(const JobObject& channel)
{
    static const QRegularExpression digits(QStringLiteral("^[0-9]{1,9}$"));
    if (channel.value(numberKey).isDouble()) {
        const std::optional<int> number = channel.number(numberKey, 0);
        return number ? QString::number(*number) : QString();
    }
    QString text = channel.text(numberKey);
    if (!text.isEmpty() && !digits.match(text).hasMatch())
        channel.complain(numberKey, Texts::tr("is not the number of a developer record"));
    return text;
}

QString packageNameOf(const JobObject& channel)
{
    static const QRegularExpression form(
        QStringLiteral("^[A-Za-z][A-Za-z0-9_]*(\\.[A-Za-z][A-Za-z0-9_]*)+$"));
    QString name = channel.text(packageKey);
    if (!name.isEmpty() && !form.match(name).hasMatch())
        channel.complain(
            packageKey,
            Texts::tr("is %1, which is no name of an Android package").arg(JobObject::quoted(name)));
    return name;
}

std::optional<int> pixelsOf(const JobObject& giver, const QString& key)
{
    if (giver.isNull(key))
        return {}; // flush in the corner whatever the defaults say
    return giver.number(key, std::numeric_limits<int>::min());
}

int cornerIn(const JobObject& object)
{
    if (!object.has(cornerKey))
        return IconSet::Default;
    const int corner = ChannelList::cornerOf(object.value(cornerKey));
    if (corner < 0)
        object.complain(
            cornerKey,
            withSuggestion(Texts::tr("is none of %1, nor a number from 0 to 4")
                               .arg(IconSet::cornerNames().join(QStringLiteral(", "))),
                           likelyMeant(object.value(cornerKey).toString(), IconSet::cornerNames())));
    return corner < 0 ? IconSet::Default : corner;
}

QJsonObject settingsOver(const QJsonObject& defaults, const QJsonObject& own)
{
    QJsonObject settings = defaults;
    for (auto value = own.begin(); value != own.end(); ++value)
        settings.insert(value.key(), value.value());
    return settings;
}

} // namespace

JobChannels::JobChannels(JobInputs& inputs, JobFaults& faults, Job& job)
    : m_inputs(inputs)
    , m_faults(faults)
    , m_job(job)
{
}

QString JobChannels::folded(const QString& name)
{
    return name.normalized(QString::NormalizationForm_C)
        .toCaseFolded()
        .normalized(QString::NormalizationForm_C);
}

bool JobChannels::isReserved(const QString& folder)
{
    const QStringList names{QStringLiteral("sdks"),        QStringLiteral("icons"),
                            QStringLiteral("slices"),      QStringLiteral("records.db"),
                            QStringLiteral("report.json"), QStringLiteral("report.html")};
    static const QRegularExpression sheet(QStringLiteral("^sheet-(android|ios)(-[0-9]+)?\\.png$"));
    const QString name = folded(folder);
    return name.startsWith(QLatin1Char('.')) || names.contains(name) || sheet.match(name).hasMatch();
}

void JobChannels::read(const JobObject& root)
{
    const QString key = QStringLiteral("channels");
    const JobObject defaults = root.object(QStringLiteral("defaults"));
    defaults.allowKeys(sharedKeys());
    JobChannel unused; // what is wrong with the defaults is so without any channel
    readShared(defaults, defaults, unused);
    const QJsonArray values = root.array(key, JobObject::Required);
    if (values.isEmpty() && root.value(key).isArray())
        root.complain(key, Texts::tr("is empty; a job has at least one channel"));
    for (int i = 0; i < values.size(); ++i) {
        const QString place = JsonPlace::below(root.at(key), i);
        if (values.at(i).isObject())
            readChannel(JobObject(values.at(i), place, m_faults), defaults);
        else
            m_faults.add(place, JobObject::wrongKind(values.at(i), Texts::tr("an object")));
    }
}

void JobChannels::readChannel(const JobObject& channel, const JobObject& defaults)
{
    channel.allowKeys(QStringList{folderKey, nameKey, numberKey, packageKey} + sharedKeys());
    JobChannel read;
    readFolder(channel, read);
    read.name = channel.isNull(nameKey) ? QString() : channel.text(nameKey);
    if (read.name.isEmpty())
        read.name = read.folder;
    read.number = recordNumberOf(channel);
    read.package = packageNameOf(channel);
    readShared(channel, defaults, read);
    m_job.channels.append(read);
}

void JobChannels::readFolder(const JobObject& channel, JobChannel& read)
{
    read.folder = channel.folderName(folderKey, JobObject::Required);
    if (read.folder.isEmpty())
        return;
    const QString key = folded(read.folder);
    if (isReserved(read.folder))
        channel.complain(
            folderKey,
            Texts::tr("is %1, a name that the run needs itself").arg(JobObject::quoted(read.folder)));
    else if (m_folders.contains(key))
        channel.complain(folderKey,
                         Texts::tr("is %1, and %2 has the same but for the case or form of its letters")
                             .arg(JobObject::quoted(read.folder), m_folders.value(key)));
    else
        m_folders.insert(key, channel.at(folderKey));
}

void JobChannels::readShared(const JobObject& channel, const JobObject& defaults, JobChannel& read)
{
    readPlace(channel, defaults, read);
    readMark(giverOf(markKey, channel, defaults), read);
    read.sdks = sdksOf(giverOf(sdksKey, channel, defaults));
    const JobObject& files = giverOf(filesKey, channel, defaults);
    read.files = files.isNull(filesKey) ? QString() : m_inputs.folder(files, filesKey);
    read.settings = settingsOver(defaults.freeObject(settingsKey), channel.freeObject(settingsKey));
    read.encrypt = giverOf(encryptKey, channel, defaults).flag(encryptKey);
}

// A position belongs to its corner: a channel with a corner of its own takes none from the defaults.
void JobChannels::readPlace(const JobObject& channel, const JobObject& defaults, JobChannel& read)
{
    const QString x = QStringLiteral("x");
    const QString y = QStringLiteral("y");
    const int own = cornerIn(channel);
    const bool isOwn = own != IconSet::Default;
    const int general = isOwn ? own : cornerIn(defaults);
    read.corner = general == IconSet::Default ? IconSet::RightBottom : general;
    read.x = pixelsOf(isOwn ? channel : giverOf(x, channel, defaults), x);
    read.y = pixelsOf(isOwn ? channel : giverOf(y, channel, defaults), y);
}

void JobChannels::readMark(const JobObject& giver, JobChannel& read)
{
    if (giver.isNull(markKey))
        return;
    const QString mark = giver.folderName(markKey);
    if (mark.isEmpty() || mark == QLatin1String("None"))
        return;
    read.mark = mark;
    if (m_job.marks.isEmpty())
        giver.complain(
            markKey,
            Texts::tr(R"(is %1, and the job has no "marks" in its "icons")").arg(JobObject::quoted(mark)));
    else if (QFileInfo(m_job.marks).isDir()) // otherwise said of the folder
        m_inputs.mark(m_job.marks + QLatin1Char('/') + mark + QLatin1Char('/')
                          + IconSet::cornerFile(read.corner),
                      giver.at(markKey));
}

QStringList JobChannels::sdksOf(const JobObject& giver) const
{
    return giver.texts(sdksKey, [this](const QString& name) {
        if (m_job.sdks.contains(name))
            return QString();
        return withSuggestion(Texts::tr("is %1, no SDK of this job").arg(JobObject::quoted(name)),
                              likelyMeant(name, m_job.sdks.keys()));
    });
}
