// SPDX-License-Identifier: MIT
#include "iconpictures.h"
#include "terminal.h"

#include <QDir>
#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <memory>

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace IconPictures;

namespace {

struct Ended {
    int code = -1;
    QByteArray output;
    QByteArray error;
};

const QList<int> androidSides{36, 48, 72, 96, 144, 192};
const QList<int> iosSides{29, 40, 50, 57, 58, 72, 76, 80, 87, 100, 114, 120, 144, 152, 180};
const QStringList cornerNames{QStringLiteral("left-top"), QStringLiteral("left-bottom"),
                              QStringLiteral("right-top"), QStringLiteral("right-bottom")};

QString nameOf(const QString& platform, int side)
{
    return platform == QLatin1String("android") ? QStringLiteral("icon%1x%1.png").arg(side)
                                                : QStringLiteral("Icon-%1.png").arg(side);
}

QStringList words(const char* text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '));
}

// A process that the rights of files bind even when root runs the tests.
class BoundProcess : public QProcess {
public:
    rlim_t largestFile = RLIM_INFINITY; // bytes

protected:
    void setupChildProcess() override
    {
        prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0);
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{largestFile, RLIM_INFINITY};
        if (largestFile != RLIM_INFINITY && setrlimit(RLIMIT_FSIZE, &limit) != 0)
            _exit(127);
    }
};

Ended endOf(QProcess& process)
{
    process.closeWriteChannel();
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
        qFatal("quenzo did not end by itself: %s", process.readAllStandardError().constData());
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

void makePipe(const QString& path)
{
    if (mkfifo(QFile::encodeName(path).constData(), 0600) != 0)
        qFatal("cannot make the pipe %s", qPrintable(path));
}

bool linkHard(const QString& from, const QString& to)
{
    return link(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

bool isBlank(const QImage& picture)
{
    QImage plain(picture.size(), picture.format());
    plain.fill(picture.pixel(0, 0));
    return plain == picture;
}

} // namespace

// The built program's command icons, on small pictures and on the sample.
class tst_IconCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void sampleGivesWholeSetsOfTheRightSizes_data();
    void sampleGivesWholeSetsOfTheRightSizes();
    void cornersAreNamedOrNumbered_data();
    void cornersAreNamedOrNumbered();
    void defaultCornerTakesTheDefaultPlace();
    void cornerAndMarkMayBeLeftOut();
    void numberedDefaultCornerIsTaken();
    void outputFolderIsClearedFirst();
    void keepLeavesOtherFilesAndReplacesItsOwn();
    void relativeOutputFolderIsBelowTheCurrentOne();
    void emptyListGivesAnEmptyFolder();
    void sheetShowsEveryIcon();
    void countsReadWellForOneChannel();
    void jsonTellsAllOfARun();
    void progressIsShownOnATerminal();

    void faultOfAMarkIsWarnedOf_data();
    void faultOfAMarkIsWarnedOf();
    void folderGivenTwiceIsWarnedOf();
    void fileInTheWayOfAFolderIsReported();
    void folderInTheWayOfAFileIsReported();
    void fileThatCannotBeFilledIsReported();
    void fileLeftEmptyIsReported();
    void pipeInTheWayOfAFileIsReported();
    void whatCannotBeClearedIsWarnedOf();
    void sheetThatCannotBeWrittenFails();
    void sheetWithoutFontsIsWarnedOf();

    void whatItReadsIsNeverCleared_data();
    void whatItReadsIsNeverCleared();
    void whatItReadsIsNeverOverwritten_data();
    void whatItReadsIsNeverOverwritten();
    void sheetNeverReplacesWhatIsRead_data();
    void sheetNeverReplacesWhatIsRead();
    void sheetNeverReplacesAnIcon_data();
    void sheetNeverReplacesAnIcon();
    void pipesAreNotRead_data();
    void pipesAreNotRead();
    void listMistakesAreNamedAndNothingIsTouched_data();
    void listMistakesAreNamedAndNothingIsTouched();
    void allMistakesAreNamedAtOnce();
    void missingInputIsNamed_data();
    void missingInputIsNamed();
    void badUsageExitsWithTwo_data();
    void badUsageExitsWithTwo();

private:
    QString path(const QString& relative) const { return m_folder->filePath(relative); }
    QString out(const QString& relative = {}) const { return path(QStringLiteral("out/")) + relative; }
    void write(const QString& file, const QByteArray& content) const;
    QImage markPicture(int corner) const
    {
        return QImage(path(QStringLiteral("marks/red/icon/%1.png").arg(cornerNames.at(corner))));
    }
    QImage master() const { return QImage(path(QStringLiteral("game.png"))); }
    QImage produced(const QString& folder) const
    {
        return QImage(out(folder) + QStringLiteral("/icon512x512.png"));
    }
    static QByteArray contentOf(const QString& file);
    QStringList filesBelow(const QString& folder) const;
    Ended quenzo(const QStringList& arguments) const;
    Ended icons(const QByteArray& list, const QStringList& further = {},
                const QString& outDir = QStringLiteral("out")) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

// A small game icon and the mark "red", whose four pictures differ in size.
void tst_IconCommands::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    QVERIFY(photograph(100, 100).save(path(QStringLiteral("game.png"))));
    QVERIFY(QDir().mkpath(path(QStringLiteral("marks/red/icon"))));
    int side = 16;
    for (const QString& corner : cornerNames)
        QVERIFY(mark(side += 4, Qt::red).save(path(QStringLiteral("marks/red/icon/%1.png").arg(corner))));
}

void tst_IconCommands::write(const QString& file, const QByteArray& content) const
{
    QDir().mkpath(QFileInfo(file).path());
    QFile target(file);
    if (!target.open(QIODevice::WriteOnly) || target.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(file));
}

QByteArray tst_IconCommands::contentOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(path));
    return file.readAll();
}

