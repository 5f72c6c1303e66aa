// SPDX-License-Identifier: MIT
// A channel list is refused with reasons, or holds channels that can be used and come back when they are
// written.
#include "fuzz.h"
#include "icons/channellist.h"
#include "icons/iconset.h"
#include "jsonleak.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

using Fuzz::require;

namespace {

QVector<ListedChannel> listed(const QByteArray& content, QStringList& errors)
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("channels.json"));
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(),
            "the list can be written");
    file.close();
    return ChannelList::read(path, errors);
}

QJsonObject written(const ListedChannel& channel)
{
    QJsonObject object{{QStringLiteral("folder"), channel.icon.strChannelDir},
                       {QStringLiteral("name"), channel.name},
                       {QStringLiteral("mark"), channel.icon.strMarkName}};
    if (!channel.losesPlace)
        object.insert(QStringLiteral("corner"), IconSet::cornerNames().at(channel.icon.nCorner));
    if (channel.givesX)
        object.insert(QStringLiteral("x"), channel.icon.nOffsetX);
    if (channel.givesY)
        object.insert(QStringLiteral("y"), channel.icon.nOffsetY);
    return object;
}

bool isSame(const ListedChannel& one, const ListedChannel& other)
{
    return one.name == other.name && one.icon.strChannelDir == other.icon.strChannelDir
        && one.icon.strMarkName == other.icon.strMarkName && one.icon.nCorner == other.icon.nCorner
        && one.icon.nOffsetX == other.icon.nOffsetX && one.icon.nOffsetY == other.icon.nOffsetY
        && one.givesX == other.givesX && one.givesY == other.givesY && one.losesPlace == other.losesPlace;
}

bool canBeUsed(const ListedChannel& channel)
{
    const ST_CHANNEL_ICON& icon = channel.icon;
    return icon.nCorner >= IconSet::LeftTop && icon.nCorner <= IconSet::Default
        && ChannelList::faultOfName(icon.strChannelDir).isEmpty()
        && ChannelList::faultOfName(icon.strMarkName).isEmpty()
        && !icon.strChannelDir.contains(QLatin1Char('/')) && icon.strChannelDir != QLatin1String("..");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray content(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const JsonLeak leak(content);
    QStringList errors;
    const QVector<ListedChannel> channels = listed(content, errors);
    const QJsonDocument document = QJsonDocument::fromJson(content);
    require(document.isArray() || !errors.isEmpty(), "what is no list is refused");
    require(!errors.contains(QString()), "each mistake is told");
    if (!errors.isEmpty())
        return 0;

    require(channels.size() == document.array().size(), "each entry is a channel");
    QJsonArray array;
    for (const ListedChannel& channel : channels) {
        require(canBeUsed(channel), "names and corners can be used");
        array.append(written(channel));
    }
    const QVector<ListedChannel> again = listed(QJsonDocument(array).toJson(), errors);
    require(errors.isEmpty()
                && std::equal(channels.begin(), channels.end(), again.begin(), again.end(), isSame),
            "a list that is written comes back");
    return 0;
}
