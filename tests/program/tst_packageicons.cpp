// SPDX-License-Identifier: MIT
#include "icons/packageicons.h"

#include <QtTest>

// Which pictures a package shows as its icon, by what aapt prints of it.
class tst_PackageIcons : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void picturesAndTheirSizesAreFound_data();
    void picturesAndTheirSizesAreFound();
};

void tst_PackageIcons::picturesAndTheirSizesAreFound_data()
{
    QTest::addColumn<QString>("badging");
    QTest::addColumn<QString>("pictures");
    QTest::addColumn<QString>("others");
    const auto row = [](const char* title, const char* badging, const char* pictures,
                        const char* others = "") {
        QTest::newRow(title) << QString::fromLatin1(badging) << QString::fromLatin1(pictures)
                             << QString::fromLatin1(others);
    };
    row("nothing", "", "");
    row("no icon", "package: name='a'\napplication: label='A' icon=''\n", "");
    row("by density",
        "application-icon-120:'res/mipmap-ldpi-v4/i.png'\napplication-icon-640:'res/mipmap-xxxhdpi-v4/"
        "i.png'\n",
        "res/mipmap-ldpi-v4/i.png 36, res/mipmap-xxxhdpi-v4/i.png 192");
    row("one for all",
        "application-icon-160:'res/drawable-hdpi/i.png'\napplication-icon-640:'res/drawable-hdpi/i.png'\n",
        "res/drawable-hdpi/i.png 72");
    row("without a density", "application-icon-160:'res/drawable/i.png'\n", "res/drawable/i.png 48");
    row("shortened names",
        "application-icon-160:'r/a.png'\napplication-icon-480:'r/b.png'\napplication-icon-65534:'r/b.png'\n",
        "r/a.png 48, r/b.png 144");
    row("only any density", "application-icon-65535:'r/a.png'\n", "r/a.png 48");
    row("layers",
        "application-icon-160:'res/mipmap-mdpi-v4/i.png'\napplication-icon-65534:'res/mipmap-anydpi-v26/"
        "i.xml'\n",
        "res/mipmap-mdpi-v4/i.png 48", "res/mipmap-anydpi-v26/i.xml");
    row("other languages", "application-icon-240:'res/mipmap-ru-hdpi-v4/i.png'\n",
        "res/mipmap-ru-hdpi-v4/i.png 72");
    row("quotation mark in a name", "application-icon-240:'res/it's.png'\n", "res/it's.png 72");
    row("out of the folder",
        "application-icon-160:'../i.png'\napplication-icon-240:'/etc/i.png'\n"
        "application-icon-320:'a/../../i.png'\n",
        "", "../i.png, /etc/i.png, a/../../i.png");
    row("broken lines", "application-icon-:'a.png'\napplication-icon-160:''\n application-icon-160:'b.png'\n",
        "");
}

void tst_PackageIcons::picturesAndTheirSizesAreFound()
{
    QFETCH(const QString, badging);
    QFETCH(const QString, pictures);
    QFETCH(const QString, others);
    const PackageIcons icons = parseBadging(badging);
    QStringList found;
    for (const PackageIcon& icon : icons.pictures)
        found.append(icon.path + QLatin1Char(' ') + QString::number(icon.side));
    QCOMPARE(found.join(QStringLiteral(", ")), pictures);
    QCOMPARE(icons.others.join(QStringLiteral(", ")), others);
}

QTEST_GUILESS_MAIN(tst_PackageIcons)
#include "tst_packageicons.moc"
