// SPDX-License-Identifier: MIT
#include "console/figures.h"

#include <QLocale>
#include <QtTest>

// How sizes and times are worded for people.
class tst_Figures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }
    void sizes_data();
    void sizes();
    void durations_data();
    void durations();
};

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
    row(12345678900000000, "12345.7 TB");
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

QTEST_GUILESS_MAIN(tst_Figures)
#include "tst_figures.moc"