QStringList tst_IconCommands::filesBelow(const QString& folder) const
{
    QStringList files;
    QDirIterator entries(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (entries.hasNext())
        files.append(QDir(folder).relativeFilePath(entries.next()));
    files.sort();
    return files;
}

Ended tst_IconCommands::quenzo(const QStringList& arguments) const
{
    QProcess process;
    process.setWorkingDirectory(m_folder->path());
    process.start(QStringLiteral(QUENZO_PROGRAM), arguments);
    return endOf(process);
}

Ended tst_IconCommands::icons(const QByteArray& list, const QStringList& further, const QString& outDir) const
{
    write(path(QStringLiteral("channels.json")), list);
    return quenzo(
        words("icons --icon game.png --marks marks --out") + QStringList{outDir}
        + (further.contains(QStringLiteral("--platform")) ? QStringList() : words("--platform android"))
        + further + words("channels.json"));
}

void tst_IconCommands::sampleGivesWholeSetsOfTheRightSizes_data()
{
    QTest::addColumn<QString>("platform");
    QTest::addColumn<QList<int>>("sides");
    QTest::newRow("android") << QStringLiteral("android") << androidSides;
    QTest::newRow("ios") << QStringLiteral("ios") << iosSides;
}

void tst_IconCommands::sampleGivesWholeSetsOfTheRightSizes()
{
    QFETCH(const QString, platform);
    QFETCH(const QList<int>, sides);
    const QString sample = QStringLiteral(SAMPLE_ICONS);
    const Ended ended = quenzo(
        QStringList{QStringLiteral("icons"), QStringLiteral("--icon"), sample + QStringLiteral("/icon.png"),
                    QStringLiteral("--marks"), sample + QStringLiteral("/marks"),
                    QStringLiteral("--platform"), platform, sample + QStringLiteral("/channels.json")}
        + words("--out out --default-corner right-bottom --default-x 352 --default-y -352"));
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.code, 0);
    const QByteArray count = QByteArray::number(6 * (sides.size() + 1));
    QVERIFY2(ended.output.startsWith(count + " of " + count + " files in "), ended.output.constData());

    const QStringList channels = words("harbor meadow nimbus official quartz tideway");
    QCOMPARE(QDir(out()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name), channels);
    QStringList expected;
    QStringList paths;
    for (const QString& channel : channels) {
        const QString folder = channel + QLatin1Char('/');
        for (const int side : sides) {
            expected.append(folder + nameOf(platform, side));
            QCOMPARE(QImage(out(expected.last())).size(), QSize(side, side));
        }
        expected.append(folder + QStringLiteral("icon512x512.png"));
        QCOMPARE(QImage(out(expected.last())).size(), QSize(512, 512));
    }
    expected.sort();
    QCOMPARE(filesBelow(out()), expected);
    for (const QString& file : qAsConst(expected))
        paths.append(out(file));
    QCOMPARE(faultsOf(paths), QString());

    const QImage icon(sample + QStringLiteral("/icon.png"));
    const QString marks = sample + QStringLiteral("/marks/");
    QCOMPARE(produced(QStringLiteral("official")), icon);
    QCOMPARE(produced(QStringLiteral("tideway")),
             marked(icon, QImage(marks + QStringLiteral("tideway/icon/right-bottom.png")), 352, -352));
    QCOMPARE(produced(QStringLiteral("quartz")),
             marked(icon, QImage(marks + QStringLiteral("quartz/icon/left-top.png")), 6, -6));
}

void tst_IconCommands::cornersAreNamedOrNumbered_data()
{
    QTest::addColumn<QByteArray>("corner");
    QTest::addColumn<int>("picture");
    for (int i = 0; i < cornerNames.size(); ++i) {
        const QByteArray name = cornerNames.at(i).toUtf8();
        const QByteArray number = QByteArray::number(i);
        QTest::newRow(name.constData()) << QByteArray('"' + name + '"') << i;
        QTest::newRow(number.constData()) << number << i;
        QTest::addRow("text %d", i) << QByteArray('"' + number + '"') << i;
    }
}

void tst_IconCommands::cornersAreNamedOrNumbered()
{
    QFETCH(const QByteArray, corner);
    QFETCH(const int, picture);
    const Ended ended =
        icons(R"([{"folder": "a", "mark": "red", "x": 30, "y": -40, "corner": )" + corner + "}]");
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.code, 0);
    QCOMPARE(produced(QStringLiteral("a")), marked(master(), markPicture(picture), 30, -40));
}

void tst_IconCommands::defaultCornerTakesTheDefaultPlace()
{
    const Ended ended = icons(R"([{"folder": "a", "mark": "red", "corner": "default", "x": 1, "y": 1},
                                  {"folder": "b", "mark": "red", "corner": 4, "x": 2, "y": 2},
                                  {"folder": "c", "mark": "red", "corner": "right-top", "x": 3, "y": -3}])",
                              words("--default-corner left-bottom --default-x 50 --default-y -60"));
    QCOMPARE(ended.error, QByteArray());
    const QImage byDefault = marked(master(), markPicture(1), 50, -60);
    QCOMPARE(produced(QStringLiteral("a")), byDefault);
    QCOMPARE(produced(QStringLiteral("b")), byDefault);
    QCOMPARE(produced(QStringLiteral("c")), marked(master(), markPicture(2), 3, -3));
}

