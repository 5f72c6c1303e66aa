// SPDX-License-Identifier: MIT
#include "build/buildreport.h"
#include "console/figures.h"
#include "reportscene.h"

#include <QImage>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>

#include <clocale>
#include <cmath>
#include <sys/stat.h>

namespace {

// What a page is made of, told by a reader of XML: void elements are closed for it, and attributes without a
// value get one.
struct PageContent {
    QString fault; ///< empty when the markup is whole
    QStringList elements;
    QVector<QPair<QString, QString>> attributes;
    QString text; ///< outside of the style
    QString style;

    QStringList valuesOf(const QString& attribute) const
    {
        QStringList values;
        for (const auto& each : attributes) {
            if (each.first == attribute)
                values.append(each.second);
        }
        return values;
    }
};

PageContent contentOf(const QByteArray& page)
{
    QString markup = QString::fromUtf8(page);
    markup.remove(QStringLiteral("<!DOCTYPE html>"));
    markup.replace(QRegularExpression(QStringLiteral("<(meta|img|wbr)([^<>]*)>")),
                   QStringLiteral("<\\1\\2/>"));
    markup.replace(QStringLiteral("<details open>"), QStringLiteral("<details open=\"\">"));
    PageContent content;
    QXmlStreamReader reader(markup);
    bool isStyle = false;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            content.elements.append(reader.name().toString());
            for (const QXmlStreamAttribute& attribute : reader.attributes())
                content.attributes.append({attribute.name().toString(), attribute.value().toString()});
            isStyle = reader.name() == QLatin1String("style");
        } else if (reader.isEndElement()) {
            isStyle = false;
        } else if (reader.isCharacters()) {
            (isStyle ? content.style : content.text) += reader.text();
        }
    }
    if (reader.hasError())
        content.fault = QStringLiteral("line %1: %2").arg(reader.lineNumber()).arg(reader.errorString());
    return content;
}

// The colours of a theme by name, as the style declares them.
QMap<QString, QColor> coloursOf(const QString& declarations)
{
    QMap<QString, QColor> colours;
    auto match =
        QRegularExpression(QStringLiteral("--([a-z0-9-]+): (#[0-9a-f]{6});")).globalMatch(declarations);
    while (match.hasNext()) {
        const QRegularExpressionMatch next = match.next();
        colours.insert(next.captured(1), QColor(next.captured(2)));
    }
    return colours;
}

double contrast(const QColor& one, const QColor& other)
{
    const auto luminance = [](const QColor& colour) {
        const auto linear = [](double part) {
            return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
            + 0.0722 * linear(colour.blueF());
    };
    const double a = luminance(one) + 0.05;
    const double b = luminance(other) + 0.05;
    return qMax(a, b) / qMin(a, b);
}

} // namespace

// The forms of a run's report that people read: a page, and a table for terminals.
class tst_BuildReport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void pageTellsOfTheRun_data();
    void pageTellsOfTheRun();
    void failedChannelsComeFirst();
    void textsOfOthersAreOnlyTexts();
    void pageRefersToNothingElse();
    void picturesAreInThePage();
    void iconsAreReadFromTheSmallestSharpFile_data();
    void iconsAreReadFromTheSmallestSharpFile();
    void whatIsNoPictureIsLeftOut_data();
    void whatIsNoPictureIsLeftOut();
    void everyPictureIsDescribed();
    void coloursContrast_data();
    void coloursContrast();
    void pageOfManyChannelsStaysSmall();
    void tableFitsTheTerminal();
    void tableTellsEveryChannel();
    void tableGivesUpColumnsOneByOne_data();
    void tableGivesUpColumnsOneByOne();
    void steeringTextsStayInTheTable();
    void sumsStandBelow_data();
    void sumsStandBelow();
    void reportsAreWrittenWhole();
    void failuresAreTold();
    void limitOfFilesLeavesTheReportThatWas();

