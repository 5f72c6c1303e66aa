// SPDX-License-Identifier: MIT
#include "build/buildoutcome.h"
#include "build/job.h"
#include "build/sheets.h"
#include "console/console.h"

#include <QDir>
#include <QImage>
#include <QImageReader>
#include <QTemporaryDir>
#include <QtTest>

// The contact sheets of whole runs.
class tst_Sheets : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void manyIconsAreSpreadOverSheets_data();
    void manyIconsAreSpreadOverSheets();
    void sheetsOfALargerRunDoNotStay();

private:
    QStringList draw(int channels) const;

    QTemporaryDir m_folder;
};

// The names of the sheets that a run of so many channels has drawn.
QStringList tst_Sheets::draw(int channels) const
{
    const QString icon = m_folder.filePath(QStringLiteral("icons/android/icon.png"));
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::red);
    if (!QDir().mkpath(QFileInfo(icon).path()) || !picture.save(icon, "PNG"))
        return {QStringLiteral("no icon")};
    Job job;
    job.game = QStringLiteral("Game");
    job.platforms = {0};
    BuildOutcome build;
    for (int i = 0; i < channels; ++i) {
        ChannelOutcome channel;
        channel.name = QString::number(i);
        channel.icons = QStringList(icon);
        build.channels.append(channel);
    }
    ConsoleStyle style;
    style.mute = true;
    Console console(style);
    drawSheets(job, build, m_folder.path(), console);
    QStringList names = console.warnings();
    for (const QString& sheet : qAsConst(build.sheets))
        names.append(QFileInfo(sheet).fileName());
    return names;
}

void tst_Sheets::manyIconsAreSpreadOverSheets_data()
{
    QTest::addColumn<int>("channels");
    QTest::addColumn<QStringList>("sheets");
    const QString first = QStringLiteral("sheet-android.png");
    QTest::newRow("none") << 0 << QStringList();
    QTest::newRow("as many as one takes") << 200 << QStringList(first);
    QTest::newRow("one more") << 201 << QStringList{first, QStringLiteral("sheet-android-2.png")};
}

void tst_Sheets::manyIconsAreSpreadOverSheets()
{
    QFETCH(const int, channels);
    QTEST(draw(channels), "sheets");
    const QDir folder(m_folder.path());
    QFETCH(const QStringList, sheets);
    QStringList there = folder.entryList({QStringLiteral("sheet-*")});
    for (const QString& sheet : sheets) {
        QVERIFY2(there.removeOne(sheet), qPrintable(sheet));
        // However many channels there are, a sheet's picture fills no more memory
        // than this.
        const QSize size = QImageReader(folder.filePath(sheet)).size();
        QVERIFY2(!size.isEmpty() && size.width() * size.height() < 7'000'000,
                 qPrintable(QString::number(size.width())));
    }
    QCOMPARE(there, QStringList());
}

void tst_Sheets::sheetsOfALargerRunDoNotStay()
{
    QCOMPARE(draw(401).size(), 3);
    QCOMPARE(draw(1), QStringList(QStringLiteral("sheet-android.png")));
    QCOMPARE(QDir(m_folder.path()).entryList({QStringLiteral("sheet-*")}),
             QStringList(QStringLiteral("sheet-android.png")));
}

QTEST_MAIN(tst_Sheets)
#include "tst_sheets.moc"
