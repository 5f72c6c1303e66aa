// SPDX-License-Identifier: MIT
#include "icons/channellist.h"

#include "console/standardstreams.h"
#include "icons/iconset.h"
#include "jsonplace.h"
#include "suggestion.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

namespace {

struct Channels {
    Q_DECLARE_TR_FUNCTIONS(Channels)
};

constexpr int longestName = 255; // bytes of a file name
const QLatin1String noMark("None");

// Collects what is wrong with one entry, and names the entry by what is known of it.
class Entry {
public:
    Entry(int index, const QJsonValue& value, QStringList& errors)
        : m_title(Channels::tr("channel %1").arg(index + 1))
        , m_values(value.toObject())
        , m_errors(errors)
    {
        if (!value.isObject())
            complain(Channels::tr("is not an object"));
        const QString folder = m_values.value(QStringLiteral("folder")).toString();
        if (!folder.isEmpty())
            m_title += QStringLiteral(" (\"%1\")").arg(folder);
    }

    void complain(const QString& what) const { m_errors.append(m_title + QStringLiteral(": ") + what); }

    void allowKeys(const QStringList& keys) const
    {
        for (const QString& key : m_values.keys()) {
            if (!keys.contains(key))
                complain(Channels::tr("unknown key \"%1\"; the keys are %2")
                             .arg(key, keys.join(QStringLiteral(", "))));
        }
    }

    QString text(const QString& key, const QString& otherwise) const
    {
        const QJsonValue value = m_values.value(key);
        if (value.isUndefined() || value.isNull())
            return otherwise;
        if (!value.isString())
            complain(Channels::tr("\"%1\" is not a text").arg(key));
        return value.toString();
    }

    // A text that names an entry of a folder, and nothing above or below it.
    QString fileName(const QString& key, const QString& otherwise) const
    {
        QString name = text(key, otherwise);
        const QJsonValue value = m_values.value(key);
        if (!value.isString() && !value.isNull() && !value.isUndefined())
            return {}; // said already
        const QString fault = ChannelList::faultOfName(name);
        if (!fault.isEmpty())
            complain(QStringLiteral("\"%1\" ").arg(key) + fault);
        return name;
    }

    bool gives(const QString& key) const { return m_values.contains(key); }

    int number(const QString& key) const
    {
        const QJsonValue value = m_values.value(key);
        if (value.isUndefined())
            return 0;
        const std::optional<int> number = ChannelList::wholeNumber(value);
        if (!number)
            complain(Channels::tr("\"%1\" is not a whole number of pixels").arg(key));
        return number.value_or(0);
    }

    int corner(const QString& key) const
    {
        const QJsonValue value = m_values.value(key);
        if (value.isUndefined())
            return IconSet::Default;
        const int corner = ChannelList::cornerOf(value);
        if (corner < 0)
            complain(withSuggestion(Channels::tr("\"%1\" is none of %2, nor a number from 0 to 4")
                                        .arg(key, IconSet::cornerNames().join(QStringLiteral(", "))),
                                    likelyMeant(value.toString(), IconSet::cornerNames())));
        return corner;
    }

private:
    QString m_title;
    QJsonObject m_values;
    QStringList& m_errors;
};

ListedChannel channelOf(const Entry& entry)
{
    entry.allowKeys({QStringLiteral("folder"), QStringLiteral("name"), QStringLiteral("mark"),
                     QStringLiteral("corner"), QStringLiteral("x"), QStringLiteral("y")});
    ListedChannel channel;
    channel.icon.strChannelDir = entry.fileName(QStringLiteral("folder"), {});
    channel.icon.strMarkName = entry.fileName(QStringLiteral("mark"), noMark);
    channel.icon.nCorner = entry.corner(QStringLiteral("corner"));
    channel.givesX = entry.gives(QStringLiteral("x"));
    channel.givesY = entry.gives(QStringLiteral("y"));
    channel.losesPlace = !entry.gives(QStringLiteral("corner")) && (channel.givesX || channel.givesY);
    channel.icon.nOffsetX = entry.number(QStringLiteral("x"));
    channel.icon.nOffsetY = entry.number(QStringLiteral("y"));
    channel.name = entry.text(QStringLiteral("name"), channel.icon.strChannelDir);
    return channel;
}

QByteArray contentOf(const QString& path, QString& error)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        return file.readAll();
    error = Channels::tr("%1 cannot be read: %2").arg(path, file.errorString());
    return {};
}

} // namespace

