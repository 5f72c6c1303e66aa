// SPDX-License-Identifier: MIT
#ifndef RUNROOT_H
#define RUNROOT_H

#include <QByteArray>
#include <QString>

/** The root that the running test program lives in: the library finds Script, tool and log beside its bin
 * folder. */
namespace RunRoot {

/** The root's absolute path. */
QString path();

/** Empties the folders Script, tool/mac and log, and makes the first two. */
void clear();

/** Writes a file below the root, with its folders, and drops a byte-compiled form of a script. Returns its
 * path. */
QString write(const QString& relativePath, const QByteArray& content);

/** The same for a program: the file can be executed. */
QString writeProgram(const QString& relativePath, const QByteArray& content);

/** The entries of the tool's log, each with its time; empty when there is none. */
QByteArray log();

} // namespace RunRoot

#endif
