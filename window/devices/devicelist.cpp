// SPDX-License-Identifier: MIT
#include "window/devices/devicelist.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <array>

namespace {

struct StateWords {
    const char* beginning; ///< of adb's word
    const char* text;
    const char* advice;
};

constexpr std::array states{
    StateWords{"unauthorized", QT_TRANSLATE_NOOP("DeviceList", "not authorized"),
               QT_TRANSLATE_NOOP("DeviceList", "Unlock it, and allow debugging by this computer.")},
    StateWords{"authorizing", QT_TRANSLATE_NOOP("DeviceList", "being authorized"),
               QT_TRANSLATE_NOOP("DeviceList", "Wait a moment and refresh the list.")},
    StateWords{"connecting", QT_TRANSLATE_NOOP("DeviceList", "being connected"),
               QT_TRANSLATE_NOOP("DeviceList", "Wait a moment and refresh the list.")},
    StateWords{"offline", QT_TRANSLATE_NOOP("DeviceList", "does not answer"),
               QT_TRANSLATE_NOOP("DeviceList",
                                 "Unplug it and plug it in again; if that does not help, restart it.")},
    StateWords{
        "no permissions", QT_TRANSLATE_NOOP("DeviceList", "not accessible to you"),
        QT_TRANSLATE_NOOP("DeviceList",
                          "Have yourself added to the group plugdev, log in anew, and plug it in again.")},
    StateWords{"recovery", QT_TRANSLATE_NOOP("DeviceList", "in recovery"),
               QT_TRANSLATE_NOOP("DeviceList", "Restart it into Android.")},
    StateWords{"sideload", QT_TRANSLATE_NOOP("DeviceList", "waiting for an update"),
               QT_TRANSLATE_NOOP("DeviceList", "Restart it into Android.")},
    StateWords{"bootloader", QT_TRANSLATE_NOOP("DeviceList", "in its boot loader"),
               QT_TRANSLATE_NOOP("DeviceList", "Restart it into Android.")},
};

const StateWords* wordsOf(const Device& device)
{
    const auto* const found = std::find_if(states.cbegin(), states.cend(), [&device](const StateWords& one) {
        return device.state.startsWith(QLatin1String(one.beginning));
    });
    return found == states.cend() ? nullptr : found;
}

QString translated(const char* text)
{
    return QCoreApplication::translate("DeviceList", text);
}

} // namespace

QVector<Device> DeviceList::parse(const QString& output)
{
    QStringList lines = output.split(QLatin1Char('\n'));
    // Above the heading adb tells how its server came up.
    int line = lines.indexOf(QStringLiteral("List of devices attached")) + 1;
    QVector<Device> devices;
    for (; line > 0 && line < lines.size(); ++line) {
        const int tab = lines.at(line).lastIndexOf(QLatin1Char('\t'));
        if (tab > 0)
            devices.append({lines.at(line).left(tab), lines.at(line).mid(tab + 1).trimmed()});
    }
    return devices;
}

QString DeviceList::stateText(const Device& device)
{
    if (device.isReady())
        return QCoreApplication::translate("DeviceList", "ready");
    const StateWords* const words = wordsOf(device);
    return words ? translated(words->text) : device.state;
}

QString DeviceList::advice(const Device& device)
{
    if (device.isReady())
        return {};
    const StateWords* const words = wordsOf(device);
    return words ? translated(words->advice)
                 : QCoreApplication::translate("DeviceList", "Restart the device and refresh the list.");
}
