// SPDX-License-Identifier: MIT
#include "iconpictures.h"
#include "messagelog.h"

#include "icons/pngencoder.h"

#include <QColorSpace>
#include <QPainter>
#include <QTemporaryDir>
#include <QtTest>

using namespace IconPictures;

class tst_PngEncoder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_log = std::make_unique<MessageLog>(); }
    void cleanup() { QCOMPARE(m_log->takeWarnings(), QStringList()); }

    void picturesAreTheSameAsThroughQt_data();
    void picturesAreTheSameAsThroughQt();
    void everyFormatIsTheSameAsThroughQt_data();
    void everyFormatIsTheSameAsThroughQt();
    void premultipliedColoursAreRoundedAsByQt();
    void densityTextAndColourSpaceAreKept_data();
    void densityTextAndColourSpaceAreKept();
    void setsAreHardlyLargerThanThroughQt_data();
    void setsAreHardlyLargerThanThroughQt();
    void nullPictureHasNoContent();
    void otherDepthsAreLeftToQt();

private:
    void compareWithQt(const QImage& picture);

    std::unique_ptr<MessageLog> m_log;
};

void tst_PngEncoder::compareWithQt(const QImage& picture)
{
    const QByteArray ours = PngEncoder::encode(picture);
    const QByteArray theirs = savedByQt(picture);
    QVERIFY(!ours.isEmpty());
    QCOMPARE(chunksBesideData(ours), chunksBesideData(theirs));
    const QImage decoded = QImage::fromData(ours);
    const QImage expected = QImage::fromData(theirs);
    QCOMPARE(decoded.format(), expected.format());
    QVERIFY2(decoded == expected, "pixels differ");

    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("picture.png")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(ours), qint64(ours.size()));
    file.close();
    QCOMPARE(faultsOf({file.fileName()}), QString());
}

void tst_PngEncoder::picturesAreTheSameAsThroughQt_data()
{
    QTest::addColumn<QImage>("picture");
    const QVector<QSize> sizes{{1, 1},   {1, 40},   {40, 1},    {2, 3},    {7, 5},
                               {36, 36}, {180, 90}, {257, 255}, {512, 512}};
    for (const QSize& size : sizes) {
        const QString name = QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
        for (const bool alpha : {false, true}) {
            const QImage picture = photograph(size.width(), size.height(), alpha);
            QTest::addRow("%s %s", qPrintable(name), alpha ? "rgba" : "rgb") << picture;
        }
        const QImage grey =
            photograph(size.width(), size.height()).convertToFormat(QImage::Format_Grayscale8);
        QTest::addRow("%s grey", qPrintable(name)) << grey;
    }
    QImage flat(300, 200, QImage::Format_RGB32);
    flat.fill(Qt::blue);
    QTest::newRow("one colour") << flat;
    QTest::newRow("part of another picture") << photograph(64, 64).copy(3, 5, 31, 21);
    QTest::newRow("scaled")
        << photograph(512, 512, true).scaled(72, 72, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

void tst_PngEncoder::picturesAreTheSameAsThroughQt()
{
    QFETCH(QImage, picture);
    compareWithQt(picture);
}

void tst_PngEncoder::everyFormatIsTheSameAsThroughQt_data()
{
    QTest::addColumn<int>("format");
    for (int format = QImage::Format_Invalid + 1; format < QImage::NImageFormats; ++format)
        QTest::addRow("format %d", format) << format;
}

void tst_PngEncoder::everyFormatIsTheSameAsThroughQt()
{
    QFETCH(int, format);
    compareWithQt(photograph(53, 41, true).convertToFormat(static_cast<QImage::Format>(format)));
}

void tst_PngEncoder::premultipliedColoursAreRoundedAsByQt()
{
    QImage picture(256, 256, QImage::Format_ARGB32_Premultiplied);
    for (int alpha = 0; alpha < 256; ++alpha) {
        for (int value = 0; value < 256; ++value) {
            const int level = qMin(value, alpha);
            reinterpret_cast<QRgb*>(picture.scanLine(alpha))[value] =
                qRgba(level, alpha - level, level / 2, alpha);
        }
    }
    compareWithQt(picture);
}

void tst_PngEncoder::densityTextAndColourSpaceAreKept_data()
{
    QTest::addColumn<QColorSpace>("colourSpace");
    QTest::newRow("none") << QColorSpace();
    QTest::newRow("sRGB") << QColorSpace(QColorSpace::SRgb);
    QTest::newRow("display P3") << QColorSpace(QColorSpace::DisplayP3);
    QTest::newRow("gamma") << QColorSpace(QColorSpace::Primaries::SRgb, 1.8F);
}

void tst_PngEncoder::densityTextAndColourSpaceAreKept()
{
    QFETCH(QColorSpace, colourSpace);
    for (const QImage::Format format :
         {QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_Grayscale8}) {
        if (format == QImage::Format_Grayscale8 && colourSpace.isValid())
            continue; // libpng refuses, with a warning of its own
        QImage picture = photograph(40, 30, true).convertToFormat(format);
        picture.setDotsPerMeterX(2835);
        picture.setDotsPerMeterY(5670);
        picture.setOffset({3, 4});
        picture.setText(QStringLiteral("Author"), QStringLiteral("IDAT, then a wide \u56fe"));
        picture.setText(QStringLiteral("Description"), QString(4000, QLatin1Char('x')));
        picture.setColorSpace(colourSpace);
        QVERIFY(chunksBesideData(savedByQt(picture)).size() >= 4);
        compareWithQt(picture);
    }
}

void tst_PngEncoder::setsAreHardlyLargerThanThroughQt_data()
{
    QTest::addColumn<QImage>("icon");
    QTest::newRow("rgb") << photograph(512, 512);
    QTest::newRow("rgba") << photograph(512, 512, true);
    QTest::newRow("grey") << photograph(512, 512).convertToFormat(QImage::Format_Grayscale8);
    QTest::newRow("sample") << QImage(QStringLiteral(SAMPLE_ICONS "/icon.png"));
}

void tst_PngEncoder::setsAreHardlyLargerThanThroughQt()
{
    QFETCH(QImage, icon);
    QVERIFY(!icon.isNull());
    qint64 ours = 0;
    qint64 theirs = 0;
    for (const int side : {29, 36, 40, 50, 57, 58, 72, 76, 80, 87, 100, 114, 120, 144, 152, 180, 192, 512}) {
        const QImage scaled = icon.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        ours += PngEncoder::encode(scaled).size();
        theirs += savedByQt(scaled).size();
    }
    QVERIFY2(double(ours) <= 1.03 * double(theirs),
             qPrintable(QStringLiteral("%1 : %2").arg(ours).arg(theirs)));
}

void tst_PngEncoder::nullPictureHasNoContent()
{
    QCOMPARE(PngEncoder::encode(QImage()), QByteArray());
}

void tst_PngEncoder::otherDepthsAreLeftToQt()
{
    for (const QImage::Format format :
         {QImage::Format_Mono, QImage::Format_Indexed8, QImage::Format_RGBX64, QImage::Format_Grayscale16}) {
        const QImage picture = photograph(30, 20).convertToFormat(format);
        QCOMPARE(PngEncoder::encode(picture), savedByQt(picture));
    }
}

QTEST_GUILESS_MAIN(tst_PngEncoder)
#include "tst_pngencoder.moc"
