// SPDX-License-Identifier: MIT
#include "buildscene.h"

#include <QImage>
#include <QJsonDocument>
#include <QProcess>
#include <QtTest>

// Whole runs of a job: what comes out, and what is built again.
class tst_Build : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void everyChannelGetsItsPackage();
    void packagesShowTheirChannelsIcons();
    void unchangedEntriesKeepTheirPackedBytes();
    void whatHasNotChangedIsNotBuiltAgain();
    void changedInputsBuildTheirChannelsOnly_data();
    void changedInputsBuildTheirChannelsOnly();
    void chosenChannelsAreBuiltAlone();
    void chosenChannelsOfASliceAreItsOwn();
    void unknownChannelIsNotBuilt();
    void checkPlansTheChosenChannels_data();
    void checkPlansTheChosenChannels();
    void checkOfAWrongJobFails();
    void anotherSignerBuildsAllAgain();
    void alteredPackageIsBuiltAgain();
    void processesGiveTheSameBytes();
    void slicesGiveTheSameBytes();
    void encryptedPackagesHaveTheSameBytesEachTime();
    void namesThatTheJobLeavesStayInTheWorkFolder();
    void outputOnAnotherFileSystemIsTheSame();
    void developerRecordsAreExported();
    void signedPackagesVerify();
    void reportsAreWritten();
    void jobWithoutIconsLeavesThoseOfTheBase();
    void unalignedBaseGivesAlignedPackages();
    void iconsThatAreNoPngFilesStayAndAreNamed_data();
    void iconsThatAreNoPngFilesStayAndAreNamed();

private:
    using Outcomes = QMap<QString, QString>;
    std::unique_ptr<BuildScene> m_scene;
};

void tst_Build::init()
{
    m_scene = std::make_unique<BuildScene>();
    QVERIFY(m_scene->isValid());
}

void tst_Build::everyChannelGetsItsPackage()
{
    const Ended ended = m_scene->run("--json");
    QVERIFY2(ended.code == 0, QByteArray(ended.error + ended.output).constData());
    QCOMPARE(BuildScene::outcomes(ended),
             (Outcomes{{QStringLiteral("plain"), QStringLiteral("built")},
                       {QStringLiteral("harbor"), QStringLiteral("built")},
                       {QStringLiteral("meadow"), QStringLiteral("built")}}));
    QCOMPARE(
        BuildScene::reportOf(ended, QStringLiteral("meadow")).value(QStringLiteral("packageName")).toString(),
        QStringLiteral("com.quenzo.skyharbour"));
    QCOMPARE(m_scene->entry(QStringLiteral("plain"), QStringLiteral("assets/harbourpay.json")),
             QByteArray("unreadable"));
    QVERIFY(m_scene->entry(QStringLiteral("harbor"), QStringLiteral("assets/harbourpay.json")).contains("{"));
    QCOMPARE(m_scene->entry(QStringLiteral("harbor"), QStringLiteral("config.xml")),
             QByteArray("unreadable"));
    QCOMPARE(m_scene->entry(QStringLiteral("meadow"), QStringLiteral("assets/own.txt")),
             QByteArray("of this channel alone\n"));
    QCOMPARE(m_scene->entry(QStringLiteral("meadow"), QStringLiteral("assets/text/story_en.txt")),
             QByteArray("another story\n"));
    const QJsonObject expected{{QStringLiteral("game"), QStringLiteral("Sky Harbour")},
                               {QStringLiteral("channel"), QStringLiteral("meadow")},
                               {QStringLiteral("name"), QStringLiteral("meadow")},
                               {QStringLiteral("sdks"), QJsonArray{QStringLiteral("pay")}},
                               {QStringLiteral("store"), QStringLiteral("meadow")}};
    QCOMPARE(QJsonDocument::fromJson(
                 m_scene->entry(QStringLiteral("meadow"), QStringLiteral("assets/channel.json")))
                 .object(),
             expected);
    for (const QString& channel :
         {QStringLiteral("plain"), QStringLiteral("harbor"), QStringLiteral("meadow")}) {
        const Ended check =
            QuenzoProcess({QStringLiteral("check"), QStringLiteral("output/%1/%1.apk").arg(channel)},
                          m_scene->path({}))
                .end();
        QVERIFY2(check.code == 0, check.error.constData());
    }
}

