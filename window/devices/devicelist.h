// SPDX-License-Identifier: MIT
#ifndef DEVICELIST_H
#define DEVICELIST_H

#include <QString>
#include <QVector>

/** A device that adb knows, in whatever state. */
struct Device {
    QString serial;
    QString state; ///< adb's word for it

    bool isReady() const { return state == QLatin1String("device"); }
    bool operator==(const Device& other) const { return serial == other.serial && state == other.state; }
};

/** What `adb devices` prints, and what it means. */
namespace DeviceList {

QVector<Device> parse(const QString& output);

/** The state in words of a person. */
QString stateText(const Device& device);

/** What makes it ready; empty when it is. */
QString advice(const Device& device);

} // namespace DeviceList

#endif
