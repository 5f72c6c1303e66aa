// SPDX-License-Identifier: MIT
#include "build/manifest.h"

#include <QtTest>

// What SDKs add to a manifest, and a manifest under another package's name.
class tst_Manifest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void elementsGoWhereTheyBelong();
    void applicationIdBecomesThePackage();
    void whatIsThereIsNotRepeated();
    void clashIsNamed();
    void renamedPackageKeepsItsClasses_data();
    void renamedPackageKeepsItsClasses();
    void renamedPackageServesAuthoritiesOfItsOwn();
    void renamedPackageDeclaresPermissionsOfItsOwn();
    void damagedTextsAreRefused_data();
    void damagedTextsAreRefused();
    void configWithoutAFragmentAddsNothing();
    void nestingIsLimited();

private:
    static QByteArray sdk(const QByteArray& fragment)
    {
        return "<sdk id=\"1\"><manifest xmlns:android=\"http://schemas.android.com/apk/res/android\">"
            + fragment + "</manifest></sdk>";
    }
    // The manifest's text without its first line and blanks between elements.
    QByteArray text() const;

    Manifest m_manifest;
};

namespace {

const QByteArray start =
    "<manifest xmlns:android=\"http://schemas.android.com/apk/res/android\" package=\"com.a.game\">";
const QByteArray base = "<?xml version=\"1.0\"?>\n" + start
    + "<uses-permission android:name=\"INTERNET\"/><application android:label=\"@string/n\">"
      "<activity android:name=\".Main\"><intent-filter/></activity></application></manifest>";

} // namespace

void tst_Manifest::init()
{
    m_manifest = {};
    QVERIFY2(m_manifest.read(base), qPrintable(m_manifest.error()));
}

QByteArray tst_Manifest::text() const
{
    QString text = QString::fromUtf8(m_manifest.text());
    text.remove(QRegularExpression(QStringLiteral("^<\\?[^>]*>")));
    return text.replace(QRegularExpression(QStringLiteral(">\\s+<")), QStringLiteral("><"))
        .trimmed()
        .toUtf8();
}

void tst_Manifest::elementsGoWhereTheyBelong()
{
    QVERIFY(m_manifest.add(QStringLiteral("pay"),
                           sdk("<uses-permission android:name=\"CAMERA\"/>"
                               "<application><service android:name=\"pay.Service\"/></application>")));
    QCOMPARE(text(),
             start
                 + "<uses-permission android:name=\"INTERNET\"/><application android:label=\"@string/n\">"
                   "<activity android:name=\".Main\"><intent-filter/></activity>"
                   "<service android:name=\"pay.Service\"/></application>"
                   "<uses-permission android:name=\"CAMERA\"/></manifest>");
}

void tst_Manifest::applicationIdBecomesThePackage()
{
    m_manifest.rename(QStringLiteral("com.b.store"));
    QVERIFY(m_manifest.add(
        QStringLiteral("pay"),
        sdk("<application><provider android:name=\"p.P\" android:authorities=\"${applicationId}.pay\"/>"
            "</application>")));
    QVERIFY2(text().contains("android:authorities=\"com.b.store.pay\""), text());
}

void tst_Manifest::whatIsThereIsNotRepeated()
{
    const QByteArray before = text();
    QVERIFY(m_manifest.add(QStringLiteral("pay"), sdk("<uses-permission android:name=\"INTERNET\"/>")));
    QCOMPARE(text(), before);
}

void tst_Manifest::clashIsNamed()
{
    QVERIFY(!m_manifest.add(
        QStringLiteral("pay"),
        sdk("<application><activity android:name=\".Main\" android:exported=\"true\"/></application>")));
    QCOMPARE(m_manifest.error(),
             QStringLiteral("the SDK 'pay' wants another activity '.Main' than the manifest has"));
}