void tst_Build::packagesShowTheirChannelsIcons()
{
    QCOMPARE(m_scene->run().code, 0);
    const QString icon = QStringLiteral("res/drawable-xhdpi-v4/icon.png");
    QCOMPARE(QImage::fromData(m_scene->entry(QStringLiteral("plain"), icon)).size(), QSize(96, 96));
    QSet<QByteArray> icons;
    for (const QString& channel :
         {QStringLiteral("plain"), QStringLiteral("harbor"), QStringLiteral("meadow")}) {
        const QByteArray content = m_scene->entry(channel, icon);
        QCOMPARE(content, m_scene->read(QStringLiteral("output/%1/icons/android/%2").arg(channel, icon)));
        icons.insert(content);
    }
    QCOMPARE(icons.size(), 3);
}

void tst_Build::unchangedEntriesKeepTheirPackedBytes()
{
    QVERIFY(QuenzoProcess({QStringLiteral("unpack"), QStringLiteral("base.apk"), QStringLiteral("before")},
                          m_scene->path({}))
                .end()
                .code
            == 0);
    QCOMPARE(m_scene->run().code, 0);
    for (const QString& name :
         {QStringLiteral("AndroidManifest.xml"), QStringLiteral("resources.arsc"),
          QStringLiteral("lib/x86_64/libskyharbour.so"), QStringLiteral("assets/sound/horn.wav")})
        QCOMPARE(m_scene->entry(QStringLiteral("plain"), name),
                 m_scene->read(QStringLiteral("before/") + name));
}

void tst_Build::whatHasNotChangedIsNotBuiltAgain()
{
    QCOMPARE(m_scene->run().code, 0);
    const auto before = m_scene->finished();
    const Ended again = m_scene->run("--json");
    QCOMPARE(again.code, 0);
    QCOMPARE(BuildScene::outcomes(again),
             (Outcomes{{QStringLiteral("plain"), QStringLiteral("unchanged")},
                       {QStringLiteral("harbor"), QStringLiteral("unchanged")},
                       {QStringLiteral("meadow"), QStringLiteral("unchanged")}}));
    QVERIFY(m_scene->finished() == before);
    const Ended forced = m_scene->run("--force --json");
    QCOMPARE(BuildScene::outcomes(forced),
             (Outcomes{{QStringLiteral("plain"), QStringLiteral("built")},
                       {QStringLiteral("harbor"), QStringLiteral("built")},
                       {QStringLiteral("meadow"), QStringLiteral("built")}}));
    QVERIFY(m_scene->finished() == before);
}

void tst_Build::changedInputsBuildTheirChannelsOnly_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("built");
    QFile other(QStringLiteral(SAMPLE "/icons/marks/nimbus/icon/right-bottom.png"));
    QVERIFY(other.open(QIODevice::ReadOnly));
    QTest::newRow("a channel's file")
        << QStringLiteral("own/assets/own.txt") << QByteArray("new") << QStringList{QStringLiteral("meadow")};
    QTest::newRow("a channel's new file") << QStringLiteral("own/assets/more.txt") << QByteArray("new")
                                          << QStringList{QStringLiteral("meadow")};
    QTest::newRow("a mark") << QStringLiteral("marks/harbor/icon/right-bottom.png") << other.readAll()
                            << QStringList{QStringLiteral("harbor")};
    QTest::newRow("a picture of a mark that no channel shows")
        << QStringLiteral("marks/harbor/icon/left-top.png") << QByteArray("none") << QStringList();
}

