// SPDX-License-Identifier: MIT
#include "devices/installerrors.h"

#include <QCoreApplication>

#include <algorithm>
#include <initializer_list>

namespace {

struct Meaning {
    const char* code;
    const char* sentence;
};

const std::initializer_list<Meaning> meanings{
    {"ADB_FAILED", QT_TRANSLATE_NOOP("InstallErrors", "adb could not do its work.")},
    {"ADB_MISSING", QT_TRANSLATE_NOOP("InstallErrors", "The program adb is not installed.")},
    {"ADB_TIMEOUT",
     QT_TRANSLATE_NOOP("InstallErrors",
                       "It took too long: is the device connected and unlocked, and "
                       "does it allow debugging by this computer?")},
    {"INSTALL_FAILED_ABORTED",
     QT_TRANSLATE_NOOP("InstallErrors", "The installation was called off, on the device as a rule.")},
    {"INSTALL_FAILED_ALREADY_EXISTS",
     QT_TRANSLATE_NOOP("InstallErrors", "The package is installed already.")},
    {"INSTALL_FAILED_CONFLICTING_PROVIDER",
     QT_TRANSLATE_NOOP("InstallErrors",
                       "Another app on the device has a content provider of the same name.")},
    {"INSTALL_FAILED_DEXOPT",
     QT_TRANSLATE_NOOP("InstallErrors", "The device could not prepare the app's code: often it lacks room.")},
    {"INSTALL_FAILED_DUPLICATE_PERMISSION",
     QT_TRANSLATE_NOOP("InstallErrors", "Another app on the device declares a permission of the same name.")},
    {"INSTALL_FAILED_INSUFFICIENT_STORAGE",
     QT_TRANSLATE_NOOP("InstallErrors", "The device does not have enough room.")},
    {"INSTALL_FAILED_INTERNAL_ERROR",
     QT_TRANSLATE_NOOP("InstallErrors",
                       "The device failed for a reason of its own: often a restart of it helps.")},
    {"INSTALL_FAILED_INVALID_APK",
     QT_TRANSLATE_NOOP("InstallErrors", "The APK is damaged, or the device cannot use what is in it.")},
    {"INSTALL_FAILED_MISSING_FEATURE",
     QT_TRANSLATE_NOOP("InstallErrors", "The device lacks a feature that the APK demands.")},
    {"INSTALL_FAILED_MISSING_SHARED_LIBRARY",
     QT_TRANSLATE_NOOP("InstallErrors", "The device lacks a library that the APK demands.")},
    {"INSTALL_FAILED_NO_MATCHING_ABIS",
     QT_TRANSLATE_NOOP("InstallErrors", "The APK's native code is for other processors than the device's.")},
    {"INSTALL_FAILED_OLDER_SDK",
     QT_TRANSLATE_NOOP("InstallErrors", "The device's Android is older than the APK demands.")},
    {"INSTALL_FAILED_TEST_ONLY",
     QT_TRANSLATE_NOOP("InstallErrors", "The APK is marked for tests only: build it for release.")},
    {"INSTALL_FAILED_UPDATE_INCOMPATIBLE",
     QT_TRANSLATE_NOOP("InstallErrors",
                       "The package is still on the device, signed by another key: for another user "
                       "of it, or as part of the system.")},
    {"INSTALL_FAILED_USER_RESTRICTED",
     QT_TRANSLATE_NOOP("InstallErrors",
                       "The device does not allow installing over USB: see its developer options.")},
    {"INSTALL_FAILED_VERIFICATION_FAILURE",
     QT_TRANSLATE_NOOP("InstallErrors", "The device's app verification refused the APK.")},
    {"INSTALL_FAILED_VERSION_DOWNGRADE",
     QT_TRANSLATE_NOOP("InstallErrors", "A newer version of the package is still on the device.")},
    {"INSTALL_PARSE_FAILED_INCONSISTENT_CERTIFICATES",
     QT_TRANSLATE_NOOP("InstallErrors", "The APK's parts are signed by different keys.")},
    {"INSTALL_PARSE_FAILED_MANIFEST_MALFORMED",
     QT_TRANSLATE_NOOP("InstallErrors", "The APK's manifest has an error.")},
    {"INSTALL_PARSE_FAILED_NO_CERTIFICATES",
     QT_TRANSLATE_NOOP("InstallErrors",
                       "The APK is not signed, or not in a way that the device understands.")},
    {"INSTALL_PARSE_FAILED_NOT_APK", QT_TRANSLATE_NOOP("InstallErrors", "The file is no APK.")},
};

} // namespace

QString InstallErrors::code(const QString& errorKey)
{
    return errorKey.left(errorKey.indexOf(QLatin1Char(':'))).trimmed();
}

QString InstallErrors::sentence(const QString& errorKey)
{
    const QString name = code(errorKey);
    const auto* const found = std::find_if(meanings.begin(), meanings.end(), [&name](const Meaning& meaning) {
        return name == QLatin1String(meaning.code);
    });
    const char* const meaning = found != meanings.end()
        ? found->sentence
        : QT_TRANSLATE_NOOP("InstallErrors", "The device refused the APK.");
    const QString text = QCoreApplication::translate("InstallErrors", meaning);
    const QString explanation = errorKey.mid(name.size() + 1).trimmed();
    return explanation.isEmpty() ? text : text + QStringLiteral(" (%1)").arg(explanation);
}
