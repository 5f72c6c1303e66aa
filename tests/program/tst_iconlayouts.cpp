// SPDX-License-Identifier: MIT
#include "iconpictures.h"
#include "iconscene.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QtTest>

#include <cmath>
#include <csignal>

using namespace IconPictures;

// The icons arranged as packages take them.
class tst_IconLayouts : public QObject, private IconScene {
    Q_OBJECT

private Q_SLOTS:
    void init() { prepareLayouts(); }

    void filesAndSizesAreAsDocumented_data();
    void filesAndSizesAreAsDocumented();
    void sizesOfTheLibraryAreItsOwnFiles();
    void otherSizesAreScaledLikeThem();
    void contentsNameEveryFileAtItsSize();
    void storePictureHasNoTransparency();
    void enlargedStorePictureIsWarnedOf();
    void layersKeepTheIconWithinEveryShape();
    void backgroundCoversItsLayer();
    void nameIsTheIconsOwn();
    void equalChannelsGetEqualFiles();
    void laterChannelOfAFolderStays();
    void filesOfATeamStay();
    void folderIsNotTakenForOwn();
    void sheetShowsTheIcons();
    void nothingStaysBehind();
    void interruptedRunLeavesNothingBehind();
    void whatCannotBeWrittenIsReported();
    void wrongWordsAreRefused_data();
    void wrongWordsAreRefused();
    void iconOfAnotherShapeIsNoAppIcon();
    void secondPictureIsNeverOverwritten();

private:
    // The program's own; Qt may make a folder for the session.
    QStringList filesOnTheWay() const
    {
        return QDir(path(QStringLiteral("tmp"))).entryList(words("quenzo-*"));
    }
};

void tst_IconLayouts::filesAndSizesAreAsDocumented_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::newRow("plain, android") << words("--layout plain --platform android");
    QTest::newRow("plain, ios") << words("--layout plain --platform ios");
    for (const char* name : {"android-res", "android-adaptive", "ios-appiconset"})
        QTest::newRow(name) << layout(QLatin1String(name));
}

void tst_IconLayouts::filesAndSizesAreAsDocumented()
{
    QFETCH(const QStringList, options);
    QVERIFY(photograph(55, 55).scaled(1100, 1100).save(path(QStringLiteral("game.png"))));
    const Ended ended = icons(R"([{"folder": "CHANNEL"}])", options);
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.code, 0);
    QStringList rows;
    for (const QString& file : filesBelow(out())) {
        const QSize size = QImage(out(file)).size();
        const QString pixels = size.isNull() ? QStringLiteral("-")
            : size == QSize(1100, 1100)      ? QStringLiteral("the icon's own")
                                             : QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
        rows.append(QStringLiteral("| `%1` | %2 |").arg(file, pixels));
    }
    const QString page = QString::fromUtf8(contentOf(QStringLiteral(DOCS_FOLDER "/icons.md")));
    const QString section =
        page.section(QStringLiteral("\n### %1\n").arg(QLatin1String(QTest::currentDataTag())), 1, 1)
            .section(QStringLiteral("\n#"), 0, 0);
    QStringList told = section.split(QLatin1Char('\n')).filter(QRegularExpression(QStringLiteral("^\\| `")));
    told.sort();
    rows.sort();
    QVERIFY2(told == rows,
             qPrintable(QStringLiteral("docs/icons.md should say:\n") + rows.join(QLatin1Char('\n'))));
}

void tst_IconLayouts::sizesOfTheLibraryAreItsOwnFiles()
{
    QCOMPARE(icons(oneChannel, {}, QStringLiteral("plain")).code, 0);
    QCOMPARE(icons(oneChannel, layout(QStringLiteral("android-res"))).error, QByteArray());
    const auto compare = [this](const char* plain, const char* arranged) {
        QCOMPARE(contentOf(out(QLatin1String(arranged))), contentOf(path(QLatin1String(plain))));
    };
    compare("plain/a/icon36x36.png", "a/res/mipmap-ldpi/ic_launcher.png");
    compare("plain/a/icon48x48.png", "a/res/mipmap-mdpi/ic_launcher.png");
    compare("plain/a/icon72x72.png", "a/res/mipmap-hdpi/ic_launcher.png");
    compare("plain/a/icon96x96.png", "a/res/mipmap-xhdpi/ic_launcher.png");
    compare("plain/a/icon144x144.png", "a/res/mipmap-xxhdpi/ic_launcher.png");
    compare("plain/a/icon192x192.png", "a/res/mipmap-xxxhdpi/ic_launcher.png");
    compare("plain/a/icon512x512.png", "a-icon512x512.png");
}

