// SPDX-License-Identifier: MIT
#ifndef WHOLESAVE_H
#define WHOLESAVE_H

class QByteArray;
class QString;

/**
 * Writes a file that gets its name when it is whole, over one of that name.
 *
 * @return why there is no such file, a full disk too; empty when there is
 */
QString saveWhole(const QString& path, const QByteArray& content);

#endif
