// SPDX-License-Identifier: MIT
#include "iconpictures.h"
#include "iconrun.h"
#include "messagelog.h"

#include <QColorSpace>
#include <QProcess>
#include <QtTest>

#include <memory>
#include <sys/resource.h>

using namespace IconPictures;
using namespace IconRun;

// Which pictures ThreadGenerateIcon makes.
class tst_ThreadGenerateIcon : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_log = std::make_unique<MessageLog>(); }
    void cleanup() { QCOMPARE(m_log->takeWarnings(), QStringList()); }

    void everyFileIsAsQtAloneMakesIt_data();
    void everyFileIsAsQtAloneMakesIt();
    void manyChannelsAreAsOneByOne();
    void cornerChoosesThePicture_data();
    void cornerChoosesThePicture();
    void heightIsCountedUpwards();
    void markReachingOverTheEdgeIsCut_data();
    void markReachingOverTheEdgeIsCut();
    void onlyExactlyNoneSuppressesTheMark();
    void everyOtherPlatformIsIos_data();
    void everyOtherPlatformIsIos();
    void unscaledFileKeepsItsNameAtAnySize();
    void oblongIconKeepsItsShape();
    void markKeepsItsColoursOnAPalette_data();
    void markKeepsItsColoursOnAPalette();
    void noMarkSurvivesIntoTheNextChannel();
    void laterChannelOfAFolderWins_data();
    void laterChannelOfAFolderWins();
    void sameObjectRunsAgain();
    void picturesAreReadAnewInEachRun();
    void iconInAChannelFolderIsReplacedForTheNext();
    void iconThatTakesItsTimeIsAwaited();
    void brokenIconGivesFoldersWithoutFiles();
    void missingOrBrokenMarkLeavesTheIconUnmarked();
    void pipeIsNoPicture();
    void memoryStaysFlat();

private:
    std::unique_ptr<MessageLog> m_log;
};

void tst_ThreadGenerateIcon::everyFileIsAsQtAloneMakesIt_data()
{
    QTest::addColumn<QImage>("master");
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QByteArray>("format");
    const QImage rgb = photograph(200, 200);
    const QImage rgba = photograph(200, 200, true);
    const auto row = [](const char* title, const QImage& master, const char* fileName = "game.png",
                        const char* format = "PNG") {
        QTest::newRow(title) << master << QString::fromUtf8(fileName) << QByteArray(format);
    };
    row("rgb", rgb);
    row("rgba", rgba);
    row("grey", rgb.convertToFormat(QImage::Format_Grayscale8));
    row("palette", rgb.convertToFormat(QImage::Format_Indexed8));
    row("palette with transparent entries", rgba.convertToFormat(QImage::Format_Indexed8));
    row("black and white", rgb.convertToFormat(QImage::Format_Mono));
    row("16-bit rgb", rgb.convertToFormat(QImage::Format_RGBX64));
    row("16-bit rgba", rgba.convertToFormat(QImage::Format_RGBA64));
    row("16-bit grey", rgb.convertToFormat(QImage::Format_Grayscale16));
    row("jpeg", rgb, "game.jpg", "JPG");
    row("grey jpeg", rgb.convertToFormat(QImage::Format_Grayscale8), "game.jpg", "JPG");
    row("jpeg named png", rgb, "game.png", "JPG");
    row("bmp", rgb, "game.bmp", "BMP");
    row("premultiplied format", rgba.convertToFormat(QImage::Format_ARGB32_Premultiplied));
    row("wide", photograph(300, 100));
    row("tall with alpha", photograph(90, 333, true));
    row("line", photograph(200, 1));
    row("smaller than every size", photograph(16, 16, true));
    row("one pixel", photograph(1, 1));
    row("double density name", rgba, "game@2x.png");
    row("triple density name", rgb.convertToFormat(QImage::Format_Indexed8), "game@3x.png");
    QImage described = photograph(128, 128);
    described.setDotsPerMeterX(3000);
    described.setDotsPerMeterY(4000);
    described.setText(QStringLiteral("Copyright"), QStringLiteral("the studio"));
    described.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    row("density, text and colour space", described);
}