void tst_IconLayouts::otherSizesAreScaledLikeThem()
{
    QCOMPARE(icons(oneChannel, layout(QStringLiteral("ios-appiconset"))).code, 0);
    const QImage icon = marked(master(), markPicture(3), 68, -68);
    for (const int side : {20, 29, 58, 60, 167, 180}) {
        const QImage made(out(QStringLiteral("a/AppIcon.appiconset/Icon-%1.png").arg(side)));
        QVERIFY2(made == scaled(icon, side), qPrintable(QStringLiteral("of %1 pixels").arg(side)));
    }
    const QImage store(out(QStringLiteral("a/AppIcon.appiconset/Icon-1024.png")));
    QCOMPARE(store, scaled(icon, 1024).convertToFormat(QImage::Format_RGB32));
}

void tst_IconLayouts::contentsNameEveryFileAtItsSize()
{
    QCOMPARE(icons(oneChannel, layout(QStringLiteral("ios-appiconset"))).code, 0);
    const QString set = out(QStringLiteral("a/AppIcon.appiconset/"));
    const QJsonObject contents =
        QJsonDocument::fromJson(contentOf(set + QStringLiteral("Contents.json"))).object();
    QSet<QString> named{QStringLiteral("Contents.json")};
    QStringList given;
    for (const QJsonValue image : contents.value(QStringLiteral("images")).toArray()) {
        const QString size = image[QStringLiteral("size")].toString();
        const QString scale = image[QStringLiteral("scale")].toString();
        const QString name = image[QStringLiteral("filename")].toString();
        const QString points = size.section(QLatin1Char('x'), 0, 0);
        QCOMPARE(size, QString(points + QLatin1Char('x') + points));
        const int side = qRound(points.toDouble() * scale.left(1).toInt());
        QCOMPARE(QImage(set + name).size(), QSize(side, side));
        named.insert(name);
        given.append(
            QStringList{image[QStringLiteral("idiom")].toString(), points, scale}.join(QLatin1Char(' ')));
    }
    given.sort();
    QStringList expected;
    for (const char* entry :
         {"iphone 20 2x", "iphone 20 3x", "iphone 29 2x", "iphone 29 3x", "iphone 40 2x", "iphone 40 3x",
          "iphone 60 2x", "iphone 60 3x", "ipad 20 1x", "ipad 20 2x", "ipad 29 1x", "ipad 29 2x",
          "ipad 40 1x", "ipad 40 2x", "ipad 76 1x", "ipad 76 2x", "ipad 83.5 2x", "ios-marketing 1024 1x"})
        expected.append(QLatin1String(entry));
    expected.sort();
    QCOMPARE(given, expected);
    const QStringList files = filesBelow(set);
    QCOMPARE(QSet<QString>(files.begin(), files.end()), named);
    QCOMPARE(contents.value(QStringLiteral("info"))[QStringLiteral("version")].toInt(), 1);
}

void tst_IconLayouts::storePictureHasNoTransparency()
{
    QVERIFY(photograph(64, 64, true).scaled(1024, 1024).save(path(QStringLiteral("game.png"))));
    const Ended ended = icons(R"([{"folder": "a"}])", layout(QStringLiteral("ios-appiconset")));
    QCOMPARE(
        ended.error,
        QByteArray("quenzo: the icon has transparent parts, which become white in the store's picture\n"));
    QCOMPARE(ended.code, 0);
    const QImage store(out(QStringLiteral("a/AppIcon.appiconset/Icon-1024.png")));
    QVERIFY(!store.hasAlphaChannel());
    QImage expected(1024, 1024, QImage::Format_RGB32);
    expected.fill(Qt::white);
    QPainter(&expected).drawImage(0, 0, master());
    QCOMPARE(store, expected);
    QVERIFY(QImage(out(QStringLiteral("a/AppIcon.appiconset/Icon-180.png"))).hasAlphaChannel());
}

void tst_IconLayouts::enlargedStorePictureIsWarnedOf()
{
    const Ended ended = icons(oneChannel, layout(QStringLiteral("ios-appiconset")));
    QCOMPARE(ended.code, 0);
    QCOMPARE(ended.error,
             QByteArray("quenzo: the icon has 100x100 pixels, and is enlarged for the store's picture of "
                        "1024x1024\n"));
}