private:
    QString picture(const char* name, const QSize& size, bool isNoise = false) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

// Under the C locale alone a wide letter would have no width.
void tst_BuildReport::initTestCase()
{
    QVERIFY(std::setlocale(LC_ALL, "C.UTF-8") != nullptr);
    QLocale::setDefault(QLocale(QLocale::English));
}

QString tst_BuildReport::picture(const char* name, const QSize& size, bool isNoise) const
{
    QImage image(size, QImage::Format_RGB32);
    quint32 state = 1;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            state = state * 1664525 + 1013904223;
            image.setPixel(x, y, isNoise ? state >> 8 : qRgb(x % 256, y % 256, 128));
        }
    }
    const QString path = m_folder->filePath(QLatin1String(name));
    if (!image.save(path, "PNG"))
        qFatal("cannot write %s", qUtf8Printable(path));
    return path;
}

void tst_BuildReport::pageTellsOfTheRun_data()
{
    QTest::addColumn<BuildOutcome>("build");
    QTest::addColumn<QString>("verdict");
    QTest::addColumn<QStringList>("facts");
    const BuildOutcome run = ReportScene::run();
    QTest::newRow("failed") << run << QStringLiteral("Sky Harbour: 1 of 5 channels failed")
                            << QStringList{QStringLiteral("2026-03-14 09:26:53 UTC"),
                                           QStringLiteral("12.3 s"),
                                           QStringLiteral("3, 7.0 MB"),
                                           QStringLiteral("signed"),
                                           QStringLiteral("com.quenzo.skyharbour"),
                                           QStringLiteral("1.2.0"),
                                           QStringLiteral("6 replaced"),
                                           QStringLiteral("4 added"),
                                           QStringLiteral("2.1 MB"),
                                           QString::fromUtf8("草地渠道"),
                                           QStringLiteral("replaces assets/story.txt"),
                                           QStringLiteral("the key cannot be read"),
                                           QStringLiteral("not reached"),
                                           QStringLiteral("/builds/harbour/job.json")};
    BuildOutcome whole = run;
    whole.channels = run.channels.mid(0, 3);
    whole.channels[1].signer.clear();
    QTest::newRow("whole") << whole << QStringLiteral("Sky Harbour: every channel is built")
                           << QStringList(QStringLiteral("1 of 3 unsigned"));
    whole.interrupted = true;
    QTest::newRow("interrupted") << whole
                                 << QStringLiteral("Sky Harbour: interrupted: 3 of 3 channels are finished")
                                 << QStringList();
    QTest::newRow("slice") << ReportScene::slice(2, 24, 50)
                           << QStringLiteral("Sky Harbour: every channel is built")
                           << QStringList(QStringLiteral("3 of 24"));
    BuildOutcome empty = run;
    empty.channels.clear();
    QTest::newRow("empty") << empty << QStringLiteral("Sky Harbour: there was no channel to build")
                           << QStringList();
}

void tst_BuildReport::pageTellsOfTheRun()
{
    QFETCH(const BuildOutcome, build);
    QFETCH(const QString, verdict);
    QFETCH(const QStringList, facts);
    const QByteArray page = BuildReport::toHtml(build);
    const PageContent content = contentOf(page);
    QCOMPARE(content.fault, QString());
    QVERIFY2(page.contains("<title>" + verdict.toUtf8() + "</title>"), page.left(1000).constData());
    for (const QString& fact : facts)
        QVERIFY2(content.text.contains(fact), qUtf8Printable(fact));
    QCOMPARE(content.elements.count(QStringLiteral("h1")), 1);
    QCOMPARE(content.elements.count(QStringLiteral("h3")), build.channels.size());
    QCOMPARE(content.valuesOf(QStringLiteral("lang")), QStringList(QStringLiteral("en")));
    QStringList ids = content.valuesOf(QStringLiteral("id"));
    QCOMPARE(ids.removeDuplicates(), 0);
}