void tst_IconCommands::cornerAndMarkMayBeLeftOut()
{
    const Ended ended = icons(R"([{"folder": "plain"}, {"folder": "none", "mark": "None", "name": null},
                                  {"folder": "marked", "mark": "red"}])");
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(produced(QStringLiteral("plain")), master());
    QCOMPARE(produced(QStringLiteral("none")), master());
    QCOMPARE(produced(QStringLiteral("marked")), marked(master(), markPicture(3), 0, 0));
}

void tst_IconCommands::numberedDefaultCornerIsTaken()
{
    QCOMPARE(icons(R"([{"folder": "a", "mark": "red"}])", words("--default-corner 2")).error, QByteArray());
    QCOMPARE(produced(QStringLiteral("a")), marked(master(), markPicture(2), 0, 0));
}

void tst_IconCommands::outputFolderIsClearedFirst()
{
    write(out(QStringLiteral("old/file")), "old");
    const Ended ended = icons(R"([{"folder": "a"}])");
    QCOMPARE(ended.code, 0);
    QVERIFY(!QFileInfo::exists(out(QStringLiteral("old"))));
    QCOMPARE(filesBelow(out()).size(), 7);
}

void tst_IconCommands::keepLeavesOtherFilesAndReplacesItsOwn()
{
    write(out(QStringLiteral("old/file")), "old");
    write(out(QStringLiteral("a/icon512x512.png")), "old");
    const Ended ended = icons(R"([{"folder": "a"}])", words("--keep"));
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.code, 0);
    QCOMPARE(filesBelow(out()).size(), 8);
    QVERIFY(QFileInfo::exists(out(QStringLiteral("old/file"))));
    QCOMPARE(produced(QStringLiteral("a")), master());
}

void tst_IconCommands::relativeOutputFolderIsBelowTheCurrentOne()
{
    const Ended ended = icons(R"([{"folder": "a"}])", {}, QStringLiteral("deep/er/../down/"));
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.code, 0);
    QCOMPARE(filesBelow(path(QStringLiteral("deep/down/a"))).size(), 7);
    QVERIFY2(ended.output.trimmed().endsWith(
                 QFile::encodeName(QDir(m_folder->path()).canonicalPath() + QStringLiteral("/deep/down"))),
             ended.output.constData());
}

void tst_IconCommands::emptyListGivesAnEmptyFolder()
{
    write(out(QStringLiteral("old")), "old");
    const Ended ended = icons("[]", words("--sheet sheet.png"));
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.code, 0);
    QVERIFY(QDir(out()).exists());
    QVERIFY(QDir(out()).isEmpty());
    QVERIFY(!QImage(path(QStringLiteral("sheet.png"))).isNull());
}

void tst_IconCommands::sheetShowsEveryIcon()
{
    QByteArray list;
    for (int i = 0; i < 6; ++i)
        list += (i == 0 ? "[" : ", ") + QByteArray(R"({"folder": "c)") + QByteArray::number(i)
            + R"(", "name": "Channel", "mark": "red", "x": )" + QByteArray::number(10 * i) + '}';
    for (const QString& platform : {QStringLiteral("android"), QStringLiteral("ios")}) {
        const Ended ended =
            icons(list + ']',
                  {QStringLiteral("--platform"), platform, QStringLiteral("--sheet"),
                   QStringLiteral("sheet.png"), QStringLiteral("--default-x"), QStringLiteral("5")});
        QCOMPARE(ended.error, QByteArray());
        QCOMPARE(ended.code, 0);
        QCOMPARE(faultsOf({path(QStringLiteral("sheet.png"))}), QString());
        const QImage sheet(path(QStringLiteral("sheet.png")));
        // Two rows of four tiles with captions, below a title.
        QCOMPARE(sheet.size(), QSize(4 * 164 + 20, 44 + 2 * 184 + 20));
        QVERIFY(!isBlank(sheet.copy(0, 0, 300, 44)));
        for (int i = 0; i < 6; ++i) {
            const QPoint corner(20 + i % 4 * 164, 44 + i / 4 * 184);
            const QImage icon(out(QStringLiteral("c%1/%2").arg(i).arg(nameOf(platform, 144))));
            QCOMPARE(sheet.copy(QRect(corner, QSize(144, 144))).convertToFormat(QImage::Format_RGB32),
                     icon.convertToFormat(QImage::Format_RGB32));
            QVERIFY2(!isBlank(sheet.copy(QRect(corner + QPoint(0, 146), QSize(144, 34)))), "no caption");
        }
        QVERIFY2(isBlank(sheet.copy(20 + 2 * 164, 44 + 184, 2 * 164, 184)), "something where no channel is");
    }
}

void tst_IconCommands::countsReadWellForOneChannel()
{
    const Ended ended = icons(R"([{"folder": "a"}])");
    const QString output = QString::fromLocal8Bit(ended.output);
    const QRegularExpression form(
        QStringLiteral("^7 of 7 files in \\d+\\.\\d s, channels: 1, folder: /.*/out\n$"));
    QVERIFY2(form.match(output).hasMatch(), ended.output.constData());
}

