// SPDX-License-Identifier: MIT
#ifndef TREEFILES_H
#define TREEFILES_H

#include <QByteArray>
#include <QDir>
#include <QMap>
#include <QPair>
#include <QString>
#include <QVector>

#include <functional>

/** Files and folders for tests, by the system's own calls: so that names and rights of every kind can be had.
 */
namespace TreeFiles {

/** Writes a file, with the folders above it; ends the test program when that fails. */
void write(const QByteArray& path, const QByteArray& content = "content");
/** Writes files that are named by a beginning and a number from 0 on. */
void writeMany(const QByteArray& beginning, int count, const QByteArray& content = "content");
/** The same with 0, 50, 100, ... bytes in them. */
void writeManySizes(const QByteArray& beginning, int count);
/** Writes into a file, which is made as long as that takes: with a hole before it. */
void writeAt(const QByteArray& path, qint64 offset, const QByteArray& content);
/** Writes a file of two parts with a hole between them. */
void writeSparse(const QByteArray& path);
void makeFolder(const QByteArray& path);
void makeLink(const QByteArray& target, const QByteArray& path);
void setMode(const QByteArray& path, int mode);

/** Names that carelessness with bytes, separators, places to fill in or lengths would break, each after what
 * it is. */
QVector<QPair<QByteArray, QByteArray>> hardNames();

/** The folder as callers of the library name it. */
QDir folder(const QByteArray& path);

QByteArray read(const QByteArray& path);
bool exists(const QByteArray& path);
int mode(const QByteArray& path);

/** Everything below a folder, by path relative to it: "folder", "link" and its target, or "file" and its
 * content. */
QMap<QByteArray, QByteArray> content(const QByteArray& path);

/** The template of a temporary folder in memory where the system has such a place. */
QString quickFolder();

/** The same where large files take their time. */
QString diskFolder();

/** Runs something in a child process, without the privileges of root if the test program has them. */
bool asPlainUser(const std::function<bool()>& work);

} // namespace TreeFiles

#endif
