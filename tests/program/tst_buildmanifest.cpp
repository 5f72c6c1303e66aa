// SPDX-License-Identifier: MIT
#include "buildscene.h"

#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

// Packages whose manifest is not the base's.
class tst_BuildManifest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void packageOfItsOwnIsNamed();
    void baseWithFilesOfAnyKindIsRenamed();
    void fragmentsOfSdksAreMerged();
    void clashingFragmentFailsItsChannelOnly();
    void missingApktoolIsToldBeforeAnythingIsBuilt_data();
    void missingApktoolIsToldBeforeAnythingIsBuilt();
    void channelsThatKeepTheirManifestNeedNoApktool();
    void anotherApktoolBuildsItsChannelsAgain();
    void processesGiveTheSameBytes();
    void resourceNamesLeadNowhere_data();
    void resourceNamesLeadNowhere();

private:
    bool addFragment(const QByteArray& fragment) const;
    QByteArray badgingOf(const QString& channel) const;
    QByteArray manifestOf(const QString& channel) const;
    void rename() const;
    Ended runWithoutApktool(const QByteArray& words) const;

    std::unique_ptr<BuildScene> m_scene;
};

void tst_BuildManifest::init()
{
    if (QStandardPaths::findExecutable(QStringLiteral("apktool")).isEmpty())
        QSKIP("apktool is not installed (group android)");
    m_scene = std::make_unique<BuildScene>();
    QVERIFY(m_scene->isValid());
}

// Makes the job's SDK one that wants something of the manifest.
bool tst_BuildManifest::addFragment(const QByteArray& fragment) const
{
    return m_scene->write(QStringLiteral("sdk/config.xml"),
                          "<sdk id=\"7\" name=\"Pay\" version=\"1\"><manifest "
                          "xmlns:android=\"http://schemas.android.com/apk/res/android\">"
                              + fragment + "</manifest><files><file>assets/pay.txt</file></files></sdk>")
        && m_scene->write(QStringLiteral("sdk/assets/pay.txt"), "pay")
        && QuenzoProcess(QuenzoProcess::words("pack sdk pay.zip"), m_scene->path({})).end().code == 0;
}

QByteArray tst_BuildManifest::badgingOf(const QString& channel) const
{
    QProcess aapt;
    aapt.start(QStringLiteral("aapt"),
               {QStringLiteral("dump"), QStringLiteral("badging"),
                m_scene->path(QStringLiteral("output/%1/%1.apk").arg(channel))});
    return aapt.waitForFinished() ? aapt.readAllStandardOutput() : QByteArray();
}

QByteArray tst_BuildManifest::manifestOf(const QString& channel) const
{
    QProcess aapt;
    aapt.start(QStringLiteral("aapt"),
               {QStringLiteral("dump"), QStringLiteral("xmltree"),
                m_scene->path(QStringLiteral("output/%1/%1.apk").arg(channel)),
                QStringLiteral("AndroidManifest.xml")});
    return aapt.waitForFinished() ? aapt.readAllStandardOutput() : QByteArray();
}

void tst_BuildManifest::packageOfItsOwnIsNamed()
{
    rename();
    const Ended ended = m_scene->run("--json");
    QVERIFY2(ended.code == 0, ended.error.constData());
    QCOMPARE(
        BuildScene::reportOf(ended, QStringLiteral("harbor")).value(QStringLiteral("packageName")).toString(),
        QStringLiteral("com.quenzo.skyharbour.harbor"));
    const QByteArray badging = badgingOf(QStringLiteral("harbor"));
    QVERIFY2(badging.startsWith("package: name='com.quenzo.skyharbour.harbor'"), badging.constData());
    QVERIFY2(badging.contains("application-label:'Sky Harbour'"), badging.constData());
    QVERIFY(badgingOf(QStringLiteral("plain")).startsWith("package: name='com.quenzo.skyharbour'"));
    QVERIFY(!QFileInfo::exists(m_scene->path(QStringLiteral("output/harbor/decoded"))));
}