void tst_Build::changedInputsBuildTheirChannelsOnly()
{
    QFETCH(const QString, file);
    QFETCH(const QByteArray, content);
    QFETCH(const QStringList, built);
    QCOMPARE(m_scene->run().code, 0);
    QVERIFY(m_scene->write(file, content));
    const Ended again = m_scene->run("--json");
    QVERIFY2(again.code == 0, again.error.constData());
    QCOMPARE(BuildScene::outcomes(again).keys(QStringLiteral("built")), built);
}

void tst_Build::chosenChannelsAreBuiltAlone()
{
    const QString harbor = QStringLiteral("harbor");
    const Ended first = m_scene->run("--only harbor --json");
    QVERIFY2(first.code == 0, first.error.constData());
    QCOMPARE(BuildScene::outcomes(first), (Outcomes{{harbor, QStringLiteral("built")}}));
    QVERIFY(!QFileInfo::exists(m_scene->path(QStringLiteral("output/plain"))));
    const Ended all = m_scene->run("--json");
    QCOMPARE(BuildScene::outcomes(all),
             (Outcomes{{QStringLiteral("plain"), QStringLiteral("built")},
                       {harbor, QStringLiteral("unchanged")},
                       {QStringLiteral("meadow"), QStringLiteral("built")}}));
    const auto before = m_scene->finished();
    m_scene->job.insert(QStringLiteral("defaults"),
                        QJsonObject{{QStringLiteral("settings"), QJsonObject{{QStringLiteral("a"), 1}}}});
    const Ended two = m_scene->run("--only harbor --only plain --jobs 2 --json");
    QCOMPARE(
        BuildScene::outcomes(two),
        (Outcomes{{QStringLiteral("plain"), QStringLiteral("built")}, {harbor, QStringLiteral("built")}}));
    const auto after = m_scene->finished();
    const QString meadow = QStringLiteral("meadow/meadow.apk");
    QVERIFY(after.value(meadow) == before.value(meadow));
    QVERIFY(after.value(QStringLiteral("harbor/harbor.apk"))
            != before.value(QStringLiteral("harbor/harbor.apk")));
}

// A slice is the same part of the job whichever channels are chosen, and need not have any of them.
void tst_Build::chosenChannelsOfASliceAreItsOwn()
{
    const QByteArray chosen = " --only harbor --json";
    const Ended without = m_scene->run("--slice 1/2" + chosen);
    QVERIFY2(without.code == 0, without.error.constData());
    QCOMPARE(BuildScene::outcomes(without), Outcomes());
    QVERIFY(m_scene->finished().isEmpty());
    const Ended with = m_scene->run("--slice 2/2" + chosen);
    QVERIFY2(with.code == 0, with.error.constData());
    QCOMPARE(BuildScene::outcomes(with), (Outcomes{{QStringLiteral("harbor"), QStringLiteral("built")}}));
}

void tst_Build::checkPlansTheChosenChannels_data()
{
    QTest::addColumn<QByteArray>("words");
    QTest::addColumn<QStringList>("planned");
    const QString plain = QStringLiteral("plain");
    const QString harbor = QStringLiteral("harbor");
    const QString meadow = QStringLiteral("meadow");
    QTest::newRow("all") << QByteArray() << QStringList{plain, harbor, meadow};
    QTest::newRow("chosen") << QByteArray("--only meadow --only plain") << QStringList{plain, meadow};
    QTest::newRow("a slice") << QByteArray("--slice 1/2") << QStringList{plain, meadow};
    QTest::newRow("chosen of a slice")
        << QByteArray("--slice 1/2 --only plain --only harbor") << QStringList{plain};
    QTest::newRow("a slice without any") << QByteArray("--slice 5/5") << QStringList();
    QTest::newRow("before collecting") << QByteArray("--collect") << QStringList{plain, harbor, meadow};
}

