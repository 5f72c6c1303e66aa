// SPDX-License-Identifier: MIT
#include "iconpictures.h"
#include "iconscene.h"

#include <QDir>
#include <QtTest>

using namespace IconPictures;

// The arranged icons in packages that other tools make, and ours.
class tst_IconPackages : public QObject, private IconScene {
    Q_OBJECT

private Q_SLOTS:
    void init() { prepareLayouts(); }

    void aaptPackagesTheFolders_data();
    void aaptPackagesTheFolders();
    void iconsReplaceThoseOfAPackage();
    void channelIsPackedOverItsBase();
    void packagesWithoutPicturesAreRefused();
};

void tst_IconPackages::aaptPackagesTheFolders_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("lastIcon");
    QTest::newRow("android-res") << QStringLiteral(
        "android-res") << QByteArray("application-icon-640:'res/mipmap-xxxhdpi-v4/ic_launcher.png'");
    QTest::newRow("android-adaptive")
        << QStringLiteral("android-adaptive") << QByteArray("'res/mipmap-anydpi-v26/ic_launcher.xml'");
}

void tst_IconPackages::aaptPackagesTheFolders()
{
    QFETCH(const QString, name);
    QFETCH(const QByteArray, lastIcon);
    QCOMPARE(icons(oneChannel, layout(name)).error, QByteArray());
    write(path(QStringLiteral("AndroidManifest.xml")),
          R"(<manifest xmlns:android="http://schemas.android.com/apk/res/android" package="com.example.game">
               <application android:icon="@mipmap/ic_launcher" android:hasCode="false"/>
             </manifest>)");
    const auto aapt = [this](const QStringList& arguments) -> QByteArray {
        QProcess process;
        process.setWorkingDirectory(root());
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral("aapt"), arguments);
        if (!process.waitForFinished() || process.exitCode() != 0)
            return "aapt failed: " + process.readAll();
        return process.readAll();
    };
    const QString framework = QStringLiteral(SAMPLE_FRAMEWORK);
    const QByteArray first = aapt(words("package -f -x -F framework.apk -M")
                                  + QStringList{framework + QStringLiteral("/AndroidManifest.xml"),
                                                QStringLiteral("-S"), framework + QStringLiteral("/res")});
    QVERIFY2(!first.startsWith("aapt failed"), first.constData());
    const QByteArray second =
        aapt(words("package -f -M AndroidManifest.xml -S out/a/res -I framework.apk -F game.apk"));
    QVERIFY2(!second.startsWith("aapt failed"), second.constData());
    const QByteArray badging = aapt(words("dump badging game.apk"));
    QVERIFY2(badging.contains(lastIcon), badging.constData());
    for (const char* density : {"120", "160", "240", "320", "480", "640"})
        QVERIFY2(badging.contains("application-icon-" + QByteArray(density) + ":'res/mipmap-"), density);
}

void tst_IconPackages::iconsReplaceThoseOfAPackage()
{
    const QString sample = QStringLiteral(SAMPLE_APK);
    const Ended ended = icons(oneChannel,
                              layout(QStringLiteral("android-res"))
                                  + QStringList{QStringLiteral("--onto"), sample, QStringLiteral("--sheet"),
                                                QStringLiteral("sheet.png")});
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.code, 0);
    QCOMPARE(filesBelow(out()),
             words("a-icon512x512.png a/res/drawable-mdpi-v4/icon.png a/res/drawable-xhdpi-v4/icon.png "
                   "a/res/drawable-xxxhdpi-v4/icon.png"));
    QCOMPARE(quenzo({QStringLiteral("unpack"), sample, QStringLiteral("game")}).code, 0);
    const QImage icon = marked(master(), markPicture(3), 68, -68);
    for (const char* file : {"res/drawable-mdpi-v4/icon.png", "res/drawable-xhdpi-v4/icon.png",
                             "res/drawable-xxxhdpi-v4/icon.png"}) {
        const QImage before(path(QStringLiteral("game/") + QLatin1String(file)));
        QVERIFY2(!before.isNull(), file);
        const QImage now(out(QStringLiteral("a/") + QLatin1String(file)));
        QCOMPARE(now.size(), before.size());
        QCOMPARE(now, scaled(icon, before.width()));
    }
    QVERIFY(!QImage(path(QStringLiteral("sheet.png"))).isNull());
}

void tst_IconPackages::channelIsPackedOverItsBase()
{
    const QString base = QStringLiteral(SAMPLE_APK);
    write(out(QStringLiteral("a/assets/channel.json")), "team's");
    QCOMPARE(icons(oneChannel, words("--layout android-res --onto") + QStringList{base}).error, QByteArray());
    const Ended packed = quenzo(words("pack --onto") + QStringList{base} + words("out/a a.apk"));
    QCOMPARE(packed.error, QByteArray());
    QCOMPARE(packed.code, 0);
    QCOMPARE(quenzo(words("package-name a.apk")).output,
             quenzo({QStringLiteral("package-name"), base}).output);

    QCOMPARE(quenzo({QStringLiteral("unpack"), base, QStringLiteral("before")}).code, 0);
    QCOMPARE(quenzo(words("unpack a.apk after")).code, 0);
    QStringList files = filesBelow(path(QStringLiteral("before"))) + words("assets/channel.json");
    files.sort();
    QCOMPARE(filesBelow(path(QStringLiteral("after"))), files);
    const QString icon = QStringLiteral("res/drawable-xhdpi-v4/icon.png");
    QCOMPARE(contentOf(path(QStringLiteral("after/") + icon)), contentOf(out(QStringLiteral("a/") + icon)));
    QVERIFY(contentOf(path(QStringLiteral("after/") + icon))
            != contentOf(path(QStringLiteral("before/") + icon)));
}

void tst_IconPackages::packagesWithoutPicturesAreRefused()
{
    write(path(QStringLiteral("no.apk")), "no package");
    for (const char* apk : {"no.apk", "absent.apk", "marks"}) {
        const Ended ended = icons(oneChannel,
                                  layout(QStringLiteral("android-res"))
                                      + QStringList{QStringLiteral("--onto"), QLatin1String(apk)});
        QCOMPARE(ended.code, 1);
        QVERIFY2(ended.error.contains("the package '" + QByteArray(apk) + '\''), ended.error.constData());
        QCOMPARE(ended.error.count('\n'), 1);
        QVERIFY(!QFileInfo::exists(out()));
    }
}

QTEST_GUILESS_MAIN(tst_IconPackages)
#include "tst_iconpackages.moc"