void tst_IconCommands::jsonTellsAllOfARun()
{
    write(out(QStringLiteral("b")), "in the way");
    const Ended ended = icons(R"([{"folder": "a", "mark": "blue"}, {"folder": "b"}])",
                              words("--json --keep --sheet sheet.png"));
    QCOMPARE(ended.code, 1);
    const QJsonObject told = QJsonDocument::fromJson(ended.output).object();
    QStringList keys = told.keys();
    keys.sort();
    QCOMPARE(keys, words("channels command error expected missing ok out sheet warnings written"));
    QCOMPARE(told.value(QStringLiteral("command")).toString(), QStringLiteral("icons"));
    QCOMPARE(told.value(QStringLiteral("ok")).toBool(true), false);
    QCOMPARE(told.value(QStringLiteral("channels")).toInt(), 2);
    QCOMPARE(told.value(QStringLiteral("expected")).toInt(), 14);
    QCOMPARE(told.value(QStringLiteral("written")).toInt(), 7);
    QCOMPARE(told.value(QStringLiteral("missing")).toArray().size(), 7);
    QCOMPARE(told.value(QStringLiteral("missing")).toArray().first().toString(),
             QDir(m_folder->path()).canonicalPath() + QStringLiteral("/out/b/icon36x36.png"));
    QCOMPARE(told.value(QStringLiteral("warnings")).toArray().size(), 1);
    QCOMPARE(told.value(QStringLiteral("error")).toString(), QStringLiteral("not written: 7 of 14 files"));
    QCOMPARE(told.value(QStringLiteral("out")).toString(),
             QDir(m_folder->path()).canonicalPath() + QStringLiteral("/out"));
    QCOMPARE(told.value(QStringLiteral("sheet")).toString(), QStringLiteral("sheet.png"));

    const QJsonObject good =
        QJsonDocument::fromJson(icons(R"([{"folder": "a"}])", words("--json")).output).object();
    QCOMPARE(good.value(QStringLiteral("ok")).toBool(), true);
    QCOMPARE(good.value(QStringLiteral("written")).toInt(), 7);
    QVERIFY(good.value(QStringLiteral("missing")).isArray());
    QVERIFY(good.value(QStringLiteral("missing")).toArray().isEmpty());
    QVERIFY(!good.contains(QStringLiteral("error")));
}

void tst_IconCommands::progressIsShownOnATerminal()
{
    // One file that takes long enough for the bar to be drawn several times.
    QVERIFY(photograph(300, 300)
                .scaled(3000, 3000, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                .save(path(QStringLiteral("game.png")), nullptr, 100));
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a"}])");
    Terminal terminal;
    QProcess process;
    process.setWorkingDirectory(m_folder->path());
    process.setStandardErrorFile(terminal.path());
    process.start(QStringLiteral(QUENZO_PROGRAM),
                  words("icons --icon game.png --marks marks --out out --platform android channels.json"));
    QCOMPARE(endOf(process).code, 0);

    const QString shown = QString::fromLocal8Bit(terminal.shown());
    QRegularExpressionMatchIterator bars =
        QRegularExpression(QStringLiteral(R"(\r\x1b\[K[-|/\\] \[(#*)(\.*)\] (\d) of 7 files)"))
            .globalMatch(shown);
    QVERIFY2(bars.hasNext(), terminal.shown().constData());
    int before = 0;
    while (bars.hasNext()) {
        const QRegularExpressionMatch bar = bars.next();
        const int done = bar.captured(3).toInt();
        QVERIFY(done >= before && done <= 7);
        QCOMPARE(bar.capturedLength(1), done * 30 / 7);
        QCOMPARE(bar.capturedLength(2), 30 - done * 30 / 7);
        before = done;
    }
    QVERIFY2(shown.endsWith(QStringLiteral("files\r\x1b[K")), "the bar stays");
}

void tst_IconCommands::faultOfAMarkIsWarnedOf_data()
{
    QTest::addColumn<QByteArray>("entry");
    QTest::addColumn<QByteArray>("warning");
    QTest::newRow("no such mark") << QByteArray(R"("mark": "blue")")
                                  << QByteArray("marks/blue/icon/right-bottom.png is missing");
    QTest::newRow("small letters are no None")
        << QByteArray(R"("mark": "none")") << QByteArray("marks/none/icon/right-bottom.png is missing");
    QTest::newRow("no such corner's picture") << QByteArray(R"("mark": "half", "corner": "left-top")")
                                              << QByteArray("marks/half/icon/left-top.png is missing");
    QTest::newRow("no picture") << QByteArray(R"("mark": "half", "corner": "right-top")")
                                << QByteArray("marks/half/icon/right-top.png cannot be read");
    QTest::newRow("below the icon") << QByteArray(R"("mark": "red", "corner": 0, "x": 0, "y": -100)")
                                    << QByteArray("lies outside the icon");
    QTest::newRow("above the icon") << QByteArray(R"("mark": "red", "corner": 0, "x": 0, "y": 352)")
                                    << QByteArray("lies outside the icon");
}

void tst_IconCommands::faultOfAMarkIsWarnedOf()
{
    QFETCH(const QByteArray, entry);
    QFETCH(const QByteArray, warning);
    write(path(QStringLiteral("marks/half/icon/right-top.png")), "no picture");
    const Ended ended = icons(R"([{"folder": "a", "name": "The shop", )" + entry + R"(}, {"folder": "b"}])");
    QCOMPARE(ended.code, 0);
    QCOMPARE(ended.error.count('\n'), 1);
    QVERIFY2(ended.error.startsWith("quenzo: channel 'The shop': "), ended.error.constData());
    QVERIFY2(ended.error.contains(warning), ended.error.constData());
    QCOMPARE(produced(QStringLiteral("a")), master());
    QCOMPARE(filesBelow(out()).size(), 14);
}

void tst_IconCommands::folderGivenTwiceIsWarnedOf()
{
    const Ended ended = icons(R"([{"folder": "a"}, {"folder": "a", "mark": "red"}])");
    QCOMPARE(ended.code, 0);
    QVERIFY2(ended.error.contains("the folder 'a' is given twice"), ended.error.constData());
    QVERIFY2(ended.output.startsWith("7 of 7 files in "), ended.output.constData());
    QCOMPARE(produced(QStringLiteral("a")), marked(master(), markPicture(3), 0, 0));
}

