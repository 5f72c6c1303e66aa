// SPDX-License-Identifier: MIT
#ifndef MESSAGELOG_H
#define MESSAGELOG_H

#include <QString>
#include <QStringList>
#include <QVector>

struct LoggedMessage {
    QtMsgType type = QtDebugMsg;
    QString text;
    QString file;
    QString function;
    int line = 0;
    QString category;
};

/**
 * Records what goes to Qt's message log, from every thread, while it lives; one at a time. Warnings go on to
 * the handler before, so that a failing test shows them.
 *
 * A test class keeps one from initTestCase() on and lets cleanup() compare takeWarnings() with an empty list.
 */
class MessageLog {
public:
    MessageLog();
    ~MessageLog();
    MessageLog(const MessageLog&) = delete;
    MessageLog& operator=(const MessageLog&) = delete;

    /** Takes every message recorded so far, in order. */
    QVector<LoggedMessage> take();

    /** Takes every message, as texts of those at debug level, but for details of a category. */
    QStringList takeDebugTexts();

    /** Takes every message, as texts of details: the library's categories at debug level. */
    QStringList takeDetails();

    /** Takes every message, as texts of those at info level. */
    QStringList takeInfoTexts();

    /** Takes every message, as texts of the warnings and worse. */
    QStringList takeWarnings();
};

/** Switches a logging category of the library's on while it lives, as a host does that wants the causes. */
class CategoryOn {
public:
    explicit CategoryOn(const char* name);
    ~CategoryOn();
    CategoryOn(const CategoryOn&) = delete;
    CategoryOn& operator=(const CategoryOn&) = delete;
};

#endif