void tst_IconLayouts::layersKeepTheIconWithinEveryShape()
{
    QCOMPARE(icons(oneChannel, layout(QStringLiteral("android-adaptive"))).error, QByteArray());
    const QImage icon = marked(master(), markPicture(3), 68, -68);
    for (const auto& [density, side] :
         {std::pair{"ldpi", 81}, std::pair{"mdpi", 108}, std::pair{"hdpi", 162}, std::pair{"xhdpi", 216},
          std::pair{"xxhdpi", 324}, std::pair{"xxxhdpi", 432}}) {
        const QImage layer(
            out(QStringLiteral("a/res/mipmap-%1/ic_launcher_foreground.png").arg(QLatin1String(density))));
        QCOMPARE(layer.size(), QSize(side, side));
        // The circle of 66 units of 108 that no launcher cuts.
        const double radius = side * 33.0 / 108;
        QRect seen;
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x) {
                if (layer.pixelColor(x, y).alpha() > 0)
                    seen |= QRect(x, y, 1, 1);
            }
        }
        QCOMPARE(seen.width(), seen.height());
        QCOMPARE(seen.left(), side - 1 - seen.right());
        QVERIFY2(std::hypot(side / 2.0 - seen.left(), side / 2.0 - seen.top()) <= radius, density);
        QVERIFY2(seen.width() > radius * std::sqrt(2.0) - 3, "smaller than it need be");
        QCOMPARE(layer.copy(seen).convertToFormat(QImage::Format_RGB32),
                 scaled(icon, seen.width()).convertToFormat(QImage::Format_RGB32));
    }
}

void tst_IconLayouts::backgroundCoversItsLayer()
{
    QImage halves(200, 100, QImage::Format_RGB32);
    halves.fill(Qt::blue);
    QPainter(&halves).fillRect(100, 0, 100, 100, Qt::green);
    QVERIFY(halves.save(path(QStringLiteral("back.png"))));
    QCOMPARE(icons(oneChannel, layout(QStringLiteral("android-adaptive"))).error, QByteArray());
    const QImage layer(out(QStringLiteral("a/res/mipmap-mdpi/ic_launcher_background.png")));
    QCOMPARE(layer.size(), QSize(108, 108));
    for (const int y : {0, 107}) {
        QCOMPARE(layer.pixelColor(0, y), QColor(Qt::blue));
        QCOMPARE(layer.pixelColor(50, y), QColor(Qt::blue));
        QCOMPARE(layer.pixelColor(57, y), QColor(Qt::green));
        QCOMPARE(layer.pixelColor(107, y), QColor(Qt::green));
    }
}

void tst_IconLayouts::nameIsTheIconsOwn()
{
    QCOMPARE(icons(oneChannel, layout(QStringLiteral("android-adaptive")) + words("--name app_icon")).error,
             QByteArray());
    QVERIFY(QFileInfo::exists(out(QStringLiteral("a/res/mipmap-hdpi/app_icon.png"))));
    const QByteArray layers = contentOf(out(QStringLiteral("a/res/mipmap-anydpi-v26/app_icon.xml")));
    QVERIFY2(layers.contains("\"@mipmap/app_icon_foreground\""), layers.constData());
    QVERIFY(QFileInfo::exists(out(QStringLiteral("a/res/mipmap-hdpi/app_icon_foreground.png"))));
    QCOMPARE(icons(oneChannel, words("--layout ios-appiconset --name"), QStringLiteral("Icon")).code, 2);
    QCOMPARE(icons(oneChannel,
                   words("--layout ios-appiconset")
                       + QStringList{QStringLiteral("--name"), QStringLiteral("My Icon")})
                 .code,
             0);
    QVERIFY(QFileInfo::exists(out(QStringLiteral("a/My Icon.appiconset/Contents.json"))));
}

void tst_IconLayouts::equalChannelsGetEqualFiles()
{
    const Ended ended =
        icons(R"([{"folder": "a", "mark": "red"}, {"folder": "b"}, {"folder": "c", "mark": "red"},
                                  {"folder": "d", "mark": "red", "corner": "left-top"}])",
              layout(QStringLiteral("android-res")));
    QCOMPARE(ended.error, QByteArray());
    QVERIFY2(ended.output.startsWith("28 of 28 files in "), ended.output.constData());
    const auto of = [this](const char* folder) {
        return QImage(out(QLatin1String(folder) + QStringLiteral("-icon512x512.png")));
    };
    QCOMPARE(of("a"), marked(master(), markPicture(3), 68, -68));
    QCOMPARE(of("b"), master());
    QCOMPARE(of("c"), of("a"));
    QCOMPARE(of("d"), marked(master(), markPicture(0), 0, 0));
}

