// SPDX-License-Identifier: MIT
#ifndef MESSAGES_H
#define MESSAGES_H

#include <QLoggingCategory>
#include <QString>

/**
 * Writes a debug message under a fixed context, in every build. Hosts and logs know the messages by file,
 * line and function: where a line is a number, it stays whatever becomes of the source.
 *
 * @param file like "QuenzoTool/source/dbhelper"
 */
void writeMessage(const char* file, int line, const char* function, const QString& text);

/**
 * Causes of failures, told by the place that knows them: "quenzo.trees" and so on. A host that has not
 * switched a category on sees nothing of it. Never destroyed: workers may still write while the process
 * leaves main.
 */
const QLoggingCategory& treesLog();
const QLoggingCategory& recordsLog();
const QLoggingCategory& scriptsLog();
const QLoggingCategory& iconsLog();
const QLoggingCategory& devicesLog();

#endif
