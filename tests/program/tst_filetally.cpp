// SPDX-License-Identifier: MIT
#include "icons/filetally.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

class tst_FileTally : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void newAndReplacedFilesCount();
    void emptyFilesAndFoldersDoNotCount();
    void wholeSecondsTellNoReplacementsApart_data();
    void wholeSecondsTellNoReplacementsApart();
    void whatWasSeenStaysSeen();

private:
    QString path(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }
    void write(const char* name, const QByteArray& content, const QDateTime& time) const;

    QTemporaryDir m_folder;
    const QDateTime m_old = QDateTime::fromMSecsSinceEpoch(1600000000123);
};

void tst_FileTally::write(const char* name, const QByteArray& content, const QDateTime& time) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
    QVERIFY(file.flush());
    QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
}

void tst_FileTally::newAndReplacedFilesCount()
{
    write("replaced", "old", m_old);
    write("kept", "old", m_old);
    FileTally tally({path("new"), path("replaced"), path("kept"), path("absent")});
    QCOMPARE(tally.expected(), 4);
    QCOMPARE(tally.seen(), 0);
    write("new", "new", m_old);
    write("replaced", "new", m_old.addMSecs(4));
    QCOMPARE(tally.seen(), 2);
    QCOMPARE(tally.missing(), QStringList({path("kept"), path("absent")}));
}

void tst_FileTally::emptyFilesAndFoldersDoNotCount()
{
    write("emptied", "old", m_old);
    write("filled", "", m_old);
    FileTally tally({path("emptied"), path("filled"), path("folder")});
    write("emptied", "", m_old.addSecs(1));
    write("filled", "new", m_old);
    QVERIFY(QDir().mkdir(path("folder")));
    QCOMPARE(tally.seen(), 1);
    QCOMPARE(tally.missing(), QStringList({path("emptied"), path("folder")}));
}

void tst_FileTally::wholeSecondsTellNoReplacementsApart_data()
{
    QTest::addColumn<int>("milliseconds");
    QTest::addColumn<int>("secondsAgo");
    QTest::addColumn<bool>("counts");
    QTest::newRow("the whole second of the start") << 0 << 0 << true;
    QTest::newRow("a whole second long before") << 0 << 60 << false;
    QTest::newRow("a time in full, unchanged") << 1 << 0 << false;
}

// As where times are kept in whole seconds: the file is written again, and its time is the same.
void tst_FileTally::wholeSecondsTellNoReplacementsApart()
{
    QFETCH(const int, milliseconds);
    QFETCH(const int, secondsAgo);
    QFETCH(const bool, counts);
    std::unique_ptr<FileTally> tally;
    QDateTime time;
    qint64 second = -1;
    // Once more when the second was over before the tally had started.
    while (second != QDateTime::currentSecsSinceEpoch()) {
        second = QDateTime::currentSecsSinceEpoch();
        time = QDateTime::fromMSecsSinceEpoch((second - secondsAgo) * 1000 + milliseconds);
        write("file", "old", time);
        tally = std::make_unique<FileTally>(QStringList{path("file")});
    }
    write("file", "new", time);
    QCOMPARE(tally->missing().isEmpty(), counts);
    QCOMPARE(tally->seen(), counts ? 1 : 0);
}

void tst_FileTally::whatWasSeenStaysSeen()
{
    FileTally tally({path("passing")});
    write("passing", "new", m_old);
    QCOMPARE(tally.seen(), 1);
    QVERIFY(QFile::remove(path("passing")));
    QCOMPARE(tally.seen(), 1);
    QCOMPARE(tally.missing(), QStringList(path("passing")));
}

QTEST_APPLESS_MAIN(tst_FileTally)
#include "tst_filetally.moc"