void tst_BuildReport::failedChannelsComeFirst()
{
    const QByteArray page = BuildReport::toHtml(ReportScene::run());
    QVector<int> places;
    for (const char* const id : {"channel-3", "channel-4", "channel-0", "channel-1", "channel-2"})
        places.append(page.indexOf(QByteArray("id=\"") + id + '"'));
    QVERIFY(places.first() > 0);
    QVERIFY2(std::is_sorted(places.cbegin(), places.cend()), page.constData());
    QVERIFY(page.contains("<details open>")); // how far it came
    QCOMPARE(page.count("the key cannot be read"), 1);
    QVERIFY2(!page.contains(">0 ms<"), "a skipped step took no time");
}

void tst_BuildReport::textsOfOthersAreOnlyTexts()
{
    BuildOutcome build = ReportScene::run();
    const PageContent usual = contentOf(BuildReport::toHtml(build));
    // Places of the page's own texts, too.
    const QString text = ReportScene::hostileText() + QStringLiteral("%1%2%3%4%5%6");
    build.game = build.job = build.output = text;
    for (ChannelOutcome& channel : build.channels) {
        for (QString* const each : {&channel.folder, &channel.name, &channel.message, &channel.packageName,
                                    &channel.versionName, &channel.signer, &channel.digest, &channel.inputs})
            *each = each->isEmpty() ? QString() : text;
        for (QString& note : channel.notes)
            note = text;
        for (BuildStep& step : channel.steps)
            step.message = step.message.isEmpty() ? QString() : text;
    }
    build.channels[0].steps[0].name = text;
    build.channels[0].steps[1].message = text;
    const QByteArray page = BuildReport::toHtml(build);
    const PageContent content = contentOf(page);
    QCOMPARE(content.fault, QString());
    QVERIFY(!content.elements.contains(QStringLiteral("script")));
    QStringList known = usual.elements;
    known.removeDuplicates();
    for (const QString& element : content.elements)
        QVERIFY2(known.contains(element), qUtf8Printable(element));
    QStringList names;
    for (const auto& attribute : usual.attributes)
        names.append(attribute.first);
    for (const auto& attribute : content.attributes)
        QVERIFY2(names.contains(attribute.first), qUtf8Printable(attribute.first));
    for (const QChar letter : QString::fromUtf8(page)) {
        const ushort code = letter.unicode();
        const bool isSafe = (code >= 0x20 || code == '\n') && !(code >= 0x7f && code < 0xa0)
            && !(code >= 0x202a && code <= 0x202e) && !(code >= 0x2066 && code <= 0x2069);
        QVERIFY2(isSafe, qPrintable(QString::number(code, 16)));
    }
    QVERIFY(content.text.contains(
        QStringLiteral("<script>alert(\"1\")</script>'--></style>&amp;]]>\\r\\n\\t\\x1b[31m"
                       "\\x7f\\x9b\\u202ekpa.\\u2066")
        + QChar(0x639) + QStringLiteral("%1%2%3%4%5%6")));
}

