// SPDX-License-Identifier: MIT
#include "build/channelbuild.h"

#include "build/apkeditor.h"
#include "build/apktool.h"
#include "build/job.h"
#include "build/manifest.h"
#include "build/packageparts.h"
#include "build/zipcontent.h"
#include "console/console.h"
#include "console/diagnostics.h"
#include "icons/iconset.h"
#include "scripts/apksigner.h"
#include "scripts/assetencryption.h"
#include "trees/treeoperation.h"
#include "trees/treeremoval.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace {

struct Build {
    Q_DECLARE_TR_FUNCTIONS(ChannelBuild)
};

QString because(const QString& what, const ScriptOutcome& outcome)
{
    const QString cause =
        outcome.failure.message.isEmpty() ? outcome.diagnostics.value(0) : outcome.failure.message;
    return cause.isEmpty() ? what : what + QStringLiteral(": ") + cause;
}

QByteArray configOf(const QString& sdk)
{
    QFile config(sdk + QStringLiteral("/config.xml"));
    return config.open(QIODevice::ReadOnly) ? config.readAll() : QByteArray();
}

QString writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush())
        return {};
    return Build::tr("'%1' cannot be written: %2").arg(path, file.errorString());
}

// The disk begins to write while other things are done: at the end of a run there is little left to wait for.
void startFlush(const QByteArray& file)
{
    const int handle = open(file.constData(), O_WRONLY | O_CLOEXEC);
    if (handle < 0)
        return;
    sync_file_range(handle, 0, 0, SYNC_FILE_RANGE_WRITE);
    close(handle);
}

QString makeFolder(const QString& folder)
{
    return QDir().mkpath(folder) ? QString() : Build::tr("the folder '%1' cannot be made").arg(folder);
}

} // namespace

Console muteConsole()
{
    ConsoleStyle style;
    style.mute = true;
    return Console(style);
}

QString removeFolder(const QString& folder)
{
    if (!QFileInfo(folder).isDir() || QFileInfo(folder).isSymLink())
        return {};
    TreeRemoval removal(QFile::encodeName(folder));
    removal.run();
    return removal.error();
}

QString flushFolder(const QString& folder)
{
    const int handle = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool done = handle >= 0 && syncfs(handle) == 0;
    QString reason = done ? QString() : qt_error_string(errno);
    if (handle >= 0)
        close(handle);
    return reason;
}

QString clearFinished(const BuildPlaces& places, const QString& folder)
{
    const QString package = places.finishedPackage(folder);
    QFile file(package);
    if ((QFileInfo::exists(package) || QFileInfo(package).isSymLink()) && !file.remove())
        return Build::tr("'%1' cannot be removed: %2").arg(package, file.errorString());
    for (const char* const made : {"/icons", "/develop"}) {
        QString fault = removeFolder(places.finished(folder) + QLatin1String(made));
        if (!fault.isEmpty())
            return fault;
    }
    QDir().rmdir(places.finished(folder)); // unless something else is in it
    return {};
}

bool changesManifest(const JobChannel& channel, const BuildPlaces& places)
{
    return !channel.package.isEmpty()
        || std::any_of(channel.sdks.cbegin(), channel.sdks.cend(), [&places](const QString& sdk) {
               return Manifest::hasFragment(configOf(places.sdk(sdk)));
           });
}

QString digestOfPackage(const QString& package)
{
    ApkEditor archive;
    return archive.open(package) ? archive.digest() : QString();
}

QString sentenceOf(const Failure& failure)
{
    return failure.causes.isEmpty() ? failure.message
                                    : failure.message + QStringLiteral(": ") + failure.causes.first();
}

ChannelBuild::ChannelBuild(const Job& job, const BuildPlaces& places, ApkEditor& editor,
                           const PackageFacts& base, std::function<bool()> isInterrupted)
    : m_job(job)
    , m_places(places)
    , m_editor(editor)
    , m_base(base)
    , m_isInterrupted(std::move(isInterrupted))
{
}