void tst_ThreadGenerateIcon::everyFileIsAsQtAloneMakesIt()
{
    QFETCH(QImage, master);
    QFETCH(QString, fileName);
    QFETCH(QByteArray, format);
    Job job;
    job.icon = job.path(fileName);
    job.writePicture(job.icon, master, format.constData());
    QImage loaded(job.icon);
    loaded.setDevicePixelRatio(1);
    const QImage withMark = marked(loaded, job.markPicture("red", 2), 5, -11);
    for (const int platform : {android, ios}) {
        job.run({channel("None", "plain"), channel("red", "red", 2, 5, -11)}, platform);
        QCOMPARE(differencesFrom(loaded, job.out(QStringLiteral("plain")), platform), QString());
        QCOMPARE(differencesFrom(withMark, job.out(QStringLiteral("red")), platform), QString());
    }
}

void tst_ThreadGenerateIcon::manyChannelsAreAsOneByOne()
{
    Job job;
    job.writePicture(job.icon, photograph(256, 64));
    QList<ST_CHANNEL_ICON> channels;
    for (int i = 0; i < 60; ++i) {
        const QByteArray folder = "c" + QByteArray::number(i);
        channels.append(channel(i % 3 == 0       ? "None"
                                    : i % 3 == 1 ? "red"
                                                 : "blue",
                                folder.constData(), i % 4, i % 8, i % 5));
    }
    job.run(channels);
    const QImage icon(job.icon);
    for (const ST_CHANNEL_ICON& one : qAsConst(channels)) {
        const QByteArray mark = one.strMarkName.toUtf8();
        const QImage expected = mark == "None"
            ? icon
            : marked(icon, job.markPicture(mark.constData(), one.nCorner), one.nOffsetX, one.nOffsetY);
        QCOMPARE(differencesFrom(expected, job.out(one.strChannelDir), android), QString());
    }
}

void tst_ThreadGenerateIcon::cornerChoosesThePicture_data()
{
    QTest::addColumn<int>("corner");
    QTest::addColumn<int>("defaultCorner");
    QTest::addColumn<int>("picture");
    QTest::addColumn<bool>("atDefaultPosition");
    QTest::newRow("left top") << 0 << 1 << 0 << false;
    QTest::newRow("left bottom") << 1 << 0 << 1 << false;
    QTest::newRow("right top") << 2 << 0 << 2 << false;
    QTest::newRow("right bottom") << 3 << 0 << 3 << false;
    QTest::newRow("default is left top") << 4 << 0 << 0 << true;
    QTest::newRow("default is right top") << 4 << 2 << 2 << true;
    QTest::newRow("default of default is right bottom") << 4 << 4 << 3 << true;
    QTest::newRow("unknown default is right bottom") << 4 << 9 << 3 << true;
    QTest::newRow("unknown is right bottom at its own position") << 7 << 0 << 3 << false;
    QTest::newRow("negative is right bottom at its own position") << -1 << 0 << 3 << false;
}

void tst_ThreadGenerateIcon::cornerChoosesThePicture()
{
    QFETCH(int, corner);
    QFETCH(int, defaultCorner);
    QFETCH(int, picture);
    QFETCH(bool, atDefaultPosition);
    Job job;
    job.defaultCorner = defaultCorner;
    job.run({channel("red", "a", corner, 30, -40)});
    const QImage mark = job.markPicture("red", picture);
    const QImage expected =
        atDefaultPosition ? marked(QImage(job.icon), mark, 7, -9) : marked(QImage(job.icon), mark, 30, -40);
    QVERIFY2(job.produced("a") == expected, "another picture or position");
}

void tst_ThreadGenerateIcon::heightIsCountedUpwards()
{
    Job job;
    job.run({channel("red", "down", 0, 0, -100), channel("red", "up", 0, 0, 20)});
    const QImage icon(job.icon);
    QCOMPARE(job.produced("down").copy(0, 0, 256, 100), icon.copy(0, 0, 256, 100));
    QVERIFY(job.produced("down").copy(0, 100, 48, 48) != icon.copy(0, 100, 48, 48));
    QVERIFY(job.produced("up").copy(0, 0, 48, 28) != icon.copy(0, 0, 48, 28));
    QCOMPARE(job.produced("up").copy(0, 28, 256, 228), icon.copy(0, 28, 256, 228));
}

