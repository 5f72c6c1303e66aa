// SPDX-License-Identifier: MIT
#ifndef MESSAGETAP_H
#define MESSAGETAP_H

#include "window/log/logentry.h"

#include <QtGlobal>

/**
 * Keeps a copy of what goes to Qt's message log while it lives; the handler before gets everything, too.
 *
 * Messages come from every thread, some of them under locks: nothing is done with them here but keeping them.
 */
class MessageTap {
public:
    MessageTap();
    ~MessageTap();
    MessageTap(const MessageTap&) = delete;
    MessageTap& operator=(const MessageTap&) = delete;

    /** Takes what has been kept since the last call, the first of them where it was too much; from any
     * thread. */
    static QVector<LogEntry> take();
};

#endif
