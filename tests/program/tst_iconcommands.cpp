// SPDX-License-Identifier: MIT
#include "iconpictures.h"
#include "iconscene.h"
#include "terminal.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

using namespace IconPictures;

namespace {

const QList<int> androidSides{36, 48, 72, 96, 144, 192};
const QList<int> iosSides{29, 40, 50, 57, 58, 72, 76, 80, 87, 100, 114, 120, 144, 152, 180};

QString nameOf(const QString& platform, int side)
{
    return platform == QLatin1String("android") ? QStringLiteral("icon%1x%1.png").arg(side)
                                                : QStringLiteral("Icon-%1.png").arg(side);
}

bool isBlank(const QImage& picture)
{
    QImage plain(picture.size(), picture.format());
    plain.fill(picture.pixel(0, 0));
    return plain == picture;
}

} // namespace

// The icons that the built program makes, of small pictures and of the sample.
class tst_IconCommands : public QObject, private IconScene {
    Q_OBJECT

private Q_SLOTS:
    void init() { prepare(); }

    void sampleGivesWholeSetsOfTheRightSizes_data();
    void sampleGivesWholeSetsOfTheRightSizes();
    void cornersAreNamedOrNumbered_data();
    void cornersAreNamedOrNumbered();
    void defaultCornerTakesTheDefaultPlace();
    void cornerAndMarkMayBeLeftOut();
    void numberedDefaultCornerIsTaken();
    void markWithoutAPlaceLiesFlushInItsCorner_data();
    void markWithoutAPlaceLiesFlushInItsCorner();
    void markLargerThanTheIconKeepsItsCorner();
    void listMayComeFromTheStandardInput();
    void pathsMayBeginWithAColon();
    void outputFolderIsClearedFirst();
    void outputFolderOfAnEarlierRunIsClearedAgain();
    void outputFolderMayBeALink();
    void keepLeavesOtherFilesAndReplacesItsOwn();
    void relativeOutputFolderIsBelowTheCurrentOne();
    void dryRunTellsAllAndTouchesNothing();
    void dryRunOfAnAdditionDeletesNothing();
    void dryRunRefusesWhatARunWould();
    void emptyListGivesAnEmptyFolder();
    void sheetShowsEveryIcon();
    void sheetGoesToTheOutput();
    void countsReadWellForOneChannel();
    void jsonTellsAllOfARun();
    void progressIsShownOnATerminal();
};

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
    const Ended ended = quenzo(QStringList{QStringLiteral("icons"), QStringLiteral("--icon"),
                                           sample + QStringLiteral("/icon.png"), QStringLiteral("--marks"),
                                           sample + QStringLiteral("/marks"), QStringLiteral("--platform"),
                                           platform, sample + QStringLiteral("/channels.json")}
                               + words("--out out"));
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
    for (int i = 0; i < cornerNames().size(); ++i) {
        const QByteArray name = cornerNames().at(i).toUtf8();
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
    QCOMPARE(produced(QStringLiteral("marked")), marked(master(), markPicture(3), 68, -68));
}

void tst_IconCommands::numberedDefaultCornerIsTaken()
{
    QCOMPARE(icons(R"([{"folder": "a", "mark": "red"}])", words("--default-corner 2")).error, QByteArray());
    QCOMPARE(produced(QStringLiteral("a")), marked(master(), markPicture(2), 72, 0));
}

void tst_IconCommands::markWithoutAPlaceLiesFlushInItsCorner_data()
{
    QTest::addColumn<QByteArray>("place");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("corner");
    QTest::addColumn<QPoint>("position");
    // The mark's pictures have 20, 24, 28 and 32 pixels a side, the icon 100.
    const QList<QPoint> flush{{0, 0}, {0, -76}, {72, 0}, {68, -68}};
    for (int i = 0; i < flush.size(); ++i) {
        const QPoint place = flush.at(i);
        const QByteArray name = cornerNames().at(i).toUtf8();
        const QByteArray corner = R"(, "corner": ")" + name + '"';
        const QStringList byDefault{QStringLiteral("--default-corner"), cornerNames().at(i)};
        const auto row = [&](const char* title, const QByteArray& given, const QStringList& options,
                             const QPoint& position) {
            QTest::addRow("%s, %s", name.constData(), title) << given << options << i << position;
        };
        row("neither", corner, {}, place);
        row("only x", corner + R"(, "x": 7)", {}, {7, place.y()});
        row("only y", corner + R"(, "y": -7)", {}, {place.x(), -7});
        row("zeros", corner + R"(, "x": 0, "y": 0)", {}, {0, 0});
        row("by default", {}, byDefault, place);
        row("by default, only x", {}, byDefault + words("--default-x 9"), {9, place.y()});
        row("by default, zeros", {}, byDefault + words("--default-x 0 --default-y 0"), {0, 0});
        row("by default, the channel's own left aside", R"(, "x": 1, "y": 1)", byDefault, place);
    }
}