void tst_IconLayouts::laterChannelOfAFolderStays()
{
    const Ended ended = icons(R"([{"folder": "a"}, {"folder": "a", "mark": "red"}, {"folder": "b"}])",
                              layout(QStringLiteral("android-res")));
    QCOMPARE(ended.error,
             QByteArray("quenzo: the folder 'a' is given twice; the later channel's icons stay\n"));
    QCOMPARE(QImage(out(QStringLiteral("a-icon512x512.png"))), marked(master(), markPicture(3), 68, -68));
    QCOMPARE(QImage(out(QStringLiteral("b-icon512x512.png"))), master());
}

void tst_IconLayouts::filesOfATeamStay()
{
    write(out(QStringLiteral("a/assets/channel.json")), "team's");
    write(out(QStringLiteral("a/res/mipmap-mdpi/other.png")), "team's");
    write(out(QStringLiteral("a/res/mipmap-mdpi/ic_launcher.png")), "old");
    write(out(QStringLiteral("notes")), "team's");
    for (int i = 0; i < 2; ++i) {
        const Ended ended = icons(oneChannel, layout(QStringLiteral("android-res")));
        QCOMPARE(ended.error, QByteArray());
        QCOMPARE(ended.code, 0);
        QCOMPARE(filesBelow(out()).size(), 7 + 3);
        for (const char* file : {"a/assets/channel.json", "a/res/mipmap-mdpi/other.png", "notes"})
            QCOMPARE(contentOf(out(QLatin1String(file))), QByteArray("team's"));
        QCOMPARE(QImage(out(QStringLiteral("a/res/mipmap-mdpi/ic_launcher.png"))).size(), QSize(48, 48));
    }
}

void tst_IconLayouts::folderIsNotTakenForOwn()
{
    QCOMPARE(icons(oneChannel, layout(QStringLiteral("android-res"))).code, 0);
    QVERIFY(!QFileInfo::exists(out(marker())));
    const Ended plain = icons(oneChannel);
    QCOMPARE(plain.code, 1);
    QVERIFY2(plain.error.contains("is not empty, and no earlier run has made it"), plain.error.constData());
    QCOMPARE(filesBelow(out()).size(), 7);
}

void tst_IconLayouts::sheetShowsTheIcons()
{
    for (const char* name : {"android-res", "android-adaptive"}) {
        QCOMPARE(icons(oneChannel, layout(QLatin1String(name)) + words("--sheet sheet.png")).error,
                 QByteArray());
        const QImage sheet(path(QStringLiteral("sheet.png")));
        QCOMPARE(sheet.copy(20, 44, 144, 144).convertToFormat(QImage::Format_RGB32),
                 QImage(out(QStringLiteral("a/res/mipmap-xxhdpi/ic_launcher.png")))
                     .convertToFormat(QImage::Format_RGB32));
    }
}

void tst_IconLayouts::nothingStaysBehind()
{
    QVERIFY(QDir().mkpath(path(QStringLiteral("tmp"))));
    write(path(QStringLiteral("channels.json")), oneChannel);
    QuenzoProcess process(arguments(layout(QStringLiteral("android-res"))), root());
    process.setVariable("TMPDIR", path(QStringLiteral("tmp")));
    QCOMPARE(process.end().code, 0);
    QCOMPARE(filesOnTheWay(), QStringList());
}

void tst_IconLayouts::interruptedRunLeavesNothingBehind()
{
    QVERIFY(QDir().mkpath(path(QStringLiteral("tmp"))));
    QVERIFY(photograph(300, 300).scaled(2500, 2500).save(path(QStringLiteral("game.png")), nullptr, 100));
    write(path(QStringLiteral("channels.json")), oneChannel);
    QuenzoProcess process(arguments(layout(QStringLiteral("ios-appiconset"))), root());
    process.setVariable("TMPDIR", path(QStringLiteral("tmp")));
    process.start();
    QVERIFY(process.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(!filesOnTheWay().isEmpty(), 20000);
    kill(static_cast<pid_t>(process.processId()), SIGINT);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(filesOnTheWay(), QStringList());
}

void tst_IconLayouts::whatCannotBeWrittenIsReported()
{
    write(out(QStringLiteral("a/res/mipmap-hdpi")), "in the way of a folder");
    QVERIFY(QDir().mkpath(out(QStringLiteral("a/res/mipmap-mdpi/ic_launcher.png"))));
    const Ended ended = icons(R"([{"folder": "a"}, {"folder": "b"}])", layout(QStringLiteral("android-res")));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.output.startsWith("12 of 14 files in "), ended.output.constData());
    for (const char* text :
         {"/a/res/mipmap-hdpi/ic_launcher.png was not written: the folder could not be made: ",
          "/a/res/mipmap-mdpi/ic_launcher.png was not written: what is there is no regular file\n",
          "not written: 2 of 14 files\n"})
        QVERIFY2(ended.error.contains(text), ended.error.constData());
    QCOMPARE(contentOf(out(QStringLiteral("a/res/mipmap-hdpi"))), QByteArray("in the way of a folder"));
}

