// SPDX-License-Identifier: MIT
#ifndef FILEIDENTITY_H
#define FILEIDENTITY_H

#include <QPair>
#include <QString>

/** Device and number of a file, links followed: the names of one file, hard links too, have one identity. */
using FileIdentity = QPair<quint64, quint64>;

/** The identity of what a path leads to; zeros when it leads to nothing. */
FileIdentity identityOf(const QString& path);

/**
 * Where writing to a path would put a file: an absolute path without links.
 *
 * Neither the file nor the folders above it need exist; a link may lead to nothing.
 */
QString placeOf(const QString& path);

#endif