void tst_BuildReport::pageRefersToNothingElse()
{
    BuildOutcome build = ReportScene::run();
    build.channels[0].icons = QStringList(picture("icon.png", {192, 192}));
    build.sheets = QStringList(picture("sheet.png", {400, 300}));
    build.channels[1].name = QStringLiteral("http://example.org/");
    const QByteArray page = BuildReport::toHtml(build);
    const PageContent content = contentOf(page);
    QVERIFY(page.contains("default-src 'none'; img-src data:; style-src 'unsafe-inline'"));
    for (const char* const element :
         {"script", "link", "iframe", "object", "embed", "base", "form", "a", "svg"})
        QVERIFY2(!content.elements.contains(QLatin1String(element)), element);
    const QStringList allowed{QStringLiteral("alt"),        QStringLiteral("aria-hidden"),
                              QStringLiteral("aria-label"), QStringLiteral("aria-labelledby"),
                              QStringLiteral("charset"),    QStringLiteral("class"),
                              QStringLiteral("content"),    QStringLiteral("datetime"),
                              QStringLiteral("height"),     QStringLiteral("http-equiv"),
                              QStringLiteral("id"),         QStringLiteral("lang"),
                              QStringLiteral("name"),       QStringLiteral("open"),
                              QStringLiteral("role"),       QStringLiteral("scope"),
                              QStringLiteral("src"),        QStringLiteral("style"),
                              QStringLiteral("title"),      QStringLiteral("width")};
    for (const auto& attribute : content.attributes)
        QVERIFY2(allowed.contains(attribute.first), qUtf8Printable(attribute.first));
    QCOMPARE(content.valuesOf(QStringLiteral("src")).size(), 2);
    for (const QString& source : content.valuesOf(QStringLiteral("src")))
        QCOMPARE(QUrl(source).scheme(), QStringLiteral("data"));
    for (const QString& style : content.valuesOf(QStringLiteral("style")) + QStringList(content.style)) {
        for (const char* const fetching : {"url(", "@import", "@font-face", "image-set", "src("})
            QVERIFY2(!style.contains(QLatin1String(fetching)), fetching);
    }
}

void tst_BuildReport::picturesAreInThePage()
{
    BuildOutcome build = ReportScene::run();
    build.channels[0].icons = QStringList{picture("large.png", {512, 512}), picture("small.png", {36, 36})};
    build.channels[1].icons = QStringList(picture("wide.png", {400, 200}));
    build.sheets = QStringList(picture("sheet.png", {2000, 1000}));
    QVector<QSize> sizes;
    for (const QString& source : contentOf(BuildReport::toHtml(build)).valuesOf(QStringLiteral("src"))) {
        const QString start = QStringLiteral("data:image/png;base64,");
        QVERIFY(source.startsWith(start));
        sizes.append(QImage::fromData(QByteArray::fromBase64(source.mid(start.size()).toLatin1())).size());
    }
    QCOMPARE(sizes, (QVector<QSize>{{96, 96}, {36, 36}, {96, 48}, {960, 480}}));
}

void tst_BuildReport::iconsAreReadFromTheSmallestSharpFile_data()
{
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QStringList>("others");
    QTest::addColumn<int>("shown"); // the width of the file that is read
    const QString android = QStringLiteral("android-icon.png");
    const QString ios = QStringLiteral("icon512x512.png");
    const auto row = [](const char* title, const QString& icon, const char* others, int shown) {
        QTest::newRow(title) << icon << QString::fromLatin1(others).split(QLatin1Char(' ')) << shown;
    };
    row("Android's least that is large enough", android,
        "android/200.png android/res/180.png android/res/96.png", 180);
    row("Android's are all too small", android, "android/143.png android/res/96.png", 512);
    row("iOS's", ios, "Icon-144.png Icon-152.png", 144);
    row("iOS's is not there", ios, "Icon-100.png android/192.png", 512);
    row("an icon of no set", QStringLiteral("icon.png"), "Icon-144.png android/192.png", 512);
}

void tst_BuildReport::iconsAreReadFromTheSmallestSharpFile()
{
    QFETCH(const QString, icon);
    QFETCH(const QStringList, others);
    QFETCH(const int, shown);
    constexpr int whole = 512;
    constexpr int height = 36; // by which they are told apart, whatever their widths become
    BuildOutcome build = ReportScene::run();
    build.channels[0].icons = QStringList(picture(icon.toLatin1(), {whole, height}));
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("android/res")));
    for (const QString& other : others) {
        const int width = QString(other).remove(QRegularExpression(QStringLiteral("\\D"))).toInt();
        picture(other.toLatin1(), {width, height});
    }
    const QStringList sources = contentOf(BuildReport::toHtml(build)).valuesOf(QStringLiteral("src"));
    QCOMPARE(sources.size(), 1);
    const QByteArray content =
        QByteArray::fromBase64(sources.first().section(QLatin1Char(','), 1).toLatin1());
    QCOMPARE(QImage::fromData(content).size(), QSize(shown, height).scaled(96, 96, Qt::KeepAspectRatio));
}