void tst_ThreadGenerateIcon::markReachingOverTheEdgeIsCut_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::newRow("over the left top") << -20 << 20;
    QTest::newRow("over the right bottom") << 240 << -240;
    QTest::newRow("few columns left") << 250 << 0;
    QTest::newRow("just outside") << 256 << 0;
    QTest::newRow("just outside on the left") << -48 << 0;
    QTest::newRow("just outside below") << 0 << -256;
    QTest::newRow("far outside") << 1000000 << 1000000;
    QTest::newRow("the largest values") << std::numeric_limits<int>::max() << std::numeric_limits<int>::max();
    QTest::newRow("the smallest values")
        << std::numeric_limits<int>::min() << std::numeric_limits<int>::min();
}

void tst_ThreadGenerateIcon::markReachingOverTheEdgeIsCut()
{
    QFETCH(int, x);
    QFETCH(int, y);
    Job job;
    job.run({channel("red", "a", 0, x, y)});
    const QImage icon(job.icon);
    const bool inside = qAbs(qint64(x)) < 256 && qAbs(qint64(y)) < 256 && x > -48;
    const QImage expected = inside ? marked(icon, job.markPicture("red", 0), x, y) : icon;
    QCOMPARE(expected == icon, !inside);
    QVERIFY(job.produced("a") == expected);
}

void tst_ThreadGenerateIcon::onlyExactlyNoneSuppressesTheMark()
{
    Job job;
    const QImage icon(job.icon);
    for (const char* name : {"none", "None"})
        job.writePicture(job.markPath(QString::fromUtf8(name), QStringLiteral("left-top")),
                         mark(60, Qt::green));
    job.run({channel("none", "small"), channel("None", "exact")});
    QVERIFY(job.produced("small") == marked(icon, mark(60, Qt::green), 0, 0));
    QVERIFY(job.produced("exact") == icon);
}

void tst_ThreadGenerateIcon::everyOtherPlatformIsIos_data()
{
    QTest::addColumn<int>("platform");
    QTest::newRow("1") << 1;
    QTest::newRow("2") << 2;
    QTest::newRow("-1") << -1;
}

void tst_ThreadGenerateIcon::everyOtherPlatformIsIos()
{
    QFETCH(int, platform);
    Job job;
    job.run({channel("None", "a")}, platform);
    QCOMPARE(job.filesIn(QStringLiteral("a")), namesOf(ios));
}

void tst_ThreadGenerateIcon::unscaledFileKeepsItsNameAtAnySize()
{
    Job job;
    job.writePicture(job.icon, photograph(1024, 1024));
    job.run({channel("None", "a")});
    QCOMPARE(job.produced("a").size(), QSize(1024, 1024));
}

void tst_ThreadGenerateIcon::oblongIconKeepsItsShape()
{
    Job job;
    job.writePicture(job.icon, photograph(512, 256));
    job.run({channel("None", "a")});
    QCOMPARE(QImage(job.out(QStringLiteral("a/icon192x192.png"))).size(), QSize(192, 96));
    QCOMPARE(job.produced("a").size(), QSize(512, 256));
}

void tst_ThreadGenerateIcon::markKeepsItsColoursOnAPalette_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QImage::Format>("loadedAs");
    QTest::addColumn<QColor>("ground");
    const auto row = [](const char* title, const char* format, QImage::Format loadedAs,
                        const QColor& ground) {
        QTest::newRow(title) << QByteArray(format) << loadedAs << ground;
    };
    row("black and white", "PNG", QImage::Format_Mono, Qt::white);
    row("two colours", "PNG", QImage::Format_Mono, Qt::darkCyan);
    row("one of two transparent", "PNG", QImage::Format_Mono, Qt::transparent);
    row("least bit first", "XBM", QImage::Format_MonoLSB, Qt::white);
    row("palette", "PNG", QImage::Format_Indexed8, Qt::darkCyan);
}