void tst_IconCommands::fileInTheWayOfAFolderIsReported()
{
    write(out(QStringLiteral("b")), "in the way");
    const Ended ended =
        icons(R"([{"folder": "a"}, {"folder": "b"}, {"folder": "c"}])", words("--keep --sheet sheet.png"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("/out/b could not be made\n"), ended.error.constData());
    QVERIFY2(ended.error.contains("not written: 7 of 21 files\n"), ended.error.constData());
    QVERIFY2(ended.output.startsWith("14 of 21 files in "), ended.output.constData());
    QCOMPARE(produced(QStringLiteral("c")), master());
    QVERIFY(QFileInfo(out(QStringLiteral("b"))).isFile());
    // The sheet is drawn all the same, with a red cross in the middle tile.
    const QImage sheet(path(QStringLiteral("sheet.png")));
    QCOMPARE(sheet.pixelColor(20 + 164 + 72, 44 + 72), QColor(Qt::red));
    QCOMPARE(sheet.pixelColor(20 + 72, 44 + 72),
             QImage(out(QStringLiteral("a/icon144x144.png"))).pixelColor(72, 72));
}

void tst_IconCommands::folderInTheWayOfAFileIsReported()
{
    QVERIFY(QDir().mkpath(out(QStringLiteral("a/icon72x72.png"))));
    const Ended ended = icons(R"([{"folder": "a"}])", words("--keep"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("/out/a: icon72x72.png\n"), ended.error.constData());
    QVERIFY2(ended.error.contains("not written: 1 of 7 files\n"), ended.error.constData());
}

void tst_IconCommands::fileThatCannotBeFilledIsReported()
{
    // Every write to this device fails, as on a full disk.
    if (!QFileInfo::exists(QStringLiteral("/dev/full")))
        QSKIP("there is no device that is always full");
    QVERIFY(QDir().mkpath(out(QStringLiteral("a"))));
    QVERIFY(QFile::link(QStringLiteral("/dev/full"), out(QStringLiteral("a/icon48x48.png"))));
    const Ended ended = icons(R"([{"folder": "a"}])", words("--keep"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("/out/a: icon48x48.png\n"), ended.error.constData());
    QVERIFY(QFileInfo::exists(QStringLiteral("/dev/full")));
}

void tst_IconCommands::fileLeftEmptyIsReported()
{
    write(out(QStringLiteral("a/icon512x512.png")), "old");
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a"}])");
    // The file can be written, but neither to its end nor be taken away.
    QVERIFY(QFile::setPermissions(out(QStringLiteral("a")), QFile::ReadOwner | QFile::ExeOwner));
    BoundProcess process;
    process.largestFile = 10000;
    process.setWorkingDirectory(m_folder->path());
    process.start(
        QStringLiteral(QUENZO_PROGRAM),
        words("icons --icon game.png --marks marks --out out --platform android --keep channels.json"));
    const Ended ended = endOf(process);
    QVERIFY(QFile::setPermissions(out(QStringLiteral("a")),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(ended.code, 1);
    QCOMPARE(filesBelow(out()), words("a/icon512x512.png"));
    QCOMPARE(QFileInfo(out(QStringLiteral("a/icon512x512.png"))).size(), qint64(0));
    QVERIFY2(ended.output.startsWith("0 of 7 files in "), ended.output.constData());
    QVERIFY2(ended.error.contains(", icon512x512.png\n"), ended.error.constData());
}

void tst_IconCommands::pipeInTheWayOfAFileIsReported()
{
    QVERIFY(QDir().mkpath(out(QStringLiteral("a"))));
    makePipe(out(QStringLiteral("a/icon144x144.png")));
    const Ended ended = icons(R"([{"folder": "a"}])", words("--keep --sheet sheet.png"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("/out/a: icon144x144.png\n"), ended.error.constData());
    QCOMPARE(QImage(path(QStringLiteral("sheet.png"))).pixelColor(20 + 72, 44 + 72), QColor(Qt::red));
}

void tst_IconCommands::whatCannotBeClearedIsWarnedOf()
{
    write(out(QStringLiteral("old/notes.txt")), "old");
    write(out(QStringLiteral("a/notes.txt")), "old");
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a"}])");
    for (const char* name : {"a/icon36x36.png", "a/icon48x48.png", "a/icon72x72.png", "a/icon96x96.png",
                             "a/icon144x144.png", "a/icon192x192.png", "a/icon512x512.png"})
        write(out(QString::fromUtf8(name)), "old");
    for (const char* name : {"old", "a"})
        QVERIFY(QFile::setPermissions(out(QString::fromUtf8(name)), QFile::ReadOwner | QFile::ExeOwner));
    BoundProcess process;
    process.setWorkingDirectory(m_folder->path());
    process.start(
        QStringLiteral(QUENZO_PROGRAM),
        words("icons --icon game.png --marks marks --out out --platform android --json channels.json"));
    const Ended ended = endOf(process);
    for (const char* name : {"old", "a"})
        QVERIFY(QFile::setPermissions(out(QString::fromUtf8(name)),
                                      QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(ended.code, 0);
    const QString root = QDir(m_folder->path()).canonicalPath() + QStringLiteral("/out/");
    const QString warning = QStringLiteral("not deleted: ") + root + QStringLiteral("a/notes.txt, ") + root
        + QStringLiteral("old");
    QCOMPARE(ended.error, QByteArray("quenzo: " + warning.toUtf8() + '\n'));
    QCOMPARE(QJsonDocument::fromJson(ended.output).object().value(QStringLiteral("warnings")).toArray(),
             QJsonArray({warning}));
}

void tst_IconCommands::sheetWithoutFontsIsWarnedOf()
{
    write(path(QStringLiteral("fonts.conf")), "<?xml version=\"1.0\"?>\n<fontconfig></fontconfig>\n");
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a"}])");
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("FONTCONFIG_FILE"), path(QStringLiteral("fonts.conf")));
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_folder->path());
    process.start(
        QStringLiteral(QUENZO_PROGRAM),
        words("icons --icon game.png --marks marks --out out --platform ios --sheet s.png channels.json"));
    const Ended ended = endOf(process);
    QCOMPARE(ended.code, 0);
    QVERIFY2(ended.error.contains("quenzo: no font was found; "), ended.error.constData());
    QVERIFY(!QImage(path(QStringLiteral("s.png"))).isNull());
}

void tst_IconCommands::sheetThatCannotBeWrittenFails()
{
    const Ended ended = icons(R"([{"folder": "a"}])", words("--sheet absent/sheet.png"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("the sheet 'absent/sheet.png' cannot be written: "),
             ended.error.constData());
    QCOMPARE(filesBelow(out()).size(), 7);
}

void tst_IconCommands::whatItReadsIsNeverCleared_data()
{
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QString>("marks");
    QTest::addColumn<QString>("list");
    QTest::addColumn<QByteArray>("held");
    const QString icon = QStringLiteral("game.png");
    const QString marks = QStringLiteral("marks");
    const QString list = QStringLiteral("channels.json");
    QTest::newRow("icon") << QStringLiteral("out/deep/game.png") << marks << list << QByteArray("the icon");
    QTest::newRow("marks") << icon << QStringLiteral("out/marks") << list << QByteArray("the marks");
    QTest::newRow("root of the marks") << icon << QStringLiteral("out") << list << QByteArray("the marks");
    QTest::newRow("list") << icon << marks << QStringLiteral("out/channels.json")
                          << QByteArray("the channel list");
    QTest::newRow("icon by a link") << QStringLiteral("link/deep/game.png") << marks << list
                                    << QByteArray("the icon");
}

void tst_IconCommands::whatItReadsIsNeverCleared()
{
    QFETCH(const QString, icon);
    QFETCH(const QString, marks);
    QFETCH(const QString, list);
    QFETCH(const QByteArray, held);
    QVERIFY(QDir().mkpath(out(QStringLiteral("deep"))));
    QVERIFY(QDir().mkpath(out(QStringLiteral("marks"))));
    QVERIFY(QFile::copy(path(QStringLiteral("game.png")), out(QStringLiteral("deep/game.png"))));
    QVERIFY(QFile::link(path(QStringLiteral("out")), path(QStringLiteral("link"))));
    for (const char* name : {"channels.json", "out/channels.json"})
        write(path(QString::fromUtf8(name)), R"([{"folder": "a"}])");
    const QStringList before = filesBelow(m_folder->path());
    const QStringList arguments{
        QStringLiteral("icons"), QStringLiteral("--icon"), icon, QStringLiteral("--marks"), marks, list};
    const Ended ended = quenzo(arguments + words("--out out --platform ios"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("is deleted first, and it holds " + held), ended.error.constData());
    QCOMPARE(filesBelow(m_folder->path()), before);

    const Ended kept = quenzo(arguments + words("--out out --platform ios --keep"));
    QCOMPARE(kept.error, QByteArray());
    QCOMPARE(kept.code, 0);
    QCOMPARE(filesBelow(m_folder->path()).size(), before.size() + 16);
}

void tst_IconCommands::whatItReadsIsNeverOverwritten_data()
{
    QTest::addColumn<QString>("read");
    QTest::addColumn<bool>("hard");
    QTest::addColumn<QByteArray>("error");
    const auto rows = [](const char* title, const char* read, const char* error) {
        for (const bool hard : {false, true})
            QTest::addRow("%s by a %s link", title, hard ? "hard" : "symbolic")
                << QString::fromUtf8(read) << hard << QByteArray(error);
    };
    rows("icon", "game.png", "the icon 'game.png' is one of the files");
    rows("list", "channels.json", "the channel list 'channels.json' is one of the files");
    rows("mark", "marks/red/icon/right-bottom.png",
         "the mark picture 'marks/red/icon/right-bottom.png' is one of the files");
    rows("unused mark", "marks/red/icon/left-top.png",
         "the mark picture 'marks/red/icon/left-top.png' is one of the files");
}

void tst_IconCommands::whatItReadsIsNeverOverwritten()
{
    QFETCH(const QString, read);
    QFETCH(const bool, hard);
    QFETCH(const QByteArray, error);
    const QByteArray list = R"([{"folder": "a", "mark": "red"}])";
    write(path(QStringLiteral("channels.json")), list);
    QVERIFY(QDir().mkpath(out(QStringLiteral("a"))));
    const QString icon = out(QStringLiteral("a/icon36x36.png"));
    QVERIFY(hard ? linkHard(path(read), icon) : QFile::link(path(read), icon));
    const QByteArray before = contentOf(path(read));
    const Ended ended = icons(list, words("--keep"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains(error), ended.error.constData());
    QCOMPARE(contentOf(path(read)), before);
    QCOMPARE(filesBelow(out()), words("a/icon36x36.png"));
}

void tst_IconCommands::sheetNeverReplacesWhatIsRead_data()
{
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QByteArray>("what");
    const auto row = [](const char* title, const char* sheet, const char* what) {
        QTest::newRow(title) << QString::fromUtf8(sheet) << QByteArray(what);
    };
    row("icon", "marks/../game.png", "the icon 'game.png'");
    row("list", "channels.json", "the channel list 'channels.json'");
    row("mark", "marks/red/icon/right-bottom.png", "the mark picture");
    row("unused mark", "marks/red/icon/left-top.png", "the mark picture");
    row("mark by a link", "link.png", "the mark picture");
    row("mark by a hard link", "hard.png", "the mark picture");
}

void tst_IconCommands::sheetNeverReplacesWhatIsRead()
{
    QFETCH(const QString, sheet);
    QFETCH(const QByteArray, what);
    const QString used = path(QStringLiteral("marks/red/icon/right-bottom.png"));
    QVERIFY(QFile::link(used, path(QStringLiteral("link.png"))));
    QVERIFY(linkHard(used, path(QStringLiteral("hard.png"))));
    const QByteArray list = R"([{"folder": "a", "mark": "red"}])";
    write(path(QStringLiteral("channels.json")), list);
    const QByteArray before = contentOf(path(sheet));
    const Ended ended = icons(list, {QStringLiteral("--sheet"), sheet});
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("the sheet would replace " + what), ended.error.constData());
    QCOMPARE(contentOf(path(sheet)), before);
    QVERIFY(!QFileInfo::exists(out()));
}

void tst_IconCommands::sheetNeverReplacesAnIcon_data()
{
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<bool>("there");
    for (const bool there : {false, true}) {
        const char* title = there ? "file that is there" : "file to come";
        QTest::addRow("%s", title) << QStringLiteral("out/a/icon36x36.png") << there;
        QTest::addRow("%s, there and back", title) << QStringLiteral("out/../out/a/icon36x36.png") << there;
        QTest::addRow("%s, linked folder", title) << QStringLiteral("linked/out/a/icon36x36.png") << there;
        QTest::addRow("%s, link", title) << QStringLiteral("link.png") << there;
    }
    QTest::newRow("hard link") << QStringLiteral("hard.png") << true;
}

void tst_IconCommands::sheetNeverReplacesAnIcon()
{
    QFETCH(const QString, sheet);
    QFETCH(const bool, there);
    const QString icon = out(QStringLiteral("a/icon36x36.png"));
    if (there) {
        write(icon, "old");
        QVERIFY(linkHard(icon, path(QStringLiteral("hard.png"))));
    }
    QVERIFY(QFile::link(m_folder->path(), path(QStringLiteral("linked"))));
    QVERIFY(QFile::link(icon, path(QStringLiteral("link.png"))));
    const Ended ended = icons(R"([{"folder": "a"}])", {QStringLiteral("--sheet"), sheet});
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("/out/a/icon36x36.png', one of the files to be written"),
             ended.error.constData());
    QCOMPARE(QFileInfo::exists(icon), there);

    const Ended beside = icons(R"([{"folder": "a"}])", words("--sheet out/a/sheet.png"));
    QCOMPARE(beside.error, QByteArray());
    QCOMPARE(beside.code, 0);
}

void tst_IconCommands::pipesAreNotRead_data()
{
    QTest::addColumn<QString>("pipe");
    QTest::newRow("icon") << QStringLiteral("game.png");
    QTest::newRow("list") << QStringLiteral("channels.json");
    QTest::newRow("mark") << QStringLiteral("marks/red/icon/right-bottom.png");
}

void tst_IconCommands::pipesAreNotRead()
{
    QFETCH(const QString, pipe);
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a", "mark": "red"}])");
    QVERIFY(QFile::remove(path(pipe)));
    makePipe(path(QStringLiteral("pipe")));
    QVERIFY(QFile::link(path(QStringLiteral("pipe")), path(pipe)));
    const Ended ended =
        quenzo(words("icons --icon game.png --marks marks --out out --platform android channels.json"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains(pipe.toUtf8()), ended.error.constData());
    QVERIFY2(ended.error.endsWith(" is not a regular file\n"), ended.error.constData());
    QVERIFY(!QFileInfo::exists(out()));
}

void tst_IconCommands::listMistakesAreNamedAndNothingIsTouched_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QByteArray>("error");
    const auto row = [](const char* title, const QByteArray& list, const char* error) {
        QTest::newRow(title) << list << QByteArray(error);
    };
    row("no JSON", "[\n  {\"folder\": }\n]",
        "channels.json is not JSON: object is missing after a comma at line 2, column 15\n");
    row("cut off", R"([{"folder": "a"})", "channels.json is not JSON");
    row("empty file", "", "channels.json is not JSON");
    row("object", R"({"folder": "a"})", "does not hold an array");
    row("no object", R"([{"folder": "a"}, "b"])", "channel 2: is not an object");
    row("unknown key", R"([{"folder": "a", "marks": "red"}])", "channel 1 (\"a\"): unknown key \"marks\"");
    row("no folder", R"([{"name": "A"}])", "channel 1: \"folder\" is missing or empty");
    row("empty folder", R"([{"folder": ""}])", "\"folder\" is missing or empty");
    row("folder a number", R"([{"folder": 7}])", "\"folder\" is not a text");
    row("folder with a slash", R"([{"folder": "a/b"}])", "\"folder\" holds a slash");
    row("absolute folder", R"([{"folder": "/a"}])", "\"folder\" holds a slash");
    row("folder with a backslash", R"([{"folder": "a\\b"}])", "\"folder\" holds a slash, a backslash");
    row("folder with a line break", R"([{"folder": "a\nb"}])", "control character");
    row("folder above", R"([{"folder": ".."}])", "is \"..\", which is no name of a folder");
    row("folder itself", R"([{"folder": "."}])", "is \".\", which is no name of a folder");
    row("folder and above", R"([{"folder": "../out"}])", "\"folder\" holds a slash");
    row("long folder", R"([{"folder": ")" + QByteArray(256, 'a') + R"("}])", "is longer than 255 bytes");
    row("folder with half a pair", R"([{"folder": "\ud800"}])", "\"folder\" holds half of a surrogate pair");
    row("mark with half a pair", R"([{"folder": "a", "mark": "b\udc00"}])", "\"mark\" holds half of a");
    row("mark above", R"([{"folder": "a", "mark": ".."}])", "\"mark\" is \"..\"");
    row("mark with a slash", R"([{"folder": "a", "mark": "red/icon"}])", "\"mark\" holds a slash");
    row("empty mark", R"([{"folder": "a", "mark": ""}])", "\"mark\" is missing or empty");
    row("mark a truth value", R"([{"folder": "a", "mark": false}])", "\"mark\" is not a text");
    row("name a list", R"([{"folder": "a", "name": ["A"]}])", "\"name\" is not a text");
    row("unknown corner", R"([{"folder": "a", "corner": "top-left"}])", "\"corner\" is none of left-top, ");
    row("corner too large", R"([{"folder": "a", "corner": 5}])", "\"corner\" is none of");
    row("negative corner", R"([{"folder": "a", "corner": -1}])", "\"corner\" is none of");
    row("broken corner", R"([{"folder": "a", "corner": 1.5}])", "\"corner\" is none of");
    row("corner null", R"([{"folder": "a", "corner": null}])", "\"corner\" is none of");
    row("x a text", R"([{"folder": "a", "x": "7"}])", "\"x\" is not a whole number");
    row("broken y", R"([{"folder": "a", "y": -0.5}])", "\"y\" is not a whole number");
    row("y too large", R"([{"folder": "a", "y": 2147483648}])", "\"y\" is not a whole number");
}

void tst_IconCommands::listMistakesAreNamedAndNothingIsTouched()
{
    QFETCH(const QByteArray, list);
    QFETCH(const QByteArray, error);
    write(out(QStringLiteral("kept")), "kept");
    const Ended ended = icons(list);
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains(error), ended.error.constData());
    QCOMPARE(ended.error.count("quenzo: "), 1);
    QCOMPARE(ended.output, QByteArray());
    QCOMPARE(filesBelow(out()), words("kept"));
}

void tst_IconCommands::allMistakesAreNamedAtOnce()
{
    const Ended ended =
        icons(R"([{"folder": "..", "x": true}, {"folder": "a"}, {"mark": 3}])", words("--icon absent.png"));
    QCOMPARE(ended.code, 1);
    for (const char* part : {"'absent.png' cannot be read", "channel 1 (\"..\"): \"folder\"", "\"x\" is not",
                             "channel 3: \"folder\" is missing", "channel 3: \"mark\" is not a text"})
        QVERIFY2(ended.error.contains(part), part);
}

void tst_IconCommands::missingInputIsNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("error");
    QTest::newRow("icon") << words("--icon absent.png --marks marks --out out channels.json")
                          << QByteArray("the icon 'absent.png' cannot be read");
    QTest::newRow("icon that is none") << words("--icon channels.json --marks marks --out out channels.json")
                                       << QByteArray("the icon 'channels.json' cannot be read");
    QTest::newRow("marks") << words("--icon game.png --marks absent --out out channels.json")
                           << QByteArray("the marks' folder 'absent' does not exist");
    QTest::newRow("list") << words("--icon game.png --marks marks --out out absent.json")
                          << QByteArray("absent.json cannot be read");
    QTest::newRow("output folder") << words("--icon game.png --marks marks --out game.png channels.json")
                                   << QByteArray("game.png' is not a folder");
}

void tst_IconCommands::missingInputIsNamed()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QByteArray, error);
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a"}])");
    const Ended ended = quenzo(words("icons --platform android --sheet sheet.png") + arguments);
    QCOMPARE(ended.code, 1);
    QCOMPARE(ended.error.count("quenzo: "), 1);
    QVERIFY2(ended.error.contains(error), ended.error.constData());
    QVERIFY(!QFileInfo::exists(out()));
    QVERIFY(!master().isNull());
}

