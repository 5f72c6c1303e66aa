// SPDX-License-Identifier: MIT
#ifndef INSTALLERRORS_H
#define INSTALLERRORS_H

#include <QString>

/** What a device's or our launcher's code for a refused install means. */
namespace InstallErrors {

/** The code proper: what stands before the colon of an error key. */
QString code(const QString& errorKey);

/** A sentence for the person, from the key and what the device explained behind it. */
QString sentence(const QString& errorKey);

} // namespace InstallErrors

#endif
