// SPDX-License-Identifier: MIT
#include "messages.h"

namespace {

// QLoggingCategory has no threshold above this one: nothing is on but what a filter or a rule switches on.
constexpr QtMsgType nothing = QtFatalMsg;

} // namespace

// Past QDebug: its text stream would cost more than all the work that some messages are about.
void writeMessage(const char* file, int line, const char* function, const QString& text)
{
    qt_message_output(QtDebugMsg, {file, line, function, "default"}, text);
}

const QLoggingCategory& treesLog()
{
    static const auto& category = *new QLoggingCategory("quenzo.trees", nothing);
    return category;
}

const QLoggingCategory& recordsLog()
{
    static const auto& category = *new QLoggingCategory("quenzo.records", nothing);
    return category;
}

const QLoggingCategory& scriptsLog()
{
    static const auto& category = *new QLoggingCategory("quenzo.scripts", nothing);
    return category;
}

const QLoggingCategory& iconsLog()
{
    static const auto& category = *new QLoggingCategory("quenzo.icons", nothing);
    return category;
}

const QLoggingCategory& devicesLog()
{
    static const auto& category = *new QLoggingCategory("quenzo.devices", nothing);
    return category;
}