void tst_BuildReport::whatIsNoPictureIsLeftOut_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* const kind : {"absent", "folder", "pipe", "text", "cut", "svg"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void tst_BuildReport::whatIsNoPictureIsLeftOut()
{
    QFETCH(const QString, kind);
    const QString path = m_folder->filePath(QStringLiteral("icon.png"));
    const auto put = [&path](const QByteArray& content) {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    };
    if (kind == QLatin1String("folder"))
        QVERIFY(QDir().mkdir(path));
    else if (kind == QLatin1String("pipe"))
        QCOMPARE(mkfifo(path.toUtf8().constData(), 0600), 0);
    else if (kind == QLatin1String("text"))
        QVERIFY(put("no picture"));
    else if (kind == QLatin1String("cut"))
        QVERIFY(put("\x89PNG\r\n\x1a\n"));
    else if (kind == QLatin1String("svg"))
        QVERIFY(put("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>"));
    BuildOutcome build = ReportScene::run();
    build.channels[0].icons = QStringList(path);
    build.sheets = QStringList(path);
    const PageContent content = contentOf(BuildReport::toHtml(build));
    QCOMPARE(content.fault, QString());
    QVERIFY(content.valuesOf(QStringLiteral("src")).isEmpty());
    QVERIFY(content.text.contains(path)); // the sheet's, for who wants to look for it
}

void tst_BuildReport::everyPictureIsDescribed()
{
    BuildOutcome build = ReportScene::run();
    build.channels[0].icons = QStringList(picture("icon.png", {96, 96}));
    build.sheets = QStringList(picture("sheet.png", {96, 96}));
    const PageContent content = contentOf(BuildReport::toHtml(build));
    const QStringList expected{QStringLiteral("icon of harbor"), QStringLiteral("the icons of all channels")};
    QCOMPARE(content.valuesOf(QStringLiteral("alt")), expected);
    // Each bar says its parts, as the colours alone would not.
    QVERIFY(content.valuesOf(QStringLiteral("aria-label"))
                .contains(QStringLiteral(
                    "SDKs 200 ms, icons 200 ms, package 200 ms, signature 600 ms, check 50 ms, "
                    "output 50 ms, export 50 ms")));
}

void tst_BuildReport::coloursContrast_data()
{
    QTest::addColumn<int>("theme");
    QTest::newRow("light") << 0;
    QTest::newRow("dark") << 1;
}

void tst_BuildReport::coloursContrast()
{
    QFETCH(const int, theme);
    const QString style = contentOf(BuildReport::toHtml(ReportScene::run())).style;
    const int dark = style.indexOf(QStringLiteral("@media (prefers-color-scheme: dark)"));
    QVERIFY(dark > 0);
    const auto colours = coloursOf(theme == 0 ? style.left(dark) : style.mid(dark));
    const auto atLeast = [&colours](double least, const QString& one, const QString& other) {
        const double found = contrast(colours.value(one), colours.value(other));
        return found >= least ? QString()
                              : QStringLiteral("%1 on %2: %3\n").arg(one, other, QString::number(found));
    };
    QString faults;
    for (const char* const ground : {"page", "card"}) {
        for (const char* const ink : {"text", "muted", "good", "bad", "idle"})
            faults += atLeast(4.5, QLatin1String(ink), QLatin1String(ground));
        for (int i = 0; i < 8; ++i)
            faults += atLeast(3, QStringLiteral("step%1").arg(i), QLatin1String(ground));
        faults += atLeast(3, QStringLiteral("other"), QLatin1String(ground));
    }
    for (const char* const look : {"good", "bad", "idle"})
        faults += atLeast(4.5, QLatin1String(look), QLatin1String(look) + QStringLiteral("-soft"));
    QVERIFY2(faults.isEmpty(), qPrintable(faults));
}

// Even when no icon compresses.
void tst_BuildReport::pageOfManyChannelsStaysSmall()
{
    constexpr int channels = 300;
    const QString icon = picture("noise.png", {192, 192}, true);
    BuildOutcome build = ReportScene::run();
    build.channels.clear();
    for (int i = 0; i < channels; ++i) {
        build.channels.append(ReportScene::built(i, QStringLiteral("channel%1").arg(i)));
        build.channels.last().icons = QStringList(icon);
    }
    const qint64 size = BuildReport::toHtml(build).size();
    QVERIFY2(size < qint64(channels) * 22000, qPrintable(QString::number(size)));
}

void tst_BuildReport::tableFitsTheTerminal()
{
    BuildOutcome build = ReportScene::run();
    build.channels[1].folder = QString::fromUtf8("一个名字很长的渠道的文件夹一个名字很长的渠道的文件夹");
    build.channels[2].name = QString(120, QLatin1Char('n'));
    build.channels[3].message =
        QStringLiteral("the file /%1/key.p12 cannot be read: ").arg(QString(90, QLatin1Char('p')))
        + QString::fromUtf8("没有那个文件或目录没有那个文件或目录没有那个文件或目录没有那个文件或目录");
    for (int columns = 40; columns <= 200; ++columns) {
        const QStringList lines = BuildReport::toTable(build, columns);
        for (const QString& line : lines) {
            QVERIFY2(
                columnsOf(line) <= columns,
                qUtf8Printable(QStringLiteral("%1 of %2: %3").arg(columnsOf(line)).arg(columns).arg(line)));
            QVERIFY2(!line.isEmpty() && !line.endsWith(QLatin1Char(' ')), qUtf8Printable(line));
        }
        QVERIFY(lines.size() > build.channels.size() + 1);
    }
}

void tst_BuildReport::tableTellsEveryChannel()
{
    BuildOutcome build = ReportScene::run();
    const QStringList expected{
        QStringLiteral("channel            outcome      package                        size   time"),
        QStringLiteral("harbor             built        com.quenzo.skyharbour 1.2.0  2.3 MB  1.4 s"),
        QString::fromUtf8("meadow (草地渠道)  built        com.quenzo.skyharbour 1.2.0  2.3 MB  1.4 s"),
        QStringLiteral("nimbus             unchanged    com.quenzo.skyharbour 1.2.0  2.3 MB"),
        QStringLiteral("quartz             failed                                            1.2 s"),
        QStringLiteral("  the key cannot be read"),
        QStringLiteral("tideway            not reached"),
        QStringLiteral("2 built, 1 unchanged, 1 failed, 1 not reached, 7.0 MB, 12.3 s, signed"),
    };
    QCOMPARE(BuildReport::toTable(build, 80), expected);
}

void tst_BuildReport::tableGivesUpColumnsOneByOne_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("line");
    QTest::newRow("wide")
        << 200
        << QString::fromUtf8("meadow (草地渠道)  built        com.quenzo.skyharbour 1.2.0  2.3 MB  1.4 s");
    QTest::newRow("no package") << 70 << QString::fromUtf8("meadow (草地渠道)  built        2.3 MB  1.4 s");
    QTest::newRow("shorter name") << 40 << QString::fromUtf8("meadow (草…   built        2.3 MB  1.4 s");
    QTest::newRow("no time") << 34 << QString::fromUtf8("meadow (…   built        2.3 MB");
    QTest::newRow("no size") << 26 << QString::fromUtf8("meadow (…   built");
}

