// SPDX-License-Identifier: MIT
#include "build/filedigest.h"

#include <QCryptographicHash>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

// Digests of files, by whatever the processor has.
class tst_FileDigest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void digestIsTheSha256OfTheContent_data();
    void digestIsTheSha256OfTheContent();
    void digestIsThePublishedOne();
    void fileThatCannotBeReadIsTold();

private:
    QString write(const QByteArray& content) const;

    QTemporaryDir m_folder;
};

QString tst_FileDigest::write(const QByteArray& content) const
{
    QFile file(m_folder.filePath(QStringLiteral("file")));
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? file.fileName()
                                                                                    : QString();
}

void tst_FileDigest::digestIsTheSha256OfTheContent_data()
{
    QTest::addColumn<int>("length");
    // Around where the end, the number behind it and a block of the file need one more turn.
    for (const int around : {1, 56, 64, 120, 128, 1 << 18, (1 << 18) + 56, 3 << 18}) {
        for (const int length : {around - 1, around, around + 1})
            QTest::addRow("%d bytes", length) << length;
    }
}

void tst_FileDigest::digestIsTheSha256OfTheContent()
{
    QFETCH(const int, length);
    QRandomGenerator generator(5);
    QByteArray content(length, '\0');
    for (char& letter : content)
        letter = static_cast<char>(generator.generate());
    QString fault;
    QCOMPARE(digestOfFile(write(content), fault),
             QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex());
    QCOMPARE(fault, QString());
}

void tst_FileDigest::digestIsThePublishedOne()
{
    QString fault;
    QCOMPARE(digestOfFile(write("abc"), fault),
             QByteArray("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"));
}

void tst_FileDigest::fileThatCannotBeReadIsTold()
{
    QString fault;
    QCOMPARE(digestOfFile(m_folder.filePath(QStringLiteral("nothing")), fault), QByteArray());
    QVERIFY(!fault.isEmpty());
    fault.clear();
    QCOMPARE(digestOfFile(m_folder.path(), fault), QByteArray()); // a folder
    QVERIFY(!fault.isEmpty());
}

QTEST_APPLESS_MAIN(tst_FileDigest)
#include "tst_filedigest.moc"