void tst_ThreadGenerateIcon::markKeepsItsColoursOnAPalette()
{
    QFETCH(const QByteArray, format);
    QFETCH(const QImage::Format, loadedAs);
    QFETCH(const QColor, ground);
    Job job;
    QImage master(100, 100, loadedAs);
    master.setColorTable({ground.rgba(), qRgb(0, 0, 0)});
    master.fill(0);
    for (int i = 0; i < 50; ++i)
        master.setPixel(99, i, 1);
    job.icon = job.path(QStringLiteral("game.") + QString::fromLatin1(format).toLower());
    job.writePicture(job.icon, master, format.constData());
    QCOMPARE(QImage(job.icon).format(), loadedAs);
    QImage red(20, 20, QImage::Format_RGB32);
    red.fill(Qt::red);
    job.writePicture(job.markPath(QStringLiteral("red"), QStringLiteral("left-top")), red);
    job.run({channel("red", "a", 0, 30, -40)});

    QImage expected(100, 100, QImage::Format_ARGB32);
    expected.fill(ground);
    for (int i = 0; i < 50; ++i)
        expected.setPixelColor(99, i, Qt::black);
    for (int i = 0; i < 20 * 20; ++i)
        expected.setPixelColor(30 + i % 20, 40 + i / 20, Qt::red);
    QCOMPARE(job.produced("a").convertToFormat(QImage::Format_ARGB32), expected);
}

void tst_ThreadGenerateIcon::noMarkSurvivesIntoTheNextChannel()
{
    Job job;
    job.run({channel("red", "a", 0), channel("blue", "b", 3, 150, -150), channel("None", "c")});
    const QImage icon(job.icon);
    QVERIFY(job.produced("b") == marked(icon, job.markPicture("blue", 3), 150, -150));
    QVERIFY(job.produced("c") == icon);
}

void tst_ThreadGenerateIcon::laterChannelOfAFolderWins_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::newRow("same name") << QByteArray("a") << QByteArray("a");
    QTest::newRow("dot") << QByteArray("a") << QByteArray("./a");
    QTest::newRow("slash") << QByteArray("a/") << QByteArray("a");
    QTest::newRow("up and down") << QByteArray("a") << QByteArray("a/../a");
    QTest::newRow("link") << QByteArray("a") << QByteArray("link");
}

void tst_ThreadGenerateIcon::laterChannelOfAFolderWins()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    Job job;
    job.writePicture(job.icon, photograph(256, 64));
    QVERIFY(QDir().mkpath(job.out(QStringLiteral("a"))));
    QVERIFY(QFile::link(job.out(QStringLiteral("a")), job.out(QStringLiteral("link"))));
    job.thread.setClearDirFirst(false);
    const QImage icon(job.icon);
    for (int round = 0; round < 3; ++round) {
        job.run({channel("red", first), channel("None", "b"), channel("blue", second), channel("red", "c")});
        QCOMPARE(differencesFrom(marked(icon, job.markPicture("blue", 0), 0, 0), job.out(QStringLiteral("a")),
                                 android),
                 QString());
        job.run({channel("blue", first), channel("red", second), channel("blue", "c")});
        QVERIFY(job.produced("a") == marked(icon, job.markPicture("red", 0), 0, 0));
    }
}

void tst_ThreadGenerateIcon::sameObjectRunsAgain()
{
    Job job;
    job.run({channel("red", "a")});
    job.run({channel("red", "a")});
    QVERIFY(job.produced("a") == marked(QImage(job.icon), job.markPicture("red", 0), 0, 0));
    job.run({channel("None", "b")}, ios);
    QVERIFY(!QFileInfo::exists(job.out(QStringLiteral("a"))));
    QCOMPARE(job.filesIn(QStringLiteral("b")), namesOf(ios));
}

void tst_ThreadGenerateIcon::picturesAreReadAnewInEachRun()
{
    Job job;
    job.run({channel("red", "a")});
    job.writePicture(job.icon, photograph(200, 200, true));
    job.writePicture(job.markPath(QStringLiteral("red"), QStringLiteral("left-top")), mark(90, Qt::yellow));
    job.run({channel("red", "a")});
    QVERIFY(job.produced("a") == marked(QImage(job.icon), mark(90, Qt::yellow), 0, 0));
}

void tst_ThreadGenerateIcon::iconInAChannelFolderIsReplacedForTheNext()
{
    Job job;
    const QImage icon(job.icon);
    job.icon = job.out(QStringLiteral("base/icon512x512.png"));
    job.writePicture(job.icon, icon);
    job.thread.setClearDirFirst(false);
    job.run({channel("None", "before"), channel("red", "base"), channel("blue", "after", 3, 100, -100)});
    const QImage red = marked(icon, job.markPicture("red", 0), 0, 0);
    QVERIFY(job.produced("before") == icon);
    QVERIFY(job.produced("base") == red);
    QVERIFY(job.produced("after") == marked(red, job.markPicture("blue", 3), 100, -100));
}

