// SPDX-License-Identifier: MIT
#ifndef INSTALLFIXTURE_H
#define INSTALLFIXTURE_H

#include "messagelog.h"
#include "scriptedtools.h"

#include <installapk.h>

#include <QObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QVariantList>
#include <QtTest>

#include <memory>

// Generous: other work may load the machine.
#define TRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, 60000)
#define TRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, 60000)

/** Tests of the install flow, with scripted tools and an APK. */
class InstallFixture : public QObject {
    Q_OBJECT

protected Q_SLOTS:
    void init();
    /** Fails on warnings that the test has not taken. */
    void cleanup();

protected:
    /** The protected operations, as a subclass of a host may call them. */
    class Flow : public CInstallApk {
    public:
        using CInstallApk::Install;
        using CInstallApk::InstallReplace;
        using CInstallApk::UnInstall;
    };

    /** What onResult() carries. */
    static QVariantList report(bool success, const char* information, const char* key = "");

    /** The calls of the tools in a whole installation. */
    static QStringList installCalls(const QString& path, const QString& serial = {});

    /**
     * A silent end shows in the next task being served: after it, @p results holds one more report, and no
     * other.
     */
    static void makeIdle(Flow& flow, const QSignalSpy& results);

    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_apk;
};

#endif
