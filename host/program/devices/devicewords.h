// SPDX-License-Identifier: MIT
#ifndef DEVICEWORDS_H
#define DEVICEWORDS_H

#include <QString>

/** Words for the flow's command line, which is one text that is split at blanks. */
namespace DeviceWords {

/** Whether Android takes it for one. Another would be split into further words, or be an option. */
bool isPackageName(const QString& name);

/** Keeps a serial with blanks of any kind in one word. */
QString asOneWord(const QString& serial);

} // namespace DeviceWords

#endif
