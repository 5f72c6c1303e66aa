// SPDX-License-Identifier: MIT
#include "iconpictures.h"
#include "messagelog.h"

#include <threadgenerateicon.h>

#include <QBuffer>
#include <QColorSpace>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace IconPictures;

namespace {

constexpr int android = 0;
constexpr int ios = 1;

QList<int> sidesOf(int platform)
{
    return platform == android ? QList<int>{36, 48, 72, 96, 144, 192}
                               : QList<int>{29, 40, 50, 57, 58, 72, 76, 80, 87, 100, 114, 120, 144, 152, 180};
}

QString nameOf(int platform, int side)
{
    return platform == android ? QStringLiteral("icon%1x%1.png").arg(side)
                               : QStringLiteral("Icon-%1.png").arg(side);
}

QStringList namesOf(int platform)
{
    QStringList names{QStringLiteral("icon512x512.png")};
    for (const int side : sidesOf(platform))
        names.append(nameOf(platform, side));
    names.sort();
    return names;
}

ST_CHANNEL_ICON channel(const char* mark, const char* folder, int corner = 0, int x = 0, int y = 0)
{
    return {x, y, corner, QString::fromUtf8(mark), QString::fromUtf8(folder)};
}

void makePipe(const QString& path)
{
    if (mkfifo(QFile::encodeName(path).constData(), 0600) != 0)
        qFatal("cannot make the pipe %s", qPrintable(path));
}

// Runs the class in a folder of its own with the marks "red" and "blue", whose corners differ.
class Job {
public:
    Job()
    {
        const QList<QPair<QString, int>> marks{{QStringLiteral("red"), 0}, {QStringLiteral("blue"), 220}};
        for (const auto& mark : marks) {
            int side = 40;
            for (const QString& corner : corners())
                writePicture(markPath(mark.first, corner),
                             IconPictures::mark(side += 8, QColor::fromHsv(mark.second, 255, 255, 170)));
        }
        writePicture(icon, photograph(256, 256));
    }

    static QStringList corners()
    {
        return {QStringLiteral("left-top"), QStringLiteral("left-bottom"), QStringLiteral("right-top"),
                QStringLiteral("right-bottom")};
    }

    QString path(const QString& relative) const { return m_folder.filePath(relative); }
    QString out(const QString& relative = {}) const { return path(QStringLiteral("out/")) + relative; }
    QString markPath(const QString& mark, const QString& corner) const
    {
        return path(QStringLiteral("marks/%1/icon/%2.png").arg(mark, corner));
    }
    QImage markPicture(const char* mark, int corner) const
    {
        return QImage(markPath(QString::fromUtf8(mark), corners().at(corner)));
    }

    void writePicture(const QString& file, const QImage& picture, const char* format = "PNG") const
    {
        write(file, [&] {
            QByteArray content;
            QBuffer buffer(&content);
            // Without compression PNG files are made fastest.
            if (!picture.save(&buffer, format, qstrcmp(format, "PNG") == 0 ? 100 : -1))
                qFatal("cannot encode a picture for %s", qPrintable(file));
            return content;
        }());
    }
    void write(const QString& file, const QByteArray& content) const
    {
        QDir().mkpath(QFileInfo(file).path());
        QFile target(file);
        if (!target.open(QIODevice::WriteOnly) || target.write(content) != content.size())
            qFatal("cannot write %s", qPrintable(file));
    }

    void run(const QList<ST_CHANNEL_ICON>& channels, int platform = android)
    {
        thread.setGameInfo(icon, defaultCorner, defaultX, defaultY, platform);
        thread.setInfo(path(QStringLiteral("marks")), channels);
        thread.setOutputDir(outputDir);
        thread.start();
        thread.wait();
    }

    QStringList filesIn(const QString& folder) const
    {
        QStringList names = QDir(out(folder)).entryList(QDir::Files | QDir::Hidden);
        names.sort();
        return names;
    }
    QImage produced(const char* folder) const
    {
        return QImage(out(QString::fromUtf8(folder) + QStringLiteral("/icon512x512.png")));
    }

private:
    QTemporaryDir m_folder;

public:
    ThreadGenerateIcon thread;
    QString icon = path(QStringLiteral("game.png"));
    QString outputDir = out();
    int defaultCorner = 3;
    int defaultX = 7;
    int defaultY = -9;
};

// A limit on the size of files breaks off writing as a full disk does.
void runWithSmallFilesOnly(Job& job)
{
    const auto handlerBefore = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit small = before;
    small.rlim_cur = 70000;
    if (setrlimit(RLIMIT_FSIZE, &small) != 0)
        qFatal("cannot limit the size of files");
    job.run({channel("None", "a")});
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handlerBefore);
}