// Files beside assets and classes, as libraries leave them in a package.
void tst_BuildManifest::baseWithFilesOfAnyKindIsRenamed()
{
    QVERIFY(m_scene->write(QStringLiteral("more/library.properties"), "version=1\n"));
    QVERIFY(m_scene->write(QStringLiteral("more/kotlin/probes.bin"), "probes"));
    QCOMPARE(QuenzoProcess(QuenzoProcess::words("pack more more.apk --onto base.apk"), m_scene->path({}))
                 .end()
                 .code,
             0);
    m_scene->job.insert(QStringLiteral("base"), QStringLiteral("more.apk"));
    rename();
    const Ended ended = m_scene->run();
    QVERIFY2(ended.code == 0, ended.error.constData());
    const QByteArray badging = badgingOf(QStringLiteral("harbor"));
    QVERIFY2(badging.startsWith(
                 "package: name='com.quenzo.skyharbour.harbor' versionCode='12' versionName='1.2.0'"),
             badging.constData());
    QVERIFY2(badging.contains("sdkVersion:'23'\ntargetSdkVersion:'33'\n"), badging.constData());
    QCOMPARE(m_scene->entry(QStringLiteral("harbor"), QStringLiteral("library.properties")),
             QByteArray("version=1\n"));
}

void tst_BuildManifest::fragmentsOfSdksAreMerged()
{
    QVERIFY(
        addFragment("<uses-permission android:name=\"android.permission.CAMERA\"/><application><provider "
                    "android:name=\"pay.P\" android:authorities=\"${applicationId}.pay\"/></application>"));
    const Ended ended = m_scene->run();
    QVERIFY2(ended.code == 0, ended.error.constData());
    QVERIFY(badgingOf(QStringLiteral("harbor")).contains("android.permission.CAMERA"));
    QVERIFY(!badgingOf(QStringLiteral("plain")).contains("android.permission.CAMERA"));
    const QByteArray manifest = manifestOf(QStringLiteral("harbor"));
    QVERIFY2(manifest.contains("\"com.quenzo.skyharbour.pay\""), manifest.constData());
}

void tst_BuildManifest::clashingFragmentFailsItsChannelOnly()
{
    QVERIFY(
        addFragment("<application><activity android:name=\"android.app.NativeActivity\"/></application>"));
    const Ended ended = m_scene->run("--json");
    QCOMPARE(ended.code, 1);
    QCOMPARE(BuildScene::outcomes(ended).value(QStringLiteral("plain")), QStringLiteral("built"));
    QCOMPARE(
        BuildScene::reportOf(ended, QStringLiteral("harbor")).value(QStringLiteral("message")).toString(),
        QStringLiteral(
            "the SDK 'pay' wants another activity 'android.app.NativeActivity' than the manifest has"));
}

// By the search path alone.
Ended tst_BuildManifest::runWithoutApktool(const QByteArray& words) const
{
    const auto process = m_scene->process("--json " + words);
    process->setVariable("PATH", m_scene->path({}));
    return process->end();
}

void tst_BuildManifest::rename() const
{
    QJsonObject channel = m_scene->channel(1);
    channel.insert(QStringLiteral("package"), QStringLiteral("com.quenzo.skyharbour.harbor"));
    m_scene->setChannel(1, channel);
}

void tst_BuildManifest::missingApktoolIsToldBeforeAnythingIsBuilt_data()
{
    QTest::addColumn<bool>("isFragment");
    QTest::addColumn<QByteArray>("words");
    for (const char* const words : {"", "--check"}) {
        QTest::addRow("package of its own %s", words) << false << QByteArray(words);
        QTest::addRow("fragment of an SDK %s", words) << true << QByteArray(words);
    }
}

void tst_BuildManifest::missingApktoolIsToldBeforeAnythingIsBuilt()
{
    QFETCH(const bool, isFragment);
    QFETCH(const QByteArray, words);
    if (isFragment)
        QVERIFY(addFragment("<uses-permission android:name=\"android.permission.CAMERA\"/>"));
    else
        rename();
    const Ended ended = runWithoutApktool(words);
    QCOMPARE(ended.code, 1);
    QCOMPARE(ended.failure().value(QStringLiteral("code")).toString(), QStringLiteral("no-tool"));
    for (const char* const folder : {"work", "output"})
        QVERIFY2(!QFileInfo::exists(m_scene->path(QLatin1String(folder))), folder);
}

void tst_BuildManifest::channelsThatKeepTheirManifestNeedNoApktool()
{
    rename();
    const Ended ended = runWithoutApktool("--only plain --only meadow");
    QVERIFY2(ended.code == 0, ended.error.constData());
    QCOMPARE(BuildScene::outcomes(ended).keys(QStringLiteral("built")).size(), 2);
}