void tst_Manifest::renamedPackageKeepsItsClasses_data()
{
    QTest::addColumn<QByteArray>("element");
    QTest::addColumn<QByteArray>("renamed");
    QTest::newRow("relative") << QByteArray("<activity android:name=\".Main\"/>")
                              << QByteArray("<activity android:name=\"com.a.game.Main\"/>");
    QTest::newRow("bare") << QByteArray("<service android:name=\"Main\"/>")
                          << QByteArray("<service android:name=\"com.a.game.Main\"/>");
    QTest::newRow("in full") << QByteArray("<receiver android:name=\"org.c.Main\"/>")
                             << QByteArray("<receiver android:name=\"org.c.Main\"/>");
    QTest::newRow("target")
        << QByteArray("<activity-alias android:name=\"x.A\" android:targetActivity=\".M\"/>")
        << QByteArray("<activity-alias android:name=\"x.A\" android:targetActivity=\"com.a.game.M\"/>");
    QTest::newRow("no class") << QByteArray("<meta-data android:name=\"key\"/>")
                              << QByteArray("<meta-data android:name=\"key\"/>");
}

void tst_Manifest::renamedPackageKeepsItsClasses()
{
    QFETCH(const QByteArray, element);
    QFETCH(const QByteArray, renamed);
    QVERIFY(m_manifest.read(start + "<application>" + element + "</application></manifest>"));
    m_manifest.rename(QStringLiteral("com.b.store"));
    QCOMPARE(m_manifest.package(), QStringLiteral("com.b.store"));
    QVERIFY2(text().contains(renamed), text());
}

void tst_Manifest::renamedPackageServesAuthoritiesOfItsOwn()
{
    QVERIFY(m_manifest.read(start
                            + "<application><provider android:name=\".P\" "
                              "android:authorities=\"com.a.game;com.a.game.files;com.a.gamers;o.c\"/>"
                              "</application></manifest>"));
    m_manifest.rename(QStringLiteral("com.b"));
    QVERIFY2(text().contains("android:authorities=\"com.b;com.b.files;com.a.gamers;o.c\""), text());
}

void tst_Manifest::renamedPackageDeclaresPermissionsOfItsOwn()
{
    QVERIFY(m_manifest.read(start
                            + "<permission android:name=\"com.a.game.P\"/>"
                              "<uses-permission android:name=\"com.a.game.P\"/>"
                              "<uses-permission android:name=\"com.a.game.OTHERS\"/>"
                              "<application><service android:name=\"x.S\" "
                              "android:permission=\"com.a.game.P\"/></application></manifest>"));
    m_manifest.rename(QStringLiteral("com.b"));
    QVERIFY2(text().contains("<permission android:name=\"com.b.P\"/>"
                             "<uses-permission android:name=\"com.b.P\"/>"
                             "<uses-permission android:name=\"com.a.game.OTHERS\"/>"),
             text());
    QVERIFY2(text().contains("android:permission=\"com.b.P\""), text());
}

void tst_Manifest::damagedTextsAreRefused_data()
{
    QTest::addColumn<QByteArray>("damaged");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no XML") << QByteArray("manifest");
    QTest::newRow("cut off") << base.left(base.size() - 5);
    QTest::newRow("another root") << QByteArray("<sdk package=\"a\"><application/></sdk>");
    QTest::newRow("no package") << QByteArray("<manifest><application/></manifest>");
    QTest::newRow("no application") << QByteArray("<manifest package=\"a\"/>");
}

void tst_Manifest::damagedTextsAreRefused()
{
    QFETCH(const QByteArray, damaged);
    Manifest manifest;
    QVERIFY(!manifest.read(damaged));
    QVERIFY(manifest.error().startsWith(QLatin1String("the decoded manifest ")));
    if (!damaged.startsWith('<') || damaged.startsWith("<?"))
        QVERIFY(!m_manifest.add(QStringLiteral("pay"), damaged));
}

void tst_Manifest::configWithoutAFragmentAddsNothing()
{
    const QByteArray before = text();
    QVERIFY(!Manifest::hasFragment("<sdk id=\"1\"/>"));
    QVERIFY(Manifest::hasFragment(sdk("")));
    QVERIFY(m_manifest.add(QStringLiteral("pay"), "<sdk id=\"1\"/>"));
    QCOMPARE(text(), before);
}

void tst_Manifest::nestingIsLimited()
{
    const int deep = 100000;
    QVERIFY(!m_manifest.add(QStringLiteral("pay"),
                            sdk(QByteArray("<a>").repeated(deep) + QByteArray("</a>").repeated(deep))));
    QVERIFY2(m_manifest.error().contains(QLatin1String("nested too deep")), qPrintable(m_manifest.error()));
}

QTEST_GUILESS_MAIN(tst_Manifest)
#include "tst_manifest.moc"
