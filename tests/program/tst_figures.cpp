// SPDX-License-Identifier: MIT
#include "console/figures.h"
#include "console/progress.h"

#include <QLocale>
#include <QtTest>

#include <clocale>

// How sizes and times are worded for people.
class tst_Figures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void sizes_data();
    void sizes();
    void durations_data();
    void durations();
    void progressTellsWhatIsKnown_data();
    void progressTellsWhatIsKnown();
    void progressFitsTheLine();
};

// Under the C locale alone a wide letter would have no width.
void tst_Figures::initTestCase()
{
    QVERIFY(std::setlocale(LC_ALL, "C.UTF-8") != nullptr);
    QLocale::setDefault(QLocale(QLocale::English));
}

void tst_Figures::sizes_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("text");
    const auto row = [](qint64 bytes, const char* text) {
        QTest::newRow(text) << bytes << QString::fromLatin1(text);
    };
    row(0, "0 bytes");
    row(999, "999 bytes");
    row(1000, "1.0 kB");
    row(1049, "1.0 kB");
    row(999949, "999.9 kB");
    row(999950, "1.0 MB");
    row(52400000, "52.4 MB");
    row(2147483648, "2.1 GB");
    row(999999999999, "1.0 TB");
    row(12345678900000000, "12,345.7 TB");
}

void tst_Figures::sizes()
{
    QFETCH(const qint64, bytes);
    QTEST(sizeText(bytes), "text");
}

void tst_Figures::durations_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("text");
    const auto row = [](qint64 seconds, const char* text) {
        QTest::newRow(text) << seconds << QString::fromLatin1(text);
    };
    row(0, "0 s");
    row(59, "59 s");
    row(60, "1 min 0 s");
    row(3599, "59 min 59 s");
    row(3600, "1 h 0 min");
    row(90061, "25 h 1 min");
}

void tst_Figures::durations()
{
    QFETCH(const qint64, seconds);
    QTEST(durationText(seconds), "text");
}

void tst_Figures::progressTellsWhatIsKnown_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<qint64>("done");
    QTest::addColumn<qint64>("total");
    QTest::addColumn<qint64>("elapsedMs");
    QTest::addColumn<QString>("text");
    const auto row = [](int unit, qint64 done, qint64 total, qint64 elapsedMs, const char* text) {
        QTest::newRow(text) << unit << done << total << elapsedMs << QString::fromLatin1(text);
    };
    row(Progress::None, 0, -1, 5000, "packing");
    row(Progress::Bytes, 0, 4000000, 5000, "packing 0 % [....................] 0 bytes of 4.0 MB");
    row(Progress::Bytes, 1000000, 4000000, 999, "packing 25 % [#####...............] 1.0 MB of 4.0 MB");
    row(Progress::Bytes, 1000000, 4000000, 2000,
        "packing 25 % [#####...............] 1.0 MB of 4.0 MB, 500.0 kB/s, 6 s left");
    row(Progress::Files, 30, 4000, 1000,
        "packing 0 % [....................] 30 of 4,000 files, 30 files/s, 2 min 12 s left");
    row(Progress::Bytes, 1500, -1, 3000, "packing 1.5 kB, 500 bytes/s");
    row(Progress::Rows, 5, 5, 10, "packing 100 % [####################] 5 of 5 rows");
    row(Progress::Bytes, 7, 5, 5000, "packing 100 % [####################] 7 bytes of 5 bytes, 1 bytes/s");
}

void tst_Figures::progressTellsWhatIsKnown()
{
    QFETCH(const int, unit);
    QFETCH(const qint64, done);
    QFETCH(const qint64, total);
    QFETCH(const qint64, elapsedMs);
    const Progress progress{QStringLiteral("packing"), static_cast<Progress::Unit>(unit), done, total};
    QTEST(progress.line(elapsedMs, 200), "text");
}

void tst_Figures::progressFitsTheLine()
{
    const Progress progress{QStringLiteral("packing"), Progress::Bytes, 1000000, 4000000,
                            QStringLiteral("3 of 9 files")};
    const auto line = [&progress](int columns) { return progress.line(2000, columns); };
    QCOMPARE(line(79), QStringLiteral("packing 25 % 1.0 MB of 4.0 MB, 3 of 9 files, 500.0 kB/s, 6 s left"));
    QCOMPARE(line(55), QStringLiteral("packing 25 % 1.0 MB of 4.0 MB, 500.0 kB/s, 6 s left"));
    QCOMPARE(line(40), QStringLiteral("packing 25 % 1.0 MB of 4.0 MB, 6 s left"));
    QCOMPARE(line(29), QStringLiteral("packing 25 % 6 s left"));
    QCOMPARE(line(12), QStringLiteral("packing 25 %"));
    for (int columns = 12; columns < 120; ++columns)
        QVERIFY2(columnsOf(line(columns)) <= columns, qPrintable(line(columns)));
    const Progress wide{QString(4, QChar(0x624b)), Progress::Files, 1, 2};
    QCOMPARE(columnsOf(wide.doing), 8);
    QCOMPARE(wide.line(0, 14), wide.doing + QStringLiteral(" 50 %"));
}

QTEST_GUILESS_MAIN(tst_Figures)
#include "tst_figures.moc"