void tst_BuildManifest::anotherApktoolBuildsItsChannelsAgain()
{
    rename();
    // What is installed, under another version.
    const QString standIn = QStringLiteral("bin/apktool");
    QVERIFY(m_scene->write(standIn,
                           "#!/bin/sh\n[ \"$1\" = --version ] && exec cat \"$0.version\"\nexec "
                               + QStandardPaths::findExecutable(QStringLiteral("apktool")).toUtf8()
                               + " \"$@\"\n"));
    QVERIFY(QFile::setPermissions(m_scene->path(standIn), QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    const QStringList renamed{QStringLiteral("harbor")};
    for (const char* const version : {"2.7.0", "2.8.1"}) {
        QVERIFY(m_scene->write(standIn + QStringLiteral(".version"), version));
        const Ended ended = m_scene->run("--json");
        QVERIFY2(ended.code == 0, ended.error.constData());
        QVERIFY2(BuildScene::outcomes(ended).keys(QStringLiteral("built")).contains(renamed.first()),
                 version);
        QCOMPARE(BuildScene::outcomes(ended).keys(QStringLiteral("unchanged")).size(),
                 version == QByteArray("2.7.0") ? 0 : 2);
        const Ended again = m_scene->run("--json");
        QCOMPARE(BuildScene::outcomes(again).keys(QStringLiteral("unchanged")).size(), 3);
    }
}

void tst_BuildManifest::processesGiveTheSameBytes()
{
    QVERIFY(addFragment("<uses-permission android:name=\"android.permission.CAMERA\"/>"));
    QCOMPARE(m_scene->run().code, 0);
    const auto alone = m_scene->finished();
    const Ended ended = m_scene->run("--force --jobs 2");
    QVERIFY2(ended.code == 0, ended.error.constData());
    QVERIFY(m_scene->finished() == alone);
}

void tst_BuildManifest::resourceNamesLeadNowhere_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("other");
    QTest::newRow("a file's") << QByteArray("res/drawable-mdpi-v4/icon.png")
                              << QByteArray("../../../escaped-resource.png");
    QTest::newRow("a kind's") << QByteArray("drawable") << QByteArray("../../es");
    QTest::newRow("a text's") << QByteArray("app_name") << QByteArray("../../es");
}

// Whatever becomes of such a base, nothing of it is written where its names point to.
void tst_BuildManifest::resourceNamesLeadNowhere()
{
    QFETCH(const QByteArray, name);
    QFETCH(const QByteArray, other);
    const auto quenzo = [this](const char* words) {
        return QuenzoProcess(QuenzoProcess::words(words), m_scene->path({})).end().code;
    };
    QCOMPARE(quenzo("unpack base.apk game"), 0);
    QByteArray table = m_scene->read(QStringLiteral("game/resources.arsc"));
    QVERIFY(table.contains(name));
    QCOMPARE(other.size(), name.size()); // else the table is none
    QVERIFY(m_scene->write(QStringLiteral("game/resources.arsc"), table.replace(name, other)));
    QVERIFY(QFile::remove(m_scene->path(QStringLiteral("base.apk"))));
    QCOMPARE(quenzo("pack game base.apk"), 0);
    QVERIFY(QDir(m_scene->path(QStringLiteral("game"))).removeRecursively());
    rename();
    m_scene->job.remove(QStringLiteral("icons"));
    for (const int number : {1, 2}) {
        QJsonObject unmarked = m_scene->channel(number);
        unmarked.remove(QStringLiteral("mark"));
        unmarked.remove(QStringLiteral("corner"));
        m_scene->setChannel(number, unmarked);
    }
    const Ended ended = m_scene->run("--json");
    QCOMPARE(BuildScene::outcomes(ended).value(QStringLiteral("plain")), QStringLiteral("built"));
    QVERIFY(QFileInfo::exists(m_scene->path(QStringLiteral("work/decoded/AndroidManifest.xml"))));
    QDirIterator all(m_scene->path({}), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (all.hasNext())
        QVERIFY2(!QFileInfo(all.next()).fileName().startsWith(QStringLiteral("es")),
                 qPrintable(all.filePath()));
}

QTEST_GUILESS_MAIN(tst_BuildManifest)
#include "tst_buildmanifest.moc"