void tst_Build::checkPlansTheChosenChannels()
{
    QFETCH(const QByteArray, words);
    QFETCH(const QStringList, planned);
    const Ended ended = m_scene->run("--check --json " + words);
    QVERIFY2(ended.code == 0, ended.error.constData());
    const QJsonObject plan = ended.result().value(QStringLiteral("plan")).toObject();
    QStringList folders;
    for (const QJsonValue& channel : plan.value(QStringLiteral("channels")).toArray())
        folders.append(channel.toObject().value(QStringLiteral("folder")).toString());
    QCOMPARE(folders, planned);
    QVERIFY(!QFileInfo::exists(m_scene->path(QStringLiteral("output"))));
}

void tst_Build::checkOfAWrongJobFails()
{
    m_scene->job.remove(QStringLiteral("base"));
    const Ended ended = m_scene->run("--check");
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("job.json: /base: "), ended.error.constData());
    QCOMPARE(ended.output, QByteArray());
}

void tst_Build::anotherSignerBuildsAllAgain()
{
    QVERIFY(m_scene->signAtGate() && m_scene->openGate());
    for (const char* const version : {"0.9", "1.0"}) {
        QVERIFY(m_scene->write(QStringLiteral("bin/version"), version));
        QVERIFY2(BuildScene::outcomes(m_scene->run("--json")).keys(QStringLiteral("built")).size() == 3,
                 version);
        QVERIFY2(BuildScene::outcomes(m_scene->run("--json")).keys(QStringLiteral("unchanged")).size() == 3,
                 version);
    }
}

void tst_Build::unknownChannelIsNotBuilt()
{
    const Ended ended = m_scene->run("--only harbor --only harbour");
    QCOMPARE(ended.code, 2);
    QVERIFY2(ended.error.contains("--only: there is no channel 'harbour'"), ended.error.constData());
    QVERIFY(!QFileInfo::exists(m_scene->path(QStringLiteral("output"))));
}

void tst_Build::alteredPackageIsBuiltAgain()
{
    QCOMPARE(m_scene->run().code, 0);
    const auto before = m_scene->finished();
    QVERIFY(m_scene->write(QStringLiteral("output/plain/plain.apk"), "no package"));
    QVERIFY(QFile::remove(m_scene->path(QStringLiteral("output/harbor/harbor.apk"))));
    const Ended again = m_scene->run("--json");
    QCOMPARE(BuildScene::outcomes(again),
             (Outcomes{{QStringLiteral("plain"), QStringLiteral("built")},
                       {QStringLiteral("harbor"), QStringLiteral("built")},
                       {QStringLiteral("meadow"), QStringLiteral("unchanged")}}));
    QVERIFY(m_scene->finished() == before);
}

void tst_Build::processesGiveTheSameBytes()
{
    QCOMPARE(m_scene->run().code, 0);
    const auto alone = m_scene->finished();
    QVERIFY(QDir(m_scene->path(QStringLiteral("output"))).removeRecursively());
    const Ended ended = m_scene->run("--jobs 2 --json");
    QVERIFY2(ended.code == 0, QByteArray(ended.error + ended.output).constData());
    QCOMPARE(BuildScene::outcomes(ended),
             (Outcomes{{QStringLiteral("plain"), QStringLiteral("built")},
                       {QStringLiteral("harbor"), QStringLiteral("built")},
                       {QStringLiteral("meadow"), QStringLiteral("built")}}));
    QVERIFY(m_scene->finished() == alone);
    QVERIFY(!BuildScene::reportOf(ended, QStringLiteral("harbor"))
                 .value(QStringLiteral("steps"))
                 .toArray()
                 .isEmpty());
}

void tst_Build::slicesGiveTheSameBytes()
{
    QCOMPARE(m_scene->run().code, 0);
    const auto alone = m_scene->finished();
    QVERIFY(QDir(m_scene->path(QStringLiteral("output"))).removeRecursively());
    QCOMPARE(BuildScene::outcomes(m_scene->run("--slice 2/2 --json")),
             (Outcomes{{QStringLiteral("harbor"), QStringLiteral("built")}}));
    QCOMPARE(BuildScene::outcomes(m_scene->run("--slice 1/2 --json")),
             (Outcomes{{QStringLiteral("plain"), QStringLiteral("built")},
                       {QStringLiteral("meadow"), QStringLiteral("built")}}));
    QVERIFY(m_scene->finished() == alone);
    QVERIFY(QFileInfo::exists(m_scene->path(QStringLiteral("output/slices/1-of-2/report.json"))));
    QVERIFY(QFileInfo::exists(m_scene->path(QStringLiteral("output/slices/2-of-2/records.db"))));
}

