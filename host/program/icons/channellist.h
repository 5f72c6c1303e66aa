// SPDX-License-Identifier: MIT
#ifndef CHANNELLIST_H
#define CHANNELLIST_H

#include <threadgenerateicon.h>

#include <QJsonValue>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/** One entry of a channel list: what the library gets, and the name that people read. */
struct ListedChannel {
    QString name;
    ST_CHANNEL_ICON icon;
    bool givesX = false; ///< whether the list says where the mark goes; otherwise it lies flush in its corner
    bool givesY = false;
    bool losesPlace = false; ///< what it says of that does not count, for want of a corner
};

namespace ChannelList {

/** What the help tells of the file's format. */
QString formatHelp();

/**
 * Reads a channel list and finds all its mistakes.
 *
 * @param path a file; "-" is the standard input
 * @param[out] errors a sentence a mistake; empty when the list can be used
 */
QVector<ListedChannel> read(const QString& path, QStringList& errors);

/** The corner's number for its name or its number from 0 to 4; -1 for every other text or value. */
int cornerOf(const QString& text);
int cornerOf(const QJsonValue& value);

/** Why a text cannot be the name of a folder in another one, as in "is missing or empty"; empty when it can.
 */
QString faultOfName(const QString& name);

/** A whole number of 32 bits; none for every other value. */
std::optional<int> wholeNumber(const QJsonValue& value);

} // namespace ChannelList

#endif