void tst_BuildReport::tableGivesUpColumnsOneByOne()
{
    QFETCH(const int, columns);
    QTEST(BuildReport::toTable(ReportScene::run(), columns).at(2), "line");
}

void tst_BuildReport::steeringTextsStayInTheTable()
{
    BuildOutcome build = ReportScene::run();
    build.channels[0] = ReportScene::failed(0, ReportScene::hostileText(), ReportScene::hostileText());
    build.channels[1].packageName = ReportScene::hostileText();
    for (const QString& line : BuildReport::toTable(build, 300)) {
        for (const QChar letter : line) {
            const ushort code = letter.unicode();
            QVERIFY2(code >= 0x20 && !(code >= 0x7f && code < 0xa0) && code != 0x202e && code != 0x2066,
                     qUtf8Printable(line));
        }
    }
}

void tst_BuildReport::sumsStandBelow_data()
{
    QTest::addColumn<BuildOutcome>("build");
    QTest::addColumn<QString>("sums");
    BuildOutcome build = ReportScene::run();
    build.channels = build.channels.mid(0, 2);
    build.channels[0].signer.clear();
    QTest::newRow("one unsigned") << build << QStringLiteral("2 built, 4.7 MB, 12.3 s, 1 of 2 unsigned");
    build.channels[1].signer.clear();
    build.interrupted = true;
    QTest::newRow("interrupted") << build << QStringLiteral("2 built, 4.7 MB, 12.3 s, unsigned, interrupted");
    build.channels.clear();
    build.interrupted = false;
    QTest::newRow("empty") << build << QStringLiteral("there was no channel to build, 12.3 s");
    QTest::newRow("nothing") << BuildOutcome() << QStringLiteral("there was no channel to build");
}

