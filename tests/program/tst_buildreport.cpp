// SPDX-License-Identifier: MIT
#include "build/buildreport.h"
#include "pagecontent.h"
#include "reportscene.h"

#include <QColor>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <csignal>
#include <sys/resource.h>

namespace {

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

// The page of a run's report: what it tells, and how it comes to its file.
class tst_BuildReport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void pageTellsOfTheRun_data();
    void pageTellsOfTheRun();
    void failedChannelsComeFirst();
    void textsOfOthersAreOnlyTexts();
    void coloursContrast_data();
    void coloursContrast();
    void reportsAreWrittenWhole();
    void failuresAreTold();
    void limitOfFilesLeavesTheReportThatWas();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

// By which the texts are worded.
void tst_BuildReport::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English));
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
    const PageContent content = PageContent::of(page);
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
    const PageContent usual = PageContent::of(BuildReport::toHtml(build));
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
    const PageContent content = PageContent::of(page);
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

void tst_BuildReport::coloursContrast_data()
{
    QTest::addColumn<int>("theme");
    QTest::newRow("light") << 0;
    QTest::newRow("dark") << 1;
}

void tst_BuildReport::coloursContrast()
{
    QFETCH(const int, theme);
    const QString style = PageContent::of(BuildReport::toHtml(ReportScene::run())).style;
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