void tst_Build::encryptedPackagesHaveTheSameBytesEachTime()
{
    QJsonObject channel = m_scene->channel(1);
    channel.insert(QStringLiteral("encrypt"), true);
    m_scene->setChannel(1, channel);
    const Ended first = m_scene->run("--json");
    QVERIFY2(first.code == 0, first.error);
    QVERIFY(m_scene->entry(QStringLiteral("harbor"), QStringLiteral("assets/own.txt")) == "unreadable");
    QVERIFY(m_scene->entry(QStringLiteral("harbor"), QStringLiteral("assets/harbourpay.json"))
                .startsWith("QZASSET1"));
    QVERIFY(m_scene->entry(QStringLiteral("plain"), QStringLiteral("assets/channel.json")).startsWith("{"));
    const auto before = m_scene->finished();
    QCOMPARE(m_scene->run("--force").code, 0);
    QVERIFY(m_scene->finished() == before);
}

void tst_Build::namesThatTheJobLeavesStayInTheWorkFolder()
{
    m_scene->job.insert(QStringLiteral("leave"), QJsonArray{QStringLiteral("icons")});
    QCOMPARE(m_scene->run().code, 0);
    QVERIFY(!QFileInfo::exists(m_scene->path(QStringLiteral("output/harbor/icons"))));
    QVERIFY(QFileInfo::exists(m_scene->path(QStringLiteral("output/harbor/harbor.apk"))));
    QVERIFY(QFileInfo::exists(m_scene->path(QStringLiteral("work/channels/harbor/icons/android"))));
}

void tst_Build::outputOnAnotherFileSystemIsTheSame()
{
    QCOMPARE(m_scene->run().code, 0);
    const auto beside = m_scene->finished();
    QVERIFY(QDir(m_scene->path(QStringLiteral("output"))).removeRecursively());
    // Where the system has none in memory it is the same one, and the packages get new names there, too.
    const QString memory = QStringLiteral("/dev/shm");
    const QTemporaryDir elsewhere((QFileInfo(memory).isWritable() ? memory : QDir::tempPath())
                                  + QLatin1String("/quenzo-XXXXXX"));
    QVERIFY(QFile::link(elsewhere.path(), m_scene->path(QStringLiteral("output"))));
    const Ended ended = m_scene->run();
    QVERIFY2(ended.code == 0, ended.error.constData());
    QVERIFY(m_scene->finished() == beside);
    QVERIFY(QDir(m_scene->path(QStringLiteral("work/channels"))).isEmpty());
}

void tst_Build::developerRecordsAreExported()
{
    QJsonObject channel = m_scene->channel(0);
    channel.insert(QStringLiteral("number"), QStringLiteral("101"));
    m_scene->setChannel(0, channel);
    const Ended ended = m_scene->run();
    QVERIFY2(ended.code == 0, ended.error.constData());
    QVERIFY(m_scene->read(QStringLiteral("output/plain/develop/channel_101.json")).contains("101"));
    channel.insert(QStringLiteral("number"), QStringLiteral("999999"));
    m_scene->setChannel(0, channel);
    QCOMPARE(BuildScene::outcomes(m_scene->run("--json")).value(QStringLiteral("plain")),
             QStringLiteral("failed"));
}