ChannelOutcome ChannelBuild::run(const JobChannel& channel)
{
    m_channel = &channel;
    m_outcome = {};
    m_outcome.folder = channel.folder;
    m_outcome.name = channel.name;
    m_changes.clear();
    const bool done = perform(QStringLiteral("clear"), &ChannelBuild::clear)
        && (m_job.icon.isEmpty() || perform(QStringLiteral("icons"), &ChannelBuild::gatherIcons))
        && (!changesManifest(channel, m_places)
            || perform(QStringLiteral("manifest"), &ChannelBuild::makeManifest))
        && perform(QStringLiteral("package"), &ChannelBuild::makePackage)
        && (!channel.encrypt || perform(QStringLiteral("encrypt"), &ChannelBuild::encrypt))
        && (!m_job.signing || perform(QStringLiteral("sign"), &ChannelBuild::sign))
        && perform(QStringLiteral("check"), &ChannelBuild::check)
        && (channel.number.isEmpty() || perform(QStringLiteral("export"), &ChannelBuild::exportRecord))
        && perform(QStringLiteral("output"), &ChannelBuild::output);
    if (done)
        m_outcome.outcome = ChannelOutcome::Built;
    return m_outcome;
}

// Does one step, unless the run was interrupted; false ends the channel.
bool ChannelBuild::perform(const QString& name, Work work)
{
    if (m_isInterrupted()) {
        m_outcome.message = Build::tr("the run was interrupted");
        return false;
    }
    onBegin(name);
    BuildStep step{name, QDateTime::currentDateTimeUtc(), {}, BuildStep::Done, {}};
    step.message = (this->*work)();
    step.end = QDateTime::currentDateTimeUtc();
    if (!step.message.isEmpty()) {
        step.outcome = BuildStep::Failed;
        m_outcome.outcome = ChannelOutcome::Failed;
        m_outcome.message = step.message;
    }
    m_outcome.steps.append(step);
    onEnd(step);
    return step.outcome == BuildStep::Done;
}

QString ChannelBuild::channelFile(const QString& name) const
{
    return m_places.channel(m_channel->folder) + QLatin1Char('/') + name;
}

QString ChannelBuild::packageFile() const
{
    return channelFile(m_channel->folder + QStringLiteral(".apk"));
}

// What an earlier run has left, finished or not: it came from other inputs.
QString ChannelBuild::clear()
{
    QString fault = clearFinished(m_places, m_channel->folder);
    if (fault.isEmpty())
        fault = removeFolder(m_places.channel(m_channel->folder));
    return fault.isEmpty() ? makeFolder(m_places.channel(m_channel->folder)) : fault;
}

// Takes the channel's icons out of those of all channels.
QString ChannelBuild::gatherIcons()
{
    const QString own = channelFile(QStringLiteral("icons"));
    QString fault = makeFolder(own);
    if (!fault.isEmpty())
        return fault;
    for (const int platform : m_job.platforms) {
        const QString name = platform == IconSet::Android ? QStringLiteral("android") : QStringLiteral("ios");
        const QString made = m_places.icons(name) + QLatin1Char('/') + m_channel->folder;
        if (!QDir().rename(made, own + QLatin1Char('/') + name))
            return Build::tr("there are no icons for %1").arg(name);
        const QString whole = made + QLatin1Char('-') + IconSet::wholeFile();
        if (QFileInfo::exists(whole)
            && !QFile::rename(whole, own + QLatin1Char('/') + name + QStringLiteral("-icon.png")))
            return Build::tr("the icon '%1' cannot be moved").arg(whole);
    }
    return {};
}