void tst_IconCommands::markWithoutAPlaceLiesFlushInItsCorner()
{
    QFETCH(const QByteArray, place);
    QFETCH(const QStringList, options);
    QFETCH(const int, corner);
    QFETCH(const QPoint, position);
    const Ended ended = icons(R"([{"folder": "a", "mark": "red")" + place + "}]", options);
    const QByteArray lost = "quenzo: channel 'a': \"x\" and \"y\" do not count without a \"corner\"; "
                            "the options of the default one place the mark\n";
    QCOMPARE(ended.error, place.startsWith(R"(, "x")") ? lost : QByteArray());
    QCOMPARE(produced(QStringLiteral("a")),
             marked(master(), markPicture(corner), position.x(), position.y()));
}

void tst_IconCommands::markLargerThanTheIconKeepsItsCorner()
{
    QVERIFY(mark(130, Qt::blue).save(path(QStringLiteral("marks/red/icon/right-bottom.png"))));
    const Ended ended = icons(R"([{"folder": "a", "mark": "red"}])");
    QCOMPARE(ended.code, 0);
    QCOMPARE(produced(QStringLiteral("a")), marked(master(), markPicture(3), -30, 30));
}

void tst_IconCommands::listMayComeFromTheStandardInput()
{
    QStringList withoutList = arguments();
    withoutList.last() = QStringLiteral("-");
    const Ended ended = QuenzoProcess(withoutList, root()).end(R"([{"folder": "a"}])");
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(filesBelow(out()).size(), 7);

    const Ended refused = QuenzoProcess(withoutList, root()).end("[");
    QCOMPARE(refused.code, 1);
    QVERIFY2(refused.error.startsWith("quenzo: the standard input is not JSON: "), refused.error.constData());
}

void tst_IconCommands::pathsMayBeginWithAColon()
{
    for (const auto& [from, to] : {std::pair{"game.png", ":game.png"}, std::pair{"marks", ":marks"}})
        QVERIFY(QFile::rename(path(QLatin1String(from)), root() + QLatin1Char('/') + QLatin1String(to)));
    write(root() + QStringLiteral("/:list"), R"([{"folder": "a", "mark": "red", "corner": "left-top"}])");
    const Ended ended = quenzo(words("icons --icon :game.png --marks :marks --out :out --platform android "
                                     "--sheet :sheet.png :list"));
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.code, 0);
    QCOMPARE(QImage(root() + QStringLiteral("/:out/a/icon512x512.png")),
             marked(QImage(root() + QStringLiteral("/:game.png")),
                    QImage(root() + QStringLiteral("/:marks/red/icon/left-top.png")), 0, 0));
    QVERIFY(!QImage(root() + QStringLiteral("/:sheet.png")).isNull());
}

void tst_IconCommands::outputFolderIsClearedFirst()
{
    write(out(QStringLiteral("old/file")), "old");
    const Ended ended = icons(R"([{"folder": "a"}])", words("--clear"));
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.code, 0);
    QVERIFY(!QFileInfo::exists(out(QStringLiteral("old"))));
    QCOMPARE(filesBelow(out()).size(), 7);
}

void tst_IconCommands::outputFolderOfAnEarlierRunIsClearedAgain()
{
    for (const char* list : {R"([{"folder": "a"}])", R"([{"folder": "b"}])", R"([{"folder": "c"}])"}) {
        const Ended ended = icons(list);
        QCOMPARE(ended.error, QByteArray());
        QCOMPARE(ended.code, 0);
        QCOMPARE(filesBelow(out()).size(), 7);
        QVERIFY(QFileInfo::exists(out(marker())));
    }
}