void tst_Build::signedPackagesVerify()
{
    if (QStandardPaths::findExecutable(QStringLiteral("apksigner")).isEmpty()
        || QStandardPaths::findExecutable(QStringLiteral("keytool")).isEmpty())
        QSKIP("apksigner and keytool are not installed (group android)");
    QProcess keytool;
    keytool.setWorkingDirectory(m_scene->path({}));
    keytool.start(QStringLiteral("keytool"),
                  {QStringLiteral("-genkeypair"), QStringLiteral("-keystore"), QStringLiteral("release.p12"),
                   QStringLiteral("-storetype"), QStringLiteral("PKCS12"), QStringLiteral("-storepass"),
                   QStringLiteral("secret1"), QStringLiteral("-alias"), QStringLiteral("release"),
                   QStringLiteral("-keyalg"), QStringLiteral("RSA"), QStringLiteral("-keysize"),
                   QStringLiteral("2048"), QStringLiteral("-validity"), QStringLiteral("10000"),
                   QStringLiteral("-dname"), QStringLiteral("CN=Test")});
    QVERIFY(keytool.waitForFinished(60000) && keytool.exitCode() == 0);
    QVERIFY(m_scene->write(QStringLiteral("password"), "secret1\n"));
    m_scene->job.insert(QStringLiteral("signing"),
                        QJsonObject{{QStringLiteral("keystore"), QStringLiteral("release.p12")},
                                    {QStringLiteral("alias"), QStringLiteral("release")},
                                    {QStringLiteral("password"),
                                     QJsonObject{{QStringLiteral("file"), QStringLiteral("password")}}}});
    const Ended ended = m_scene->run("--json");
    QVERIFY2(ended.code == 0, ended.error.constData());
    const QJsonObject report = BuildScene::reportOf(ended, QStringLiteral("harbor"));
    QCOMPARE(report.value(QStringLiteral("signer")).toString().size(), 64);
    const auto before = m_scene->finished();
    QCOMPARE(m_scene->run("--force").code, 0);
    QVERIFY(m_scene->finished() == before);
}

void tst_Build::reportsAreWritten()
{
    QCOMPARE(m_scene->run().code, 0);
    QVERIFY(m_scene->read(QStringLiteral("output/report.html")).contains("Sky Harbour"));
    const QJsonObject report =
        QJsonDocument::fromJson(m_scene->read(QStringLiteral("output/report.json"))).object();
    QCOMPARE(report.value(QStringLiteral("channels")).toArray().size(), 3);
    const QImage sheet(m_scene->path(QStringLiteral("output/sheet-android.png")));
    QVERIFY(!sheet.isNull());
}

void tst_Build::jobWithoutIconsLeavesThoseOfTheBase()
{
    m_scene->job.remove(QStringLiteral("icons"));
    for (const int number : {1, 2}) {
        QJsonObject channel = m_scene->channel(number);
        channel.remove(QStringLiteral("mark"));
        channel.remove(QStringLiteral("corner"));
        m_scene->setChannel(number, channel);
    }
    QVERIFY(QuenzoProcess({QStringLiteral("unpack"), QStringLiteral("base.apk"), QStringLiteral("before")},
                          m_scene->path({}))
                .end()
                .code
            == 0);
    const Ended ended = m_scene->run();
    QVERIFY2(ended.code == 0, ended.error.constData());
    const QString icon = QStringLiteral("res/drawable-xhdpi-v4/icon.png");
    QCOMPARE(m_scene->entry(QStringLiteral("plain"), icon), m_scene->read(QStringLiteral("before/") + icon));
}

