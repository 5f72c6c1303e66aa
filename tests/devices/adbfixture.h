// SPDX-License-Identifier: MIT
#ifndef ADBFIXTURE_H
#define ADBFIXTURE_H

#include "deviceemulator.h"
#include "messagelog.h"
#include "privateadb.h"

#include <installapk.h>

#include <QObject>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

// Generous: other work may load the machine.
#define TRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, 60000)
#define TRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, 60000)

Q_DECLARE_METATYPE(DeviceEmulator::Kind)

/**
 * Tests of the library with the system's adb and aapt and with emulated devices, each with the plain program
 * and with our launcher in the tool folder.
 */
class AdbFixture : public QObject {
    Q_OBJECT

public:
    AdbFixture();

protected Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();

protected:
    /** The protected operations, as a subclass of a host may call them. */
    class Flow : public CInstallApk {
    public:
        using CInstallApk::Install;
        using CInstallApk::InstallReplace;
        using CInstallApk::UnInstall;
    };

    /**
     * Whether the library has a child. Qt takes one that has ended away at once, and tells of it in the event
     * loop, where the next one may be begun: only a few turns without any tell that there is none.
     */
    static bool childAtWork();

    void useTool(bool launcher);
    /** An APK in a folder; empty when it could not be made. */
    static QString makeApk(const QString& folder, int assetMiB = 0);
    static void addTools();
    static void addToolsAndKinds();

    static inline const QString package = QStringLiteral("org.example.emulated");
    std::unique_ptr<PrivateAdb> m_adb;
    std::unique_ptr<MessageLog> m_log;
    QTemporaryDir m_folder;
    QString m_apk;
};

#endif
