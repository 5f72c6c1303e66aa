// SPDX-License-Identifier: MIT
#ifndef ZIPNAMES_H
#define ZIPNAMES_H

#include <QByteArray>
#include <QString>
#include <QVector>

/** The names of entries: bytes, "/" between folders and at the end of one. */
namespace ZipNames {

/** What keeps these from being the names of one archive; empty for nothing. */
QString objectionTo(const QVector<QByteArray>& names);

/** Whether an entry is part of a signature, which holds no longer once anything else has changed. */
bool isSignature(const QByteArray& name);

/** Whether a new entry goes in as it is: what Android maps, and what deflating cannot make smaller. */
bool isStored(const QByteArray& name);

bool isUtf8(const QByteArray& name);

/** On one line, for people. */
QString shown(const QByteArray& name);

} // namespace ZipNames

#endif