void tst_IconCommands::outputFolderMayBeALink()
{
    QVERIFY(QDir().mkpath(path(QStringLiteral("real/inner"))));
    write(path(QStringLiteral("real/kept")), "kept");
    QVERIFY(QFile::link(path(QStringLiteral("real/inner")), path(QStringLiteral("out"))));
    const Ended ended = icons(R"([{"folder": "a"}])");
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(filesBelow(path(QStringLiteral("real/inner"))).size(), 7);
    QVERIFY(QFileInfo(path(QStringLiteral("out"))).isSymLink());
    // The folder above the link's target, and not the one above the link.
    const Ended above = icons(R"([{"folder": "b"}])", words("--keep"), QStringLiteral("out/.."));
    QCOMPARE(above.error, QByteArray());
    QCOMPARE(filesBelow(path(QStringLiteral("real/b"))).size(), 7);
    QVERIFY(!QFileInfo::exists(path(QStringLiteral("b"))));
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
                 QFile::encodeName(QDir(root()).canonicalPath() + QStringLiteral("/deep/down"))),
             ended.output.constData());
}

void tst_IconCommands::dryRunTellsAllAndTouchesNothing()
{
    const QByteArray list = R"([{"folder": "a", "mark": "red"}])";
    QCOMPARE(icons(list).code, 0);
    write(out(QStringLiteral("old/inner/file")), "old");
    QVERIFY(QDir().mkpath(out(QStringLiteral("hollow"))));
    QVERIFY(QFile::remove(out(QStringLiteral("a/icon36x36.png"))));
    const QByteArray before = contentOf(out(QStringLiteral("a/icon48x48.png")));
    const QStringList files = filesBelow(root());

    const Ended told = icons(list, words("--dry-run --sheet sheet.png"));
    QCOMPARE(told.error, QByteArray());
    QCOMPARE(told.code, 0);
    const QString folder = QDir(root()).canonicalPath() + QStringLiteral("/out/");
    QString expected;
    for (const char* line :
         {"remove '%1hollow'", "remove '%1old/inner/file'", "write '%1a/icon36x36.png'",
          "write '%1a/icon48x48.png', which is replaced", "write '%1a/icon72x72.png', which is replaced",
          "write '%1a/icon96x96.png', which is replaced", "write '%1a/icon144x144.png', which is replaced",
          "write '%1a/icon192x192.png', which is replaced", "write '%1a/icon512x512.png', which is replaced"})
        expected += QStringLiteral("would ") + QString::fromLatin1(line).arg(folder) + QLatin1Char('\n');
    expected += QStringLiteral("would write 'sheet.png'\nwould write files: 8, and remove: 2\n");
    QCOMPARE(QString::fromUtf8(told.output), expected);
    QCOMPARE(filesBelow(root()), files);
    QVERIFY(QDir(out(QStringLiteral("hollow"))).exists());
    QCOMPARE(contentOf(out(QStringLiteral("a/icon48x48.png"))), before);

    // What it tells is what happens.
    QCOMPARE(icons(list).code, 0);
    QVERIFY(!QFileInfo::exists(out(QStringLiteral("hollow"))));
    QVERIFY(!QFileInfo::exists(out(QStringLiteral("old"))));
    QCOMPARE(filesBelow(out()).size(), 7);
}

void tst_IconCommands::dryRunOfAnAdditionDeletesNothing()
{
    write(out(QStringLiteral("a/mine")), "mine");
    for (const char* options : {"--keep", "--keep --sheet -", "--layout android-res"}) {
        const Ended told = icons(R"([{"folder": "a"}])", words(options) + words("--dry-run"));
        QCOMPARE(told.code, 0);
        QVERIFY2(told.output.endsWith("would write files: 7, and remove: 0\n"), told.output.constData());
        QCOMPARE(filesBelow(out()), words("a/mine"));
    }
}

void tst_IconCommands::dryRunRefusesWhatARunWould()
{
    write(out(QStringLiteral("mine")), "mine");
    const Ended told = icons(R"([{"folder": "a"}])", words("--dry-run"));
    QCOMPARE(told.code, 1);
    QVERIFY2(told.error.contains("is not empty, and no earlier run has made it"), told.error.constData());
    QCOMPARE(told.output, QByteArray());
    QCOMPARE(icons(R"([{"folder": "a", "mark": "absent"}])", words("--dry-run --clear")).code, 1);
}

void tst_IconCommands::emptyListGivesAnEmptyFolder()
{
    write(out(QStringLiteral("old")), "old");
    const Ended ended = icons("[]", words("--clear --sheet sheet.png"));
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.code, 0);
    QVERIFY(QDir(out()).exists());
    QVERIFY(QDir(out()).isEmpty());
    QVERIFY(!QImage(path(QStringLiteral("sheet.png"))).isNull());
}