void tst_IconLayouts::wrongWordsAreRefused_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("error");
    const auto row = [](const char* options, const char* error) {
        QTest::newRow(options) << words(options) << QByteArray(error);
    };
    row("--layout res", "--layout: 'res' is none of plain, android-res, android-adaptive, ios-appiconset");
    row("--layout plian --platform ios",
        "--layout: 'plian' is none of plain, android-res, android-adaptive, "
        "ios-appiconset; did you mean 'plain'?");
    row("--platform andriod", "--platform: 'andriod' is none of android, ios; did you mean 'android'?");
    row("--platform ios --default-corner rihgt-top",
        "--default-corner: 'rihgt-top' is none of left-top, left-bottom, right-top, right-bottom; "
        "did you mean 'right-top'?");
    row("--layout android-res --platform ios", "--layout android-res is for the platform android");
    row("--layout ios-appiconset --platform android", "--layout ios-appiconset is for the platform ios");
    row("--layout android-res --background back.png", "--background belongs to the layout android-adaptive");
    row("--layout android-adaptive --background back.png --onto game.apk",
        "--onto belongs to the layout android-res, and takes the names from the package");
    row("--layout android-res --name icon --onto game.apk",
        "--onto belongs to the layout android-res, and takes the names from the package");
    row("--layout android-res --clear", "--clear belongs to the layout plain; the others delete nothing");
    row("--platform android --name icon", "--name belongs to the other layouts than plain");
    row("--layout android-res --name Icon", "no icon of a package can be named 'Icon'");
    row("--layout android-res --name 1icon", "no icon of a package can be named '1icon'");
    row("--layout android-res --name a/b", "no icon of a package can be named 'a/b'");
    row("--layout ios-appiconset --name ../b", "no icon of a package can be named '../b'");
}

void tst_IconLayouts::wrongWordsAreRefused()
{
    QFETCH(const QStringList, options);
    QFETCH(const QByteArray, error);
    const Ended ended = icons(oneChannel, options);
    QCOMPARE(ended.code, 2);
    QCOMPARE(ended.error, "quenzo: " + error + " (see quenzo icons --help)\n");
    QVERIFY(!QFileInfo::exists(out()));
}

void tst_IconLayouts::iconOfAnotherShapeIsNoAppIcon()
{
    QVERIFY(photograph(100, 50).save(path(QStringLiteral("game.png"))));
    const Ended refused = icons(R"([{"folder": "a"}])", layout(QStringLiteral("ios-appiconset")));
    QCOMPARE(refused.code, 1);
    QCOMPARE(refused.error,
             QByteArray("quenzo: the icon has 100x50 pixels, and an app icon set takes a square one\n"));
    QVERIFY(!QFileInfo::exists(out()));
    QCOMPARE(icons(R"([{"folder": "a"}])", layout(QStringLiteral("android-res"))).error, QByteArray());
    QCOMPARE(QImage(out(QStringLiteral("a/res/mipmap-mdpi/ic_launcher.png"))).size(), QSize(48, 24));
}

void tst_IconLayouts::secondPictureIsNeverOverwritten()
{
    QVERIFY(QDir().mkpath(out(QStringLiteral("a/res/mipmap-mdpi"))));
    const QString back = out(QStringLiteral("a/res/mipmap-mdpi/ic_launcher.png"));
    QVERIFY(QFile::copy(path(QStringLiteral("back.png")), back));
    const Ended ended = icons(oneChannel,
                              QStringList{QStringLiteral("--layout"), QStringLiteral("android-adaptive"),
                                          QStringLiteral("--background"), back});
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("the background '"), ended.error.constData());
    QVERIFY2(ended.error.contains("is one of the files to be written"), ended.error.constData());
    QCOMPARE(contentOf(back), contentOf(path(QStringLiteral("back.png"))));
}

QTEST_GUILESS_MAIN(tst_IconLayouts)
#include "tst_iconlayouts.moc"
