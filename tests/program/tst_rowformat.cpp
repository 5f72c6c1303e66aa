// SPDX-License-Identifier: MIT
#include "records/rowformat.h"

#include <QJsonDocument>
#include <QtTest>

#include <limits>

namespace {

QVariantMap row(const QVariant& id, const QVariant& name)
{
    return {{QStringLiteral("id"), id}, {QStringLiteral("name"), name}};
}

QString json(const QVariant& value)
{
    const QJsonObject object = RowFormat::json({{QStringLiteral("v"), value}});
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace

class tst_RowFormat : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tableAlignsColumns();
    void tableShowsNothingThatSteersATerminal();
    void tableTellsNullFromAnEmptyText();
    void tableCutsLongCells();
    void csvQuotesWhatNeedsIt_data();
    void csvQuotesWhatNeedsIt();
    void jsonKeepsTypes_data();
    void jsonKeepsTypes();
    void noRowsGiveNoLines();
};

void tst_RowFormat::tableAlignsColumns()
{
    const QVariantList rows{row(1, QStringLiteral("first")), row(1234, QStringLiteral(""))};
    QCOMPARE(RowFormat::table(rows),
             (QStringList{QStringLiteral("id    name"), QStringLiteral("----  -----"),
                          QStringLiteral("1     first"), QStringLiteral("1234  ")}));
}

void tst_RowFormat::tableShowsNothingThatSteersATerminal()
{
    const QString steering = QStringLiteral("a\u001b[2Jb\nc\rd\u009b");
    const QString harmless = QStringLiteral(R"(a\x1b[2Jb\nc\rd\x9b)");
    QCOMPARE(RowFormat::table({row(steering, 1)}).value(2), harmless + QStringLiteral("  1"));
    QCOMPARE(RowFormat::table({QVariantMap{{steering, 1}}}).value(0), harmless);
    QCOMPARE(RowFormat::table({row(QString(QChar(0x202e)), 1)}).value(2).at(0), QChar(0xfffd));
}

void tst_RowFormat::tableTellsNullFromAnEmptyText()
{
    const QVariantList rows{row(1, QVariant(QVariant::String)), row(2, QStringLiteral(""))};
    QCOMPARE(RowFormat::table(rows).mid(2),
             (QStringList{QStringLiteral("1   <null>"), QStringLiteral("2   ")}));
}

void tst_RowFormat::tableCutsLongCells()
{
    const QString line = RowFormat::table({row(QString(5000, QLatin1Char('x')), 1)}).value(2);
    QCOMPARE(line, QString(59, QLatin1Char('x')) + QChar(0x2026) + QStringLiteral("  1"));
}

void tst_RowFormat::csvQuotesWhatNeedsIt_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("field");
    QTest::newRow("plain") << QVariant(QStringLiteral("a b")) << QStringLiteral("a b");
    QTest::newRow("number") << QVariant(-1.5) << QStringLiteral("-1.5");
    QTest::newRow("null") << QVariant() << QString();
    QTest::newRow("empty") << QVariant(QStringLiteral("")) << QStringLiteral("\"\"");
    QTest::newRow("comma") << QVariant(QStringLiteral("a,b")) << QStringLiteral("\"a,b\"");
    QTest::newRow("quote") << QVariant(QStringLiteral("\"a\"")) << QStringLiteral("\"\"\"a\"\"\"");
    QTest::newRow("line feed") << QVariant(QStringLiteral("a\nb")) << QStringLiteral("\"a\nb\"");
    QTest::newRow("bytes") << QVariant(QByteArray("\0\xff", 2)) << QStringLiteral("AP8=");
}

void tst_RowFormat::csvQuotesWhatNeedsIt()
{
    QFETCH(const QVariant, value);
    QFETCH(const QString, field);
    QCOMPARE(RowFormat::csv({row(1, value)}),
             (QStringList{QStringLiteral("id,name"), QStringLiteral("1,") + field}));
}

void tst_RowFormat::jsonKeepsTypes_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("null") << QVariant(QVariant::String) << QStringLiteral("{\"v\":null}");
    QTest::newRow("empty") << QVariant(QStringLiteral("")) << QStringLiteral("{\"v\":\"\"}");
    QTest::newRow("greatest") << QVariant(std::numeric_limits<qint64>::max())
                              << QStringLiteral("{\"v\":\"9223372036854775807\"}");
    QTest::newRow("exact") << QVariant(-9007199254740992LL) << QStringLiteral("{\"v\":-9007199254740992}");
    QTest::newRow("real") << QVariant(2.5) << QStringLiteral("{\"v\":2.5}");
    QTest::newRow("infinite") << QVariant(std::numeric_limits<double>::infinity())
                              << QStringLiteral("{\"v\":\"9e999\"}");
    QTest::newRow("negative infinite")
        << QVariant(-std::numeric_limits<double>::infinity()) << QStringLiteral("{\"v\":\"-9e999\"}");
    QTest::newRow("bytes") << QVariant(QByteArray("\0\xff", 2)) << QStringLiteral("{\"v\":\"AP8=\"}");
}

void tst_RowFormat::jsonKeepsTypes()
{
    QFETCH(const QVariant, value);
    QTEST(json(value), "text");
}

void tst_RowFormat::noRowsGiveNoLines()
{
    QCOMPARE(RowFormat::table({}), QStringList());
    QCOMPARE(RowFormat::csv({}), QStringList());
}

QTEST_APPLESS_MAIN(tst_RowFormat)
#include "tst_rowformat.moc"
