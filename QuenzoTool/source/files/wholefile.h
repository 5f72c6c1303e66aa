// SPDX-License-Identifier: MIT
#ifndef WHOLEFILE_H
#define WHOLEFILE_H

#include <QByteArray>
#include <QString>

/**
 * Writes a file so that its name never stands for half of it, whenever the process dies: the file gets its
 * name once it is whole, and until then the name stays with what had it.
 *
 * A file that is there keeps its rights, and what a link leads to is replaced, or made, rather than the link.
 * Where the file has further names, its folder takes no new files, or its rights cannot be given to another
 * file, it is written in place; what cannot be filled then is emptied.
 *
 * @return why the file could not be written, in the system's words; empty when it is
 */
QString writeWholeFile(const QString& path, const QByteArray& content);

#endif