// Whether the folder holds exactly one set, each file as Qt alone makes it of @p icon.
QString differencesFrom(const QImage& icon, const QString& folder, int platform)
{
    QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden);
    names.sort();
    if (names != namesOf(platform))
        return QStringLiteral("the files are ") + names.join(QLatin1Char(' '));
    QMap<QString, QImage> expected{{QStringLiteral("icon512x512.png"), icon}};
    for (const int side : sidesOf(platform))
        expected.insert(nameOf(platform, side),
                        icon.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    QStringList paths;
    for (auto one = expected.cbegin(); one != expected.cend(); ++one) {
        QFile file(folder + QLatin1Char('/') + one.key());
        if (!file.open(QIODevice::ReadOnly))
            return one.key() + QStringLiteral(" cannot be read");
        const QByteArray content = file.readAll();
        const QByteArray plain = savedByQt(one.value(), 100);
        if (chunksBesideData(content) != chunksBesideData(plain))
            return one.key() + QStringLiteral(" differs beside the data");
        if (QImage::fromData(content) != QImage::fromData(plain))
            return one.key() + QStringLiteral(" differs in its pixels");
        paths.append(file.fileName());
    }
    return faultsOf(paths);
}

} // namespace

class tst_ThreadGenerateIcon : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_log = std::make_unique<MessageLog>(); }
    void cleanup() { QCOMPARE(m_log->takeWarnings(), QStringList()); }

    void everyFileIsAsQtAloneMakesIt_data();
    void everyFileIsAsQtAloneMakesIt();
    void manyChannelsAreAsOneByOne();

    void missingIconTouchesNothing();
    void emptyOutputRootTouchesNothing();
    void relativeOutputRootTouchesNothing();
    void emptyListClearsAndMakesRoot();
    void rootIsMadeWithItsParents();
    void withoutClearingFilesStayAndAreOverwritten();
    void clearingDeletesEverything();
    void rootIsAPlainPrefix();

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
    void channelFolderIsMadeWithoutParents();
    void sameObjectRunsAgain();
    void picturesAreReadAnewInEachRun();
    void iconInAChannelFolderIsReplacedForTheNext();
    void folderNamedLikeAFileCannotBeMade();

    void brokenIconGivesFoldersWithoutFiles();
    void missingOrBrokenMarkLeavesTheIconUnmarked();
    void pipeIsNoPicture();
    void pipeIsNoFileToWrite();
    void fileThatCannotBeWrittenIsPassedOver();
    void filesNamedLikeUnfinishedOnesStay();
    void halfWrittenFileIsTakenAway_data();
    void halfWrittenFileIsTakenAway();
    void halfWrittenFileBehindALinkIsEmptied();
    void fullDiskEndsWithWholeFilesOnly();
    void overwritingGoesThroughLinks();
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

void tst_ThreadGenerateIcon::missingIconTouchesNothing()
{
    Job job;
    job.write(job.out(QStringLiteral("kept")), "kept");
    job.icon = job.path(QStringLiteral("absent.png"));
    job.run({channel("red", "a")});
    QCOMPARE(job.filesIn({}), QStringList(QStringLiteral("kept")));
    QVERIFY(!QFileInfo::exists(job.out(QStringLiteral("a"))));
}

void tst_ThreadGenerateIcon::emptyOutputRootTouchesNothing()
{
    Job job;
    const QString before = QDir::currentPath();
    QDir::setCurrent(job.path({}));
    const QStringList entries = QDir(job.path({})).entryList();
    job.outputDir.clear();
    job.run({channel("red", "a")});
    QCOMPARE(QDir(job.path({})).entryList(), entries);
    QVERIFY(!QFileInfo::exists(QStringLiteral("/a")));
    QDir::setCurrent(before);
}