// So large that its own replacement is still at work when all other files of the channel are done.
void tst_ThreadGenerateIcon::iconThatTakesItsTimeIsAwaited()
{
    Job job;
    const QImage icon = photograph(1600, 1600);
    job.icon = job.out(QStringLiteral("base/icon512x512.png"));
    job.writePicture(job.icon, icon);
    job.thread.setClearDirFirst(false);
    job.run({channel("red", "base"), channel("blue", "after", 3, 100, -100)});
    const QImage red = marked(icon, job.markPicture("red", 0), 0, 0);
    QVERIFY(job.produced("after") == marked(red, job.markPicture("blue", 3), 100, -100));
}

void tst_ThreadGenerateIcon::brokenIconGivesFoldersWithoutFiles()
{
    Job job;
    job.write(job.icon, "no picture");
    job.run({channel("None", "a"), channel("red", "b")});
    QVERIFY(QDir(job.out(QStringLiteral("a"))).isEmpty());
    QVERIFY(QDir(job.out(QStringLiteral("b"))).exists());
    QVERIFY(QDir(job.out(QStringLiteral("b"))).isEmpty());
}

void tst_ThreadGenerateIcon::missingOrBrokenMarkLeavesTheIconUnmarked()
{
    Job job;
    job.writePicture(job.icon, photograph(128, 128).convertToFormat(QImage::Format_Indexed8));
    job.write(job.markPath(QStringLiteral("broken"), QStringLiteral("left-top")), "no picture");
    job.run({channel("absent", "a"), channel("broken", "b"), channel("", "c")});
    for (const char* folder : {"a", "b", "c"})
        QCOMPARE(differencesFrom(QImage(job.icon), job.out(QString::fromUtf8(folder)), android), QString());
}

void tst_ThreadGenerateIcon::pipeIsNoPicture()
{
    Job job;
    const QString picture = job.markPath(QStringLiteral("pipe"), QStringLiteral("left-top"));
    QVERIFY(QDir().mkpath(QFileInfo(picture).path()));
    makePipe(picture);
    job.run({channel("pipe", "a"), channel("red", "b")});
    QVERIFY(job.produced("a") == QImage(job.icon));
    QCOMPARE(job.filesIn(QStringLiteral("b")), namesOf(android));

    job.icon = picture;
    job.run({channel("None", "a")});
    QVERIFY(QDir(job.out(QStringLiteral("a"))).exists());
    QVERIFY(QDir(job.out(QStringLiteral("a"))).isEmpty());
}

// Run in a process of its own: makes the icons of some channels, each decorated in a way of its own, and
// prints the most memory the process ever had, in kilobytes.
static int printPeakMemory(int channels)
{
    Job job;
    // Wide, so that the scaled files are small and nearly all work goes into the large one.
    job.writePicture(job.icon, photograph(1000, 24));
    QList<ST_CHANNEL_ICON> list;
    for (int i = 0; i < channels; ++i)
        list.append(channel("red", QByteArray("c" + QByteArray::number(i)).constData(), 0, i));
    job.run(list);
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%ld\n", usage.ru_maxrss);
    return job.filesIn(QStringLiteral("c%1").arg(channels - 1)) == namesOf(android) ? 0 : 1;
}

void tst_ThreadGenerateIcon::memoryStaysFlat()
{
    const auto peak = [](int channels) {
        QProcess child;
        // A sanitizer keeps freed memory back for a while, which is not the library's.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("quarantine_size_mb=1"));
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("--peak-memory"), QString::number(channels)});
        const bool finished = child.waitForFinished(300000) && child.exitCode() == 0;
        return finished ? child.readAllStandardOutput().trimmed().toLongLong() : -1;
    };
    const qint64 few = peak(20);
    const qint64 many = peak(500);
    QVERIFY(few > 0);
    QVERIFY(many > 0);
    // Kept, the 480 further icons alone would take 46 MB.
    QVERIFY2(many - few < 12 * 1024, qPrintable(QStringLiteral("%1 kB, then %2 kB").arg(few).arg(many)));
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "--peak-memory") == 0)
        return printPeakMemory(QByteArray(argv[2]).toInt());
    tst_ThreadGenerateIcon test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}
#include "tst_threadgenerateicon.moc"