void tst_BuildReport::sumsStandBelow()
{
    QFETCH(const BuildOutcome, build);
    QTEST(BuildReport::toTable(build, 80).last(), "sums");
}

void tst_BuildReport::reportsAreWrittenWhole()
{
    const BuildOutcome build = ReportScene::run();
    QCOMPARE(BuildReport::write(build, m_folder->path()), QString());
    const auto read = [this](const char* name) {
        QFile file(m_folder->filePath(QLatin1String(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    QCOMPARE(QJsonDocument::fromJson(read("report.json")).object(), BuildReport::toJson(build));
    QCOMPARE(read("report.html"), BuildReport::toHtml(build));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::Hidden).size(),
             2);
}

void tst_BuildReport::failuresAreTold()
{
    const QString absent = m_folder->filePath(QStringLiteral("absent"));
    QVERIFY2(BuildReport::write(ReportScene::run(), absent)
                 .startsWith(QStringLiteral("the report %1/report.json cannot be written: ").arg(absent)),
             qUtf8Printable(BuildReport::write(ReportScene::run(), absent)));
    QVERIFY(QDir().mkpath(m_folder->filePath(QStringLiteral("report.html"))));
    const QString fault = BuildReport::write(ReportScene::run(), m_folder->path());
    QVERIFY2(fault.startsWith(
                 QStringLiteral("the report %1/report.html cannot be written: ").arg(m_folder->path())),
             qUtf8Printable(fault));
}

// The last bytes wait in a buffer until the file is closed, and are no less wanted.
void tst_BuildReport::limitOfFilesLeavesTheReportThatWas()
{
    const BuildOutcome before;
    QCOMPARE(BuildReport::write(before, m_folder->path()), QString());
    rlimit was{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &was), 0);
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit low{100, was.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &low), 0);
    const QString fault = BuildReport::write(ReportScene::run(), m_folder->path());
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &was), 0);
    QVERIFY2(fault.startsWith(
                 QStringLiteral("the report %1/report.json cannot be written: ").arg(m_folder->path())),
             qUtf8Printable(fault));
    QFile file(m_folder->filePath(QStringLiteral("report.json")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QJsonDocument::fromJson(file.readAll()).object(), BuildReport::toJson(before));
}

QTEST_GUILESS_MAIN(tst_BuildReport)
#include "tst_buildreport.moc"