// Merges what SDKs want into the base's manifest, and has it built again.
QString ChannelBuild::makeManifest()
{
    QFile file(m_places.decoded() + QStringLiteral("/AndroidManifest.xml"));
    Manifest manifest;
    if (!file.open(QIODevice::ReadOnly) || !manifest.read(file.readAll()))
        return file.isOpen() ? manifest.error() : file.errorString();
    // A base that was renamed itself has resources that go by another name still.
    const QString ofResources = manifest.package();
    manifest.setPackage(m_base.name);
    if (packageName() != ofResources)
        manifest.rename(packageName());
    for (const QString& sdk : m_channel->sdks) {
        if (!manifest.add(sdk, configOf(m_places.sdk(sdk))))
            return manifest.error();
    }
    manifest.setPackage(ofResources);
    const QString text = channelFile(QStringLiteral("AndroidManifest.xml"));
    QString fault = writeFile(text, manifest.text());
    if (!fault.isEmpty())
        return fault;
    Console console = muteConsole();
    const QString archive = channelFile(QStringLiteral("manifest.apk"));
    fault =
        ApkTool(m_places.decodingStore()).build(text, packageName(), m_job.base, m_base, archive, console);
    if (!fault.isEmpty())
        return fault;
    const QByteArray built = contentOfEntry(archive, QByteArrayLiteral("AndroidManifest.xml"), fault);
    QFile::remove(archive);
    return fault.isEmpty() ? writeFile(text, built) : fault;
}

QString ChannelBuild::packageName() const
{
    return m_channel->package.isEmpty() ? m_base.name : m_channel->package;
}

QByteArray ChannelBuild::channelContent() const
{
    QJsonObject content = m_channel->settings;
    content.insert(QStringLiteral("game"), m_job.game);
    content.insert(QStringLiteral("channel"), m_channel->folder);
    content.insert(QStringLiteral("name"), m_channel->name);
    content.insert(QStringLiteral("sdks"), QJsonArray::fromStringList(m_channel->sdks));
    return QJsonDocument(content).toJson();
}

QString ChannelBuild::makePackage()
{
    PackageParts parts(m_editor.entries());
    const bool newIcons = !m_job.icon.isEmpty() && m_job.platforms.contains(IconSet::Android);
    if (newIcons) {
        QStringList paths;
        for (const PackageIcon& icon : m_base.icons.pictures)
            paths.append(icon.path);
        if (!parts.addMade(channelFile(QStringLiteral("icons/android")), paths))
            return parts.error();
    }
    const QString manifest = channelFile(QStringLiteral("AndroidManifest.xml"));
    const bool changed = QFileInfo::exists(manifest);
    if (changed
        && !parts.addMade(m_places.channel(m_channel->folder), {QStringLiteral("AndroidManifest.xml")}))
        return parts.error();
    for (const QString& sdk : m_channel->sdks) {
        if (!parts.addSdk(sdk, m_places.sdk(sdk)))
            return parts.error();
    }
    if (!m_channel->files.isEmpty() && !parts.addFiles(m_channel->files))
        return parts.error();
    if (!parts.addContent(QByteArrayLiteral("assets/channel.json"), channelContent()))
        return parts.error();
    m_changes = parts.changes();
    if (!m_editor.write(packageFile(), m_changes))
        return m_editor.error();
    if (changed && !QFile::remove(manifest))
        return Build::tr("'%1' cannot be removed").arg(manifest);
    m_outcome.notes = parts.notes();
    if (newIcons) {
        for (const QString& other : m_base.icons.others)
            m_outcome.notes +=
                Build::tr("the icon '%1' is no PNG file and stays that of the base").arg(other);
    }
    m_outcome.replaced = parts.replaced();
    m_outcome.added = parts.added();
    m_outcome.takenOver = m_editor.takenOver();
    return {};
}

QString ChannelBuild::encrypt()
{
    Console console = muteConsole();
    const ScriptOutcome outcome = encryptAssets(console, packageFile(), m_job.exclude);
    m_outcome.notes += console.warnings();
    return outcome.succeeded ? QString() : because(Build::tr("the assets cannot be encrypted"), outcome);
}

QString ChannelBuild::sign()
{
    Console console = muteConsole();
    const JobSigning& signing = *m_job.signing;
    const Verdict verdict =
        ApkSigner().sign(packageFile(), {signing.keystore, signing.password, signing.alias}, console);
    m_outcome.signer = verdict.certificate;
    return verdict.holds ? QString() : Build::tr("the package cannot be signed: %1").arg(verdict.reason);
}