void tst_IconCommands::badUsageExitsWithTwo_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("no list") << words("--icon game.png --marks marks --out out --platform ios");
    QTest::newRow("two lists") << words(
        "--icon game.png --marks marks --out out --platform ios a.json b.json");
    QTest::newRow("no icon") << words("--marks marks --out out --platform ios channels.json");
    QTest::newRow("no marks") << words("--icon game.png --out out --platform ios channels.json");
    QTest::newRow("no output folder") << words("--icon game.png --marks marks --platform ios channels.json");
    QTest::newRow("no platform") << words("--icon game.png --marks marks --out out channels.json");
    const QStringList whole = words("--icon game.png --marks marks --out out --platform ios channels.json");
    QTest::newRow("unknown platform") << whole + words("--platform windows");
    QTest::newRow("number of a platform") << whole + words("--platform 0");
    QTest::newRow("unknown corner") << whole + words("--default-corner top");
    QTest::newRow("default of default") << whole + words("--default-corner default");
    QTest::newRow("corner too large") << whole + words("--default-corner 4");
    QTest::newRow("x a word") << whole + words("--default-x left");
    QTest::newRow("broken y") << whole + words("--default-y 1.5");
    QTest::newRow("unknown option") << whole + words("--clear");
}

void tst_IconCommands::badUsageExitsWithTwo()
{
    QFETCH(const QStringList, arguments);
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a"}])");
    write(out(QStringLiteral("kept")), "kept");
    const Ended ended = quenzo(words("icons") + arguments);
    QCOMPARE(ended.code, 2);
    QVERIFY(!ended.error.isEmpty());
    QCOMPARE(ended.output, QByteArray());
    QCOMPARE(filesBelow(out()), words("kept"));
}

QTEST_GUILESS_MAIN(tst_IconCommands)
#include "tst_iconcommands.moc"
