// SPDX-License-Identifier: MIT
#include "build/jobtools.h"

#include "build/apktool.h"
#include "build/job.h"
#include "build/manifest.h"
#include "build/zipcontent.h"
#include "scripts/apksigner.h"

#include <algorithm>

JobTools::JobTools(const Job& job)
    : m_job(job)
{
}

bool JobTools::changesManifest(const JobChannel& channel)
{
    return !channel.package.isEmpty()
        || std::any_of(channel.sdks.cbegin(), channel.sdks.cend(),
                       [this](const QString& sdk) { return hasFragment(sdk); });
}

// A package that cannot be read changes nothing here: its import tells what is wrong with it.
bool JobTools::hasFragment(const QString& sdk)
{
    const auto known = m_fragments.constFind(sdk);
    if (known != m_fragments.cend())
        return *known;
    QString fault;
    const QByteArray config =
        contentOfEntry(m_job.sdks.value(sdk).package, QByteArrayLiteral("config.xml"), fault);
    return *m_fragments.insert(sdk, fault.isEmpty() && Manifest::hasFragment(config));
}

std::optional<Failure> JobTools::missing(const QVector<JobChannel>& channels)
{
    if (m_job.signing && !ApkSigner().isInstalled())
        return ApkSigner::missing();
    const bool decodes = std::any_of(channels.cbegin(), channels.cend(),
                                     [this](const JobChannel& channel) { return changesManifest(channel); });
    if (decodes && !ApkTool({}).isInstalled())
        return ApkTool::missing();
    return std::nullopt;
}
