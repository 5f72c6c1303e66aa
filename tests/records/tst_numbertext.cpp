// SPDX-License-Identifier: MIT
#include "records/numbertext.h"

#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>

// QVariant's own texts are what counts.
class tst_NumberText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void numbersReadAsQVariantHasThem_data();
    void numbersReadAsQVariantHasThem();
    void realsOfAllKindsReadAsQVariantHasThem();
    void otherValuesAreLeftToQVariant();
};

namespace {

QString textOf(const QVariant& value)
{
    NumberText::Digits digits;
    const std::string_view text = NumberText::of(value, digits);
    return QString::fromLatin1(text.data(), static_cast<int>(text.size()));
}

bool isRight(const QVariant& value)
{
    const QString text = textOf(value);
    return text.isEmpty() || text == value.toString();
}

} // namespace

void tst_NumberText::numbersReadAsQVariantHasThem_data()
{
    QTest::addColumn<QVariant>("value");
    for (const int number : {0, 7, -7, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
        QTest::addRow("%d", number) << QVariant(number);
    for (const qlonglong number :
         {qlonglong(0), std::numeric_limits<qlonglong>::max(), std::numeric_limits<qlonglong>::min()})
        QTest::addRow("long %lld", number) << QVariant(number);
    for (const double real : {0.001, 0.5, -0.5, 6.0, 648.0, 10000.0, 99999.0, 99999.999999, -99999.999999,
                              0.99, 12.9, 1.000001, 1.05, 100.10})
        QTest::addRow("real %s", std::to_string(real).c_str()) << QVariant(real);
    QTest::newRow("none of type int") << QVariant(QVariant::Int);
}

void tst_NumberText::numbersReadAsQVariantHasThem()
{
    QFETCH(const QVariant, value);
    QCOMPARE(textOf(value), value.toString());
}

void tst_NumberText::realsOfAllKindsReadAsQVariantHasThem()
{
    std::mt19937_64 random(7); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same each time
    for (int i = 0; i < 100000; ++i) {
        const quint64 bits = random();
        double any = 0;
        std::memcpy(&any, &bits, sizeof any);
        const double size = std::pow(10.0, std::uniform_real_distribution<double>(-5, 7)(random));
        const double scale = std::pow(10.0, i % 10);
        const double rounded = std::round(size * scale) / scale;
        for (const double real : {any, size, -size, rounded, -rounded, std::nextafter(rounded, 0.0),
                                  std::nextafter(rounded, 1e9), i / 8.0, i / 100.0})
            QVERIFY2(isRight(real),
                     qPrintable(textOf(real) + QStringLiteral(" for ") + QVariant(real).toString()));
    }
    for (const double real :
         {0.0, -0.0, 100000.0, 1e6, 1e300, 0.0009, std::numeric_limits<double>::denorm_min(),
          std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
        QVERIFY2(isRight(real), qPrintable(textOf(real)));
}

void tst_NumberText::otherValuesAreLeftToQVariant()
{
    for (const QVariant& value : {QVariant(), QVariant(true), QVariant(7U), QVariant(QStringLiteral("7")),
                                  QVariant(QByteArray("7")), QVariant(QDate(2020, 1, 2)), QVariant(7.5F)})
        QCOMPARE(textOf(value), QString());
}

QTEST_APPLESS_MAIN(tst_NumberText)
#include "tst_numbertext.moc"