// Holds the package against what was wanted, as those who take it will.
QString ChannelBuild::check()
{
    // One at a time: the next one waits for this one's end.
    m_flush = std::async([file = QFile::encodeName(packageFile())] { startFlush(file); });
    ApkEditor package;
    if (!package.open(packageFile()))
        return package.error();
    // While aapt is at work. The base has been read as a whole; encrypting changes other entries than ours.
    std::future<QString> objection = std::async(
        [this, &package] { return m_channel->encrypt ? package.objection() : package.objection(m_changes); });
    Console console = muteConsole();
    PackageFacts facts;
    QString fault;
    const bool isRead = PackageFacts::read(packageFile(), console, facts, fault);
    const QString found = objection.get();
    if (!isRead || !found.isEmpty())
        return found.isEmpty() ? fault : found;
    const QString name = packageName();
    if (facts.name != name || facts.versionCode != m_base.versionCode)
        return Build::tr("the package calls itself %1, version %2, and not %3, version %4")
            .arg(facts.name, facts.versionCode, name, m_base.versionCode);
    if (facts.icons.pictures.size() != m_base.icons.pictures.size())
        return Build::tr("the package shows other icons than the base");
    m_outcome.packageName = facts.name;
    m_outcome.versionName = facts.versionName;
    m_outcome.size = QFileInfo(packageFile()).size();
    m_outcome.digest = package.digest();
    return {};
}

QString ChannelBuild::exportRecord()
{
    Console console = muteConsole();
    const QString folder = channelFile(QStringLiteral("develop"));
    const ScriptOutcome outcome =
        runTask(console, PYTHON_TOOL_EXPORT_DEVELOP_INFO,
                {{QStringLiteral("idChannel"), m_channel->number}, {QStringLiteral("dest"), folder}},
                Build::tr("exporting"));
    if (outcome.succeeded)
        return {};
    return because(Build::tr("the developer record %1 cannot be exported").arg(m_channel->number), outcome);
}

// Moves what is finished, but for some names.
QString ChannelBuild::cutForOutput(const QStringList& left)
{
    Console console = muteConsole();
    TreeOperation operation(OPERATE_CUT_OUTPUT,
                            {m_places.channel(m_channel->folder), m_places.finished(m_channel->folder)},
                            left);
    if (!operation.run(console))
        return sentenceOf(console.failure());
    if (operation.left().files > 0)
        return Build::tr("not everything could be moved from '%1'").arg(m_places.channel(m_channel->folder));
    return {};
}

// Gives something in the channel's folder its name in the output; false where that is on another file system.
bool ChannelBuild::renameForOutput(const QString& name) const
{
    const QString finished = m_places.finished(m_channel->folder) + QLatin1Char('/') + name;
    return std::rename(QFile::encodeName(channelFile(name)).constData(),
                       QFile::encodeName(finished).constData())
        == 0;
}

// A cut copies, and waits until all that was written to the file system is on the disk, the package too. So
// what a channel consists of gets its new name where it can, the package last, and the cut moves the rest.
QString ChannelBuild::moveToOutput()
{
    QString fault = makeFolder(m_places.finished(m_channel->folder));
    if (!fault.isEmpty())
        return fault;
    for (const QString& name : {QStringLiteral("icons"), QStringLiteral("develop")}) {
        if (!m_job.leave.contains(name, Qt::CaseInsensitive)) // as the cut compares them
            renameForOutput(name);
    }
    const QString package = QFileInfo(packageFile()).fileName();
    fault = cutForOutput(m_job.leave + QStringList(package));
    if (fault.isEmpty() && !renameForOutput(package))
        fault = cutForOutput(m_job.leave);
    return fault;
}

QString ChannelBuild::output()
{
    QString fault = moveToOutput();
    if (!fault.isEmpty()) {
        clearFinished(m_places, m_channel->folder); // the rest of it will not come
        return fault;
    }
    m_outcome.package = m_places.finishedPackage(m_channel->folder);
    for (const int platform : m_job.platforms) {
        const QString icon = m_places.finished(m_channel->folder)
            + (platform == IconSet::Android ? QStringLiteral("/icons/android-icon.png")
                                            : QStringLiteral("/icons/ios/") + IconSet::wholeFile());
        if (QFileInfo::exists(icon))
            m_outcome.icons.append(icon);
    }
    QDir().rmdir(m_places.channel(m_channel->folder)); // unless something is left there
    return {};
}
