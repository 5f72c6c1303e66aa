// SPDX-License-Identifier: MIT
#include "build/buildreport.h"
#include "console/figures.h"
#include "reportscene.h"

#include <QtTest>

#include <clocale>

// The table of a run for terminals.
class tst_ReportTable : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void tableFitsTheTerminal();
    void tableTellsEveryChannel();
    void tableGivesUpColumnsOneByOne_data();
    void tableGivesUpColumnsOneByOne();
    void steeringTextsStayInTheTable();
    void sumsStandBelow_data();
    void sumsStandBelow();
};

// Under the C locale alone a wide letter would have no width.
void tst_ReportTable::initTestCase()
{
    QVERIFY(std::setlocale(LC_ALL, "C.UTF-8") != nullptr);
    QLocale::setDefault(QLocale(QLocale::English));
}

void tst_ReportTable::tableFitsTheTerminal()
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

void tst_ReportTable::tableTellsEveryChannel()
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

void tst_ReportTable::tableGivesUpColumnsOneByOne_data()
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

void tst_ReportTable::tableGivesUpColumnsOneByOne()
{
    QFETCH(const int, columns);
    QTEST(BuildReport::toTable(ReportScene::run(), columns).at(2), "line");
}

void tst_ReportTable::steeringTextsStayInTheTable()
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

void tst_ReportTable::sumsStandBelow_data()
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

void tst_ReportTable::sumsStandBelow()
{
    QFETCH(const BuildOutcome, build);
    QTEST(BuildReport::toTable(build, 80).last(), "sums");
}

QTEST_GUILESS_MAIN(tst_ReportTable)
#include "tst_reporttable.moc"
