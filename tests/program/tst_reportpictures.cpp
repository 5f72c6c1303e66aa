// SPDX-License-Identifier: MIT
#include "build/buildreport.h"
#include "pagecontent.h"
#include "reportscene.h"

#include <QImage>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>

#include <sys/stat.h>

// The pictures in the page of a run's report: nothing else is fetched.
class tst_ReportPictures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void picturesAreInThePage();
    void iconsAreReadFromTheSmallestSharpFile_data();
    void iconsAreReadFromTheSmallestSharpFile();
    void whatIsNoPictureIsLeftOut_data();
    void whatIsNoPictureIsLeftOut();
    void everyPictureIsDescribed();
    void pageOfManyChannelsStaysSmall();
    void pageRefersToNothingElse();

private:
    QString picture(const char* name, const QSize& size, bool isNoise = false) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

// By which the texts are worded.
void tst_ReportPictures::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English));
}

QString tst_ReportPictures::picture(const char* name, const QSize& size, bool isNoise) const
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

void tst_ReportPictures::picturesAreInThePage()
{
    BuildOutcome build = ReportScene::run();
    build.channels[0].icons = QStringList{picture("large.png", {512, 512}), picture("small.png", {36, 36})};
    build.channels[1].icons = QStringList(picture("wide.png", {400, 200}));
    build.sheets = QStringList(picture("sheet.png", {2000, 1000}));
    QVector<QSize> sizes;
    for (const QString& source :
         PageContent::of(BuildReport::toHtml(build)).valuesOf(QStringLiteral("src"))) {
        const QString start = QStringLiteral("data:image/png;base64,");
        QVERIFY(source.startsWith(start));
        sizes.append(QImage::fromData(QByteArray::fromBase64(source.mid(start.size()).toLatin1())).size());
    }
    QCOMPARE(sizes, (QVector<QSize>{{96, 96}, {36, 36}, {96, 48}, {960, 480}}));
}

void tst_ReportPictures::iconsAreReadFromTheSmallestSharpFile_data()
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

void tst_ReportPictures::iconsAreReadFromTheSmallestSharpFile()
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
    const QStringList sources = PageContent::of(BuildReport::toHtml(build)).valuesOf(QStringLiteral("src"));
    QCOMPARE(sources.size(), 1);
    const QByteArray content =
        QByteArray::fromBase64(sources.first().section(QLatin1Char(','), 1).toLatin1());
    QCOMPARE(QImage::fromData(content).size(), QSize(shown, height).scaled(96, 96, Qt::KeepAspectRatio));
}

void tst_ReportPictures::whatIsNoPictureIsLeftOut_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* const kind : {"absent", "folder", "pipe", "text", "cut", "svg"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void tst_ReportPictures::whatIsNoPictureIsLeftOut()
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
    const PageContent content = PageContent::of(BuildReport::toHtml(build));
    QCOMPARE(content.fault, QString());
    QVERIFY(content.valuesOf(QStringLiteral("src")).isEmpty());
    QVERIFY(content.text.contains(path)); // the sheet's, for who wants to look for it
}

void tst_ReportPictures::everyPictureIsDescribed()
{
    BuildOutcome build = ReportScene::run();
    build.channels[0].icons = QStringList(picture("icon.png", {96, 96}));
    build.sheets = QStringList(picture("sheet.png", {96, 96}));
    const PageContent content = PageContent::of(BuildReport::toHtml(build));
    const QStringList expected{QStringLiteral("icon of harbor"), QStringLiteral("the icons of all channels")};
    QCOMPARE(content.valuesOf(QStringLiteral("alt")), expected);
    // Each bar says its parts, as the colours alone would not.
    QVERIFY(content.valuesOf(QStringLiteral("aria-label"))
                .contains(QStringLiteral(
                    "SDKs 200 ms, icons 200 ms, package 200 ms, signature 600 ms, check 50 ms, "
                    "output 50 ms, export 50 ms")));
}

// Even when no icon compresses.
void tst_ReportPictures::pageOfManyChannelsStaysSmall()
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

void tst_ReportPictures::pageRefersToNothingElse()
{
    BuildOutcome build = ReportScene::run();
    build.channels[0].icons = QStringList(picture("icon.png", {192, 192}));
    build.sheets = QStringList(picture("sheet.png", {400, 300}));
    build.channels[1].name = QStringLiteral("http://example.org/");
    const QByteArray page = BuildReport::toHtml(build);
    const PageContent content = PageContent::of(page);
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

QTEST_GUILESS_MAIN(tst_ReportPictures)
#include "tst_reportpictures.moc"
