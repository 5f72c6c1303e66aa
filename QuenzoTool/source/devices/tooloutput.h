// SPDX-License-Identifier: MIT
#ifndef TOOLOUTPUT_H
#define TOOLOUTPUT_H

#include <QString>
#include <QStringList>

/** What the external tools print, read as text: pure functions, apart from whoever runs the tools. */
namespace ToolOutput {

/** What a tool printed, as text. A zero byte does not end it. */
QString text(const QByteArray& bytes);

/** What a tool said, as one line for a person. */
QString gist(const QString& output);

/** The serials of the devices in state device, from what `adb devices` prints. */
QStringList readySerials(QString output);

/** The package name, from what `aapt d badging` prints; empty when there is none. */
QString packageName(const QString& output);

struct InstallOutcome {
    enum Kind {
        Installed,
        Refused, ///< with a code
        Unclear ///< a failure without a code
    };
    Kind kind = Unclear;
    QString code;
};

/** The outcome of `adb install`, from what it prints. The first line is a heading and decides nothing. */
InstallOutcome installOutcome(const QString& output, bool crashed);

/** Whether `adb uninstall` printed a failure. */
bool uninstallFailed(const QString& output);

} // namespace ToolOutput

#endif