void tst_IconCommands::sheetGoesToTheOutput()
{
    const Ended ended = icons(R"([{"folder": "a"}])", words("--sheet -"));
    QVERIFY2(ended.error.contains("7 of 7 files"), ended.error.constData());
    QCOMPARE(ended.code, 0);
    QVERIFY2(!QImage::fromData(ended.output, "PNG").isNull(), ended.output.left(100).constData());
    QVERIFY(!QFile::exists(path(QStringLiteral("-"))));
    QCOMPARE(icons(R"([{"folder": "a"}])", words("--sheet - --json")).code, 2);
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
                              words("--json --keep --ignore-missing --sheet sheet.png"));
    QCOMPARE(ended.code, 1);
    const QJsonObject told = ended.result();
    QStringList keys = told.keys();
    keys.sort();
    QCOMPARE(keys, words("causes channels expected missing out sheet written"));
    QCOMPARE(ended.json().value(QStringLiteral("command")).toString(), QStringLiteral("icons"));
    QCOMPARE(ended.json().value(QStringLiteral("ok")).toBool(true), false);
    QCOMPARE(told.value(QStringLiteral("channels")).toInt(), 2);
    QCOMPARE(told.value(QStringLiteral("expected")).toInt(), 14);
    QCOMPARE(told.value(QStringLiteral("written")).toInt(), 7);
    QCOMPARE(told.value(QStringLiteral("missing")).toArray().size(), 7);
    QCOMPARE(told.value(QStringLiteral("missing")).toArray().first().toString(),
             QDir(root()).canonicalPath() + QStringLiteral("/out/b/icon36x36.png"));
    QVERIFY(told.value(QStringLiteral("causes"))
                .toArray()
                .contains(QStringLiteral("the folder %1/out/b/ could not be made: File exists")
                              .arg(QDir(root()).canonicalPath())));
    QVERIFY(!ended.json().value(QStringLiteral("warnings")).toArray().isEmpty());
    QCOMPARE(ended.failure().value(QStringLiteral("message")).toString(),
             QStringLiteral("not written: 7 of 14 files"));
    QCOMPARE(told.value(QStringLiteral("out")).toString(),
             QDir(root()).canonicalPath() + QStringLiteral("/out"));
    QCOMPARE(told.value(QStringLiteral("sheet")).toString(), QStringLiteral("sheet.png"));

    const QJsonObject good = icons(R"([{"folder": "a"}])", words("--json --clear")).result();
    QCOMPARE(good.value(QStringLiteral("written")).toInt(), 7);
    QVERIFY(good.value(QStringLiteral("missing")).isArray());
    QVERIFY(good.value(QStringLiteral("missing")).toArray().isEmpty());
}

void tst_IconCommands::progressIsShownOnATerminal()
{
    // One file that takes long enough for the bar to be drawn several times.
    QVERIFY(photograph(300, 300)
                .scaled(3000, 3000, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                .save(path(QStringLiteral("game.png")), nullptr, 100));
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a"}])");
    Terminal terminal;
    QuenzoProcess process(arguments(), root());
    process.setStandardErrorFile(terminal.path());
    QCOMPARE(process.end().code, 0);

    const QString shown = QString::fromLocal8Bit(terminal.shown());
    QRegularExpressionMatchIterator bars =
        QRegularExpression(
            QStringLiteral(R"(\r\x1b\[K[-|/\\] drawing (\d+) % \[(#*)(\.*)\] (\d) of 7 files)"))
            .globalMatch(shown);
    QVERIFY2(bars.hasNext(), terminal.shown().constData());
    int before = 0;
    while (bars.hasNext()) {
        const QRegularExpressionMatch bar = bars.next();
        const int done = bar.captured(4).toInt();
        QVERIFY(done >= before && done <= 7);
        QCOMPARE(bar.captured(1).toInt(), done * 100 / 7);
        QCOMPARE(bar.capturedLength(2), done * 20 / 7);
        QCOMPARE(bar.capturedLength(3), 20 - done * 20 / 7);
        before = done;
    }
    QVERIFY2(QRegularExpression(QStringLiteral(R"((files|left)\r\x1b\[K$)")).match(shown).hasMatch(),
             "the bar stays");
}

QTEST_GUILESS_MAIN(tst_IconCommands)
#include "tst_iconcommands.moc"