void tst_ThreadGenerateIcon::relativeOutputRootTouchesNothing()
{
    Job job;
    job.write(job.out(QStringLiteral("kept")), "kept");
    const QString before = QDir::currentPath();
    QDir::setCurrent(job.path({}));
    job.outputDir = QStringLiteral("out/");
    job.run({channel("red", "a")});
    QDir::setCurrent(before);
    QCOMPARE(QDir(job.out()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
             QStringList(QStringLiteral("kept")));
}

void tst_ThreadGenerateIcon::emptyListClearsAndMakesRoot()
{
    Job job;
    job.write(job.out(QStringLiteral("old/deep/file")), "old");
    job.run({});
    QVERIFY(QDir(job.out()).exists());
    QVERIFY(QDir(job.out()).isEmpty());
}

void tst_ThreadGenerateIcon::rootIsMadeWithItsParents()
{
    Job job;
    job.outputDir = job.out(QStringLiteral("x/y/z/"));
    job.run({channel("None", "a")});
    QCOMPARE(job.filesIn(QStringLiteral("x/y/z/a")), namesOf(android));
}

void tst_ThreadGenerateIcon::withoutClearingFilesStayAndAreOverwritten()
{
    Job job;
    job.write(job.out(QStringLiteral("a/notes.txt")), "kept");
    job.write(job.out(QStringLiteral("a/icon36x36.png")), QByteArray(100000, 'x'));
    job.thread.setClearDirFirst(false);
    job.run({channel("None", "a")});
    QFile notes(job.out(QStringLiteral("a/notes.txt")));
    QVERIFY(notes.open(QIODevice::ReadOnly));
    QCOMPARE(notes.readAll(), QByteArray("kept"));
    QVERIFY(notes.remove());
    QCOMPARE(differencesFrom(QImage(job.icon), job.out(QStringLiteral("a")), android), QString());
}

void tst_ThreadGenerateIcon::clearingDeletesEverything()
{
    Job job;
    job.write(job.out(QStringLiteral("a/notes.txt")), "old");
    job.write(job.out(QStringLiteral("other/notes.txt")), "old");
    job.run({channel("None", "a")});
    QCOMPARE(QDir(job.out()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
             QStringList(QStringLiteral("a")));
    QCOMPARE(job.filesIn(QStringLiteral("a")), namesOf(android));
}

void tst_ThreadGenerateIcon::rootIsAPlainPrefix()
{
    Job job;
    job.outputDir = job.path(QStringLiteral("icons-of-"));
    job.run({channel("None", "a")});
    QVERIFY(QFileInfo(job.path(QStringLiteral("icons-of-"))).isDir());
    QVERIFY(QFileInfo::exists(job.path(QStringLiteral("icons-of-a/icon36x36.png"))));
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

void tst_ThreadGenerateIcon::channelFolderIsMadeWithoutParents()
{
    Job job;
    job.run({channel("None", "x/y"), channel("None", "x"), channel("None", "x/z")});
    QVERIFY(!QFileInfo::exists(job.out(QStringLiteral("x/y"))));
    QCOMPARE(job.filesIn(QStringLiteral("x")), namesOf(android));
    QCOMPARE(job.filesIn(QStringLiteral("x/z")), namesOf(android));
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

void tst_ThreadGenerateIcon::folderNamedLikeAFileCannotBeMade()
{
    Job job;
    job.run({channel("None", ""), channel("None", "icon36x36.png")});
    QCOMPARE(differencesFrom(QImage(job.icon), job.out(), android), QString());
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

void tst_ThreadGenerateIcon::pipeIsNoFileToWrite()
{
    Job job;
    QVERIFY(QDir().mkpath(job.out(QStringLiteral("a"))));
    makePipe(job.out(QStringLiteral("a/icon48x48.png")));
    job.thread.setClearDirFirst(false);
    job.run({channel("None", "a")});
    QStringList expected = namesOf(android);
    expected.removeOne(QStringLiteral("icon48x48.png"));
    QCOMPARE(job.filesIn(QStringLiteral("a")), expected);
}

void tst_ThreadGenerateIcon::fileThatCannotBeWrittenIsPassedOver()
{
    Job job;
    job.write(job.out(QStringLiteral("file")), "in the way of a folder");
    QVERIFY(QDir().mkpath(job.out(QStringLiteral("b/icon72x72.png"))));
    job.thread.setClearDirFirst(false);
    job.run({channel("None", "file"), channel("None", "b"), channel("None", "c")});
    QStringList expected = namesOf(android);
    expected.removeOne(QStringLiteral("icon72x72.png"));
    QCOMPARE(job.filesIn(QStringLiteral("b")), expected);
    QCOMPARE(job.filesIn(QStringLiteral("c")), namesOf(android));
    QVERIFY(QFileInfo(job.out(QStringLiteral("file"))).isFile());
}

void tst_ThreadGenerateIcon::filesNamedLikeUnfinishedOnesStay()
{
    Job job;
    const QString precious = job.path(QStringLiteral("precious"));
    job.write(precious, "precious");
    job.write(job.out(QStringLiteral("a/icon36x36.png.part")), "precious");
    job.write(job.out(QStringLiteral("a/icon36x36.png.part1")), "precious");
    QVERIFY(QFile::link(precious, job.out(QStringLiteral("a/icon48x48.png.part"))));
    QVERIFY(QFile::link(job.path(QStringLiteral("absent")), job.out(QStringLiteral("a/icon72x72.png.part"))));
    QVERIFY(QDir().mkpath(job.out(QStringLiteral("a/icon96x96.png.part"))));
    job.thread.setClearDirFirst(false);
    job.run({channel("None", "a")});
    for (const char* file :
         {"precious", "out/a/icon36x36.png.part", "out/a/icon36x36.png.part1", "out/a/icon48x48.png.part"}) {
        QFile kept(job.path(QString::fromUtf8(file)));
        QVERIFY2(kept.open(QIODevice::ReadOnly), file);
        QCOMPARE(kept.readAll(), QByteArray("precious"));
    }
    QVERIFY(!QFileInfo::exists(job.path(QStringLiteral("absent"))));
    for (const char* name :
         {"icon36x36.png.part", "icon36x36.png.part1", "icon48x48.png.part", "icon72x72.png.part"})
        QVERIFY2(QFile::remove(job.out(QStringLiteral("a/") + QString::fromUtf8(name))), name);
    QVERIFY(QDir().rmdir(job.out(QStringLiteral("a/icon96x96.png.part"))));
    QCOMPARE(differencesFrom(QImage(job.icon), job.out(QStringLiteral("a")), android), QString());
}

void tst_ThreadGenerateIcon::halfWrittenFileIsTakenAway_data()
{
    QTest::addColumn<bool>("overwriting");
    QTest::newRow("new file") << false;
    QTest::newRow("file that was there") << true;
}

void tst_ThreadGenerateIcon::halfWrittenFileIsTakenAway()
{
    QFETCH(bool, overwriting);
    Job job;
    if (overwriting)
        job.write(job.out(QStringLiteral("a/icon512x512.png")), "old");
    job.thread.setClearDirFirst(false);
    runWithSmallFilesOnly(job);

    QStringList expected = namesOf(android);
    expected.removeOne(QStringLiteral("icon512x512.png"));
    QCOMPARE(job.filesIn(QStringLiteral("a")), expected);
}

void tst_ThreadGenerateIcon::halfWrittenFileBehindALinkIsEmptied()
{
    Job job;
    QVERIFY(QDir().mkpath(job.out(QStringLiteral("a"))));
    const QString file = job.path(QStringLiteral("shared.png"));
    job.write(file, "old");
    // What is taken away is the link; the file stays.
    QVERIFY(QFile::link(file, job.out(QStringLiteral("a/icon512x512.png"))));
    job.thread.setClearDirFirst(false);
    runWithSmallFilesOnly(job);
    QVERIFY(QFileInfo::exists(file));
    QCOMPARE(QFileInfo(file).size(), qint64(0));
}

void tst_ThreadGenerateIcon::fullDiskEndsWithWholeFilesOnly()
{
    Job job;
    const QByteArray disk = QFile::encodeName(job.path(QStringLiteral("disk")));
    QVERIFY(QDir().mkpath(QFile::decodeName(disk)));
    if (mount("tmpfs", disk.constData(), "tmpfs", 0, "size=300k") != 0)
        QSKIP("only root can mount a small disk; the limit on file sizes stands for it elsewhere");
    job.outputDir = QFile::decodeName(disk) + QStringLiteral("/out/");
    job.run({channel("None", "a"), channel("red", "b"), channel("blue", "c"), channel("red", "d", 1)});

    int whole = 0;
    QStringList faults;
    QDirIterator files(job.outputDir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        faults += faultsOf({files.next()});
        whole += QImage(files.filePath()).isNull() ? 0 : 1;
        if (!files.fileName().endsWith(QLatin1String(".png")))
            faults += files.fileName();
    }
    const bool madeAll = QFileInfo::exists(job.outputDir + QStringLiteral("d"));
    QCOMPARE(umount(disk.constData()), 0);
    QCOMPARE(faults.join(QString()), QString());
    QVERIFY2(whole > 0 && whole < 28, qPrintable(QString::number(whole)));
    QVERIFY(madeAll);
}

void tst_ThreadGenerateIcon::overwritingGoesThroughLinks()
{
    Job job;
    job.write(job.path(QStringLiteral("shared.png")), "old");
    QVERIFY(QDir().mkpath(job.out(QStringLiteral("a"))));
    QVERIFY(QFile::link(job.path(QStringLiteral("shared.png")), job.out(QStringLiteral("a/icon48x48.png"))));
    job.thread.setClearDirFirst(false);
    job.run({channel("None", "a")});
    QVERIFY(QFileInfo(job.out(QStringLiteral("a/icon48x48.png"))).isSymLink());
    QCOMPARE(QImage(job.path(QStringLiteral("shared.png"))).size(), QSize(48, 48));
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
