// SPDX-License-Identifier: MIT
#include "build/buildinputs.h"

#include "build/filedigest.h"
#include "build/job.h"
#include "icons/iconset.h"
#include "scripts/toolrun.h"

#include <quenzobase.h>
#include <quenzotool.h>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <QStandardPaths>

#include <algorithm>

namespace {

struct Inputs {
    Q_DECLARE_TR_FUNCTIONS(BuildInputs)
};

QByteArray digestOfText(const QByteArray& text)
{
    return QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex();
}

QJsonValue number(const std::optional<int>& pixels)
{
    return pixels ? QJsonValue(*pixels) : QJsonValue();
}

// The files that count besides those of the job, as far as there are any.
QString personalKey()
{
    QString named = qEnvironmentVariable("QUENZO_KEY");
    if (!named.isEmpty())
        return named;
    const QString data = qEnvironmentVariable("XDG_DATA_HOME");
    return (QDir::isAbsolutePath(data) ? data : QDir::homePath() + QStringLiteral("/.local/share"))
        + QStringLiteral("/quenzo/encrypt.key");
}

QByteArray versionOf(Console& console, const QString& program, const QString& word)
{
    return runTool(console, program, {word}, Inputs::tr("asking tools for their versions")).output.toUtf8();
}

} // namespace

BuildInputs::BuildInputs(const Job& job, const QByteArray& base, Console& console)
    : m_job(job)
    , m_console(console)
    , m_needed(job)
    , m_digests{{job.base, base}}
{
    m_tools = QUENZO_VERSION "\n"
        + versionOf(console, QuenzoTool::getToolPath() + QStringLiteral("/aapt"), QStringLiteral("version"));
    if (job.signing)
        m_tools += versionOf(console, QStandardPaths::findExecutable(QStringLiteral("apksigner")),
                             QStringLiteral("--version"));
    const QDir scripts(QuenzoBase::getRunPath() + QStringLiteral("/../Script"));
    for (const QString& script : scripts.entryList({QStringLiteral("*.py"), QStringLiteral("*.json")}))
        m_tools += fileDigest(scripts.filePath(script));
    m_common = commonDigest();
}

// Asked for late: it takes about as long as a small channel, and few jobs decode their base.
QByteArray BuildInputs::apktoolVersion()
{
    if (m_apktool.isEmpty())
        m_apktool =
            digestOfText(versionOf(m_console, QStandardPaths::findExecutable(QStringLiteral("apktool")),
                                   QStringLiteral("--version")));
    return m_apktool;
}

QByteArray BuildInputs::fileDigest(const QString& path)
{
    const auto known = m_digests.constFind(path);
    if (known != m_digests.cend())
        return *known;
    QString fault;
    const QByteArray digest = digestOfFile(path, fault);
    if (!fault.isEmpty()) {
        m_error = Inputs::tr("'%1' cannot be read: %2").arg(path, fault);
        return {};
    }
    return *m_digests.insert(path, digest);
}

QByteArray BuildInputs::folderDigest(const QString& folder)
{
    const auto known = m_digests.constFind(folder);
    if (known != m_digests.cend())
        return *known;
    QStringList files;
    QDirIterator entries(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    QSet<QString> others; // no package takes them, and a pipe would be waited for
    while (entries.hasNext()) {
        const QString path = entries.next();
        files.append(path);
        if (!entries.fileInfo().isFile() || entries.fileInfo().isSymLink())
            others.insert(path);
    }
    std::sort(files.begin(), files.end());
    QByteArray text;
    for (const QString& file : qAsConst(files))
        text += file.mid(folder.size()).toUtf8() + '\0' + (others.contains(file) ? "other" : fileDigest(file))
            + '\n';
    return *m_digests.insert(folder, digestOfText(text));
}

// What every channel of the job has in common.
QByteArray BuildInputs::commonDigest()
{
    QJsonObject values{{QStringLiteral("tools"), QString::fromLatin1(digestOfText(m_tools))},
                       {QStringLiteral("game"), m_job.game},
                       {QStringLiteral("base"), QString::fromLatin1(fileDigest(m_job.base))},
                       {QStringLiteral("leave"), QJsonArray::fromStringList(m_job.leave)},
                       {QStringLiteral("exclude"), QJsonArray::fromStringList(m_job.exclude)}};
    if (!m_job.icon.isEmpty())
        values.insert(QStringLiteral("icon"), QString::fromLatin1(fileDigest(m_job.icon)));
    QJsonArray platforms;
    for (const int platform : m_job.platforms)
        platforms.append(platform);
    values.insert(QStringLiteral("platforms"), platforms);
    const QString records = qEnvironmentVariable("QUENZO_DEVELOP_INFO");
    for (const QString& file : {m_job.key.isEmpty() ? personalKey() : m_job.key, records}) {
        if (QFileInfo(file).isFile())
            values.insert(file == records ? QStringLiteral("records") : QStringLiteral("key"),
                          QString::fromLatin1(fileDigest(file)));
    }
    if (m_job.signing) {
        values.insert(QStringLiteral("keystore"), QString::fromLatin1(fileDigest(m_job.signing->keystore)));
        values.insert(QStringLiteral("alias"), m_job.signing->alias);
    }
    return digestOfText(QJsonDocument(values).toJson(QJsonDocument::Compact));
}

QString BuildInputs::digestOf(const JobChannel& channel)
{
    QJsonObject values{{QStringLiteral("common"), QString::fromLatin1(m_common)},
                       {QStringLiteral("folder"), channel.folder},
                       {QStringLiteral("name"), channel.name},
                       {QStringLiteral("number"), channel.number},
                       {QStringLiteral("package"), channel.package},
                       {QStringLiteral("corner"), channel.corner},
                       {QStringLiteral("x"), number(channel.x)},
                       {QStringLiteral("y"), number(channel.y)},
                       {QStringLiteral("settings"), channel.settings},
                       {QStringLiteral("encrypt"), channel.encrypt}};
    if (!channel.mark.isEmpty()) {
        const QString picture = m_job.marks + QLatin1Char('/') + channel.mark + QLatin1Char('/')
            + IconSet::cornerFile(channel.corner == IconSet::Default ? IconSet::RightBottom : channel.corner);
        values.insert(QStringLiteral("mark"), QString::fromLatin1(fileDigest(picture)));
    }
    QJsonArray sdks;
    for (const QString& name : channel.sdks) {
        const JobSdk sdk = m_job.sdks.value(name);
        sdks.append(QJsonArray{name, sdk.id, QString::fromLatin1(fileDigest(sdk.package))});
    }
    values.insert(QStringLiteral("sdks"), sdks);
    if (m_needed.changesManifest(channel))
        values.insert(QStringLiteral("apktool"), QString::fromLatin1(apktoolVersion()));
    if (!channel.files.isEmpty())
        values.insert(QStringLiteral("files"), QString::fromLatin1(folderDigest(channel.files)));
    if (!m_error.isEmpty())
        return {};
    return QString::fromLatin1(digestOfText(QJsonDocument(values).toJson(QJsonDocument::Compact)));
}