QString ChannelList::formatHelp()
{
    return Channels::tr(
        "CHANNELS.json holds an array with an object a channel:\n"
        "  \"folder\"  the channel's folder in the output folder (required)\n"
        "  \"name\"    what the sheet shows (the folder's name)\n"
        "  \"mark\"    the mark's folder in the marks' folder (none)\n"
        "  \"corner\"  left-top, left-bottom, right-top, right-bottom, default,\n"
        "            or 0 to 4 (default)\n"
        "  \"x\"       the mark's distance from the icon's left edge, in pixels\n"
        "  \"y\"       its height over the icon's top edge: -20 is 20 pixels below it\n"
        "Without \"x\" or \"y\" the mark lies flush in its corner. With the corner \"default\" it "
        "goes where --default-corner, --default-x and --default-y put it, or flush into that "
        "corner. A mark's pictures are MARK/icon/left-top.png and so on.");
}

QVector<ListedChannel> ChannelList::read(const QString& path, QStringList& errors)
{
    const bool isStandardInput = path == QLatin1String("-");
    const QString title = isStandardInput ? Channels::tr("the standard input") : path;
    const QFileInfo found(path);
    if (!isStandardInput && found.exists() && !found.isFile()) {
        errors.append(Channels::tr("%1 is not a regular file").arg(title));
        return {};
    }
    QString error;
    const QByteArray content = isStandardInput ? StandardStreams::readInput(error) : contentOf(path, error);
    if (!error.isEmpty()) {
        errors.append(error);
        return {};
    }
    QJsonParseError fault;
    const QJsonDocument document = QJsonDocument::fromJson(content, &fault);
    if (fault.error != QJsonParseError::NoError) {
        errors.append(Channels::tr("%1 is not JSON: %2 at %3")
                          .arg(title, fault.errorString(), JsonPlace::lineAndColumn(content, fault.offset)));
        return {};
    }
    if (!document.isArray()) {
        errors.append(Channels::tr("%1 does not hold an array of channels").arg(title));
        return {};
    }
    QVector<ListedChannel> channels;
    const QJsonArray values = document.array();
    for (int i = 0; i < values.size(); ++i) {
        const Entry entry(i, values.at(i), errors);
        if (values.at(i).isObject())
            channels.append(channelOf(entry));
    }
    return channels;
}

int ChannelList::cornerOf(const QString& text)
{
    const QStringList names = IconSet::cornerNames();
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (isNumber)
        return number >= 0 && number < names.size() ? number : -1;
    return names.indexOf(text);
}

int ChannelList::cornerOf(const QJsonValue& value)
{
    return cornerOf(value.isDouble() ? QString::number(value.toDouble()) : value.toString());
}

QString ChannelList::faultOfName(const QString& name)
{
    const auto isForbidden = [](QChar letter) {
        return letter == QLatin1Char('/') || letter == QLatin1Char('\\') || letter.unicode() < 0x20;
    };
    if (name.isEmpty())
        return Channels::tr("is missing or empty");
    if (name == QLatin1String(".") || name == QLatin1String(".."))
        return Channels::tr(R"(is "%1", which is no name of a folder)").arg(name);
    if (std::any_of(name.cbegin(), name.cend(), isForbidden))
        return Channels::tr("holds a slash, a backslash or a control character");
    if (!name.isValidUtf16())
        return Channels::tr("holds half of a surrogate pair, which no file name can");
    if (name.toUtf8().size() > longestName)
        return Channels::tr("is longer than %1 bytes").arg(longestName);
    return {};
}

std::optional<int> ChannelList::wholeNumber(const QJsonValue& value)
{
    const double number = value.toDouble(std::numeric_limits<double>::quiet_NaN());
    const bool fits = number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
    if (!fits || static_cast<double>(static_cast<int>(number)) != number)
        return {};
    return static_cast<int>(number);
}