void tst_Build::unalignedBaseGivesAlignedPackages()
{
    QCOMPARE(QuenzoProcess({QStringLiteral("unpack"), QStringLiteral("base.apk"), QStringLiteral("game")},
                           m_scene->path({}))
                 .end()
                 .code,
             0);
    QVERIFY(QFile::remove(m_scene->path(QStringLiteral("base.apk"))));
    QVERIFY(m_scene->write(QStringLiteral("zip.py"),
                           "import zipfile, os\n"
                           "apk = zipfile.ZipFile('base.apk', 'w')\n"
                           "apk.writestr('assets/odd', 'x')\n"
                           "for folder, _, names in os.walk('game'):\n"
                           "    for name in sorted(names):\n"
                           "        path = os.path.join(folder, name)\n"
                           "        apk.write(path, os.path.relpath(path, 'game'))\n"
                           "apk.close()\n"));
    QProcess zip;
    zip.setWorkingDirectory(m_scene->path({}));
    zip.start(QStringLiteral(PYTHON2), {QStringLiteral("zip.py")});
    QVERIFY2(zip.waitForFinished() && zip.exitCode() == 0, zip.readAllStandardError().constData());
    const auto check = [this](const QString& package) {
        return QuenzoProcess({QStringLiteral("check"), package}, m_scene->path({})).end();
    };
    const Ended before = check(QStringLiteral("base.apk"));
    const QByteArray told = before.output + before.error;
    QVERIFY2(told.contains("align"), told.constData());
    const Ended ended = m_scene->run();
    QVERIFY2(ended.code == 0, ended.error.constData());
}

void tst_Build::iconsThatAreNoPngFilesStayAndAreNamed_data()
{
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("warning");
    QTest::newRow("adaptive") << QStringLiteral("drawable/icon.xml") << QByteArray("<layers/>")
                              << QByteArray("the base's icon 'res/drawable/icon.xml' is no PNG file");
    QTest::newRow("webp") << QStringLiteral("drawable/icon.webp") << QByteArray("RIFF    WEBPVP8 ")
                          << QByteArray("the base's icon 'res/drawable/icon.webp' is no PNG file");
    QTest::newRow("none") << QString() << QByteArray() << QByteArray("the base shows no icon");
}

void tst_Build::iconsThatAreNoPngFilesStayAndAreNamed()
{
    QFETCH(const QString, icon);
    QFETCH(const QByteArray, content);
    QFETCH(const QByteArray, warning);
    const QByteArray shown = icon.isEmpty() ? QByteArray() : " android:icon=\"@drawable/icon\"";
    QVERIFY(m_scene->write(QStringLiteral("game/AndroidManifest.xml"),
                           "<manifest xmlns:android=\"http://schemas.android.com/apk/res/android\" "
                           "package=\"com.a.game\"><application"
                               + shown + "/></manifest>"));
    QVERIFY(m_scene->write(QStringLiteral("game/res/values/texts.xml"),
                           "<resources><string name=\"title\">Game</string></resources>"));
    if (!icon.isEmpty())
        QVERIFY(m_scene->write(QStringLiteral("game/res/") + icon, content));
    for (const QString& words :
         {QStringLiteral("package -f -x -F framework.apk -M %1/AndroidManifest.xml -S %1/res")
              .arg(QStringLiteral(SAMPLE "/framework")),
          QStringLiteral(
              "package -f -M game/AndroidManifest.xml -S game/res -I framework.apk -F base.apk")}) {
        QProcess aapt;
        aapt.setWorkingDirectory(m_scene->path({}));
        aapt.start(QStringLiteral("aapt"), words.split(QLatin1Char(' ')));
        QVERIFY2(aapt.waitForFinished() && aapt.exitCode() == 0, aapt.readAllStandardError().constData());
    }
    const Ended ended = m_scene->run();
    QVERIFY2(ended.code == 0, ended.error.constData());
    QVERIFY2(ended.error.contains(warning), ended.error.constData());
    if (!icon.isEmpty())
        QCOMPARE(m_scene->entry(QStringLiteral("harbor"), QStringLiteral("res/") + icon),
                 m_scene->entry(QStringLiteral("plain"), QStringLiteral("res/") + icon));
    QVERIFY(QFileInfo::exists(
        m_scene->path(QStringLiteral("output/harbor/icons/android/res/mipmap-xhdpi/ic_launcher.png"))));
    QVERIFY(!m_scene->entry(QStringLiteral("harbor"), QStringLiteral("res/mipmap-xhdpi/ic_launcher.png"))
                 .contains("PNG"));
}

QTEST_GUILESS_MAIN(tst_Build)
#include "tst_build.moc"
