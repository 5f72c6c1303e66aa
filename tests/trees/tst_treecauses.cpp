// SPDX-License-Identifier: MIT
// What the log of the trees says of each failure, and of what stays: one line for people.
#include <quenzotool.h>

#include "runroot.h"
#include "treefixture.h"

#include <QDir>
#include <QtTest>

#include <sys/stat.h>

using TreeFiles::folder;
using TreeFiles::makeFolder;
using TreeFiles::makeLink;
using TreeFiles::setMode;
using TreeFiles::write;
using namespace TreeRuns;

class tst_TreeCauses : public TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void cleanup() override;

    void nothingIsSaidUnlessSwitchedOn();
    void successIsSilent_data() { addEveryWay(); }
    void successIsSilent();
    void detailsNameTheFolders();
    void linkThatLeadsNowhere_data() { addEveryWay(); }
    void linkThatLeadsNowhere();
    void linkThatLeadsBack();
    void linkThatLeadsIntoTheTarget();
    void specialFile_data() { addEveryWay(); }
    void specialFile();
    void targetThatCannotBeMade_data() { addEveryWay(); }
    void targetThatCannotBeMade();
    void folderOfTheTargetThatIsAFile_data() { addEveryWay(); }
    void folderOfTheTargetThatIsAFile();
    void existingFileWithoutOverwrite();
    void targetInsideTheSource();
    void fileOntoItself();
    void nameThatIsTooLong_data() { addEveryWay(); }
    void nameThatIsTooLong();
    void unreadableFolder_data() { addEveryWay(); }
    void unreadableFolder();
    void linkToAFolderThatStays();
    void removalThroughALink();
    void removalOfAFileThatResists();

private:
    QString line(const QByteArray& path, const char* what, const char* reason) const;
    QString copyLine(const QByteArray& name, const char* reason) const;

    std::unique_ptr<CategoryOn> m_category;
};

void tst_TreeCauses::init()
{
    TreeFixture::init();
    m_category = std::make_unique<CategoryOn>("quenzo.trees");
}

void tst_TreeCauses::cleanup()
{
    m_category.reset();
    TreeFixture::cleanup();
}

QString tst_TreeCauses::line(const QByteArray& path, const char* what, const char* reason) const
{
    return QFile::decodeName("'" + path + "' could not be " + what + ": " + reason);
}

QString tst_TreeCauses::copyLine(const QByteArray& name, const char* reason) const
{
    return line(m_source + name, QByteArray("copied to '" + m_target + name + "'").constData(), reason);
}

void tst_TreeCauses::nothingIsSaidUnlessSwitchedOn()
{
    m_category.reset();
    makeLink("nowhere", m_source + "/link");
    QVERIFY(!copy());
    QCOMPARE(m_messages->takeWarnings(), QStringList());
}

void tst_TreeCauses::successIsSilent()
{
    QFETCH(Manner, manner);
    write(m_source + "/folder/file", "new");
    write(m_target + "/folder/file", "old");
    QVERIFY(transfer(manner));
    QVERIFY(remove(m_target));
    QCOMPARE(m_messages->takeWarnings(), QStringList());
}

void tst_TreeCauses::detailsNameTheFolders()
{
    write(m_source + "/folder/file", "new");
    const auto steps = [](const char* step, const QByteArray& path) {
        return QFile::decodeName(step + (" '" + path) + "'");
    };
    const QStringList reading{steps("in the folder", m_source), steps("in the folder", m_source + "/folder")};
    QVERIFY(copy());
    QCOMPARE(m_messages->takeDetails(), reading);
    QVERIFY(move());
    QCOMPARE(m_messages->takeDetails(),
             reading + QStringList{steps("removed the folder", m_source + "/folder")});
    m_category.reset();
    write(m_source + "/folder/file", "new");
    QVERIFY(copy());
    QCOMPARE(m_messages->takeDetails(), QStringList());
}

void tst_TreeCauses::linkThatLeadsNowhere()
{
    QFETCH(Manner, manner);
    makeLink("nowhere", m_source + "/'%1'\nlink");
    QVERIFY(!transfer(manner));
    QCOMPARE(m_messages->takeWarnings(), QStringList(copyLine("/'%1'\nlink", "the link leads nowhere")));
}

void tst_TreeCauses::linkThatLeadsBack()
{
    makeLink(".", m_source + "/again");
    QVERIFY(!copy());
    QCOMPARE(m_messages->takeWarnings(),
             QStringList(copyLine(QByteArray("/again").repeated(41),
                                  "the link leads back to a folder that holds it")));
}

void tst_TreeCauses::linkThatLeadsIntoTheTarget()
{
    makeFolder(m_target);
    makeLink("../target", m_source + "/link");
    QVERIFY(!copy());
    QCOMPARE(m_messages->takeWarnings(), QStringList(copyLine("/link", "it leads into the target")));
}

void tst_TreeCauses::specialFile()
{
    QFETCH(Manner, manner);
    const QByteArray pipe = m_source + "/pipe";
    QCOMPARE(mkfifo(pipe.constData(), 0644), 0);
    QVERIFY(!transfer(manner));
    QCOMPARE(m_messages->takeWarnings(), QStringList(copyLine("/pipe", "it is neither a file nor a folder")));
}

void tst_TreeCauses::targetThatCannotBeMade()
{
    QFETCH(Manner, manner);
    m_target = m_root + "/missing/target";
    QVERIFY(!transfer(manner));
    QCOMPARE(m_messages->takeWarnings(), QStringList(line(m_target, "made", "No such file or directory")));
}

void tst_TreeCauses::folderOfTheTargetThatIsAFile()
{
    QFETCH(Manner, manner);
    write(m_source + "/entry/file");
    write(m_target + "/entry");
    QVERIFY(!transfer(manner));
    QCOMPARE(m_messages->takeWarnings(), QStringList(line(m_target + "/entry", "made", "File exists")));
}

void tst_TreeCauses::existingFileWithoutOverwrite()
{
    write(m_source + "/file");
    write(m_target + "/file");
    QVERIFY(!copy(false));
    QCOMPARE(m_messages->takeWarnings(), QStringList(copyLine("/file", "File exists")));
}

void tst_TreeCauses::targetInsideTheSource()
{
    m_target = m_source + "/target";
    QVERIFY(!move());
    QCOMPARE(m_messages->takeWarnings(),
             QStringList(line(m_source, QByteArray("copied to '" + m_target + "'").constData(),
                              "the target lies inside it")));
}

void tst_TreeCauses::fileOntoItself()
{
    write(m_source + "/file");
    m_target = m_source;
    QVERIFY(!copy());
    QCOMPARE(m_messages->takeWarnings(), QStringList(copyLine("/file", "it is the same file")));
}

void tst_TreeCauses::nameThatIsTooLong()
{
    QFETCH(Manner, manner);
    const QByteArray name(200, 'n');
    m_target = m_root;
    while (m_target.size() < 3900)
        m_target += '/' + QByteArray(100, 't');
    makeFolder(m_target);
    write(m_source + '/' + name);
    QVERIFY(!transfer(manner));
    QCOMPARE(m_messages->takeWarnings(), QStringList(copyLine('/' + name, "File name too long")));
}

void tst_TreeCauses::unreadableFolder()
{
    QFETCH(Manner, manner);
    const QByteArray locked = m_source + "/locked";
    write(locked + "/file");
    for (const QByteArray& path : {m_root, m_source, QFile::encodeName(RunRoot::path())})
        setMode(path, 0777);
    setMode(locked, 0);
    QVERIFY(TreeFiles::asPlainUser([&] {
        return !transfer(manner)
            && m_messages->takeWarnings() == QStringList(line(locked, "read", "Permission denied"));
    }));
    setMode(locked, 0755);
}

void tst_TreeCauses::linkToAFolderThatStays()
{
    write(m_root + "/elsewhere/file");
    makeLink("../elsewhere", m_source + "/link");
    QVERIFY(move());
    QCOMPARE(m_messages->takeInfoTexts(),
             QStringList(line(m_source + "/link", "removed", "it is a link to a folder")));
}

void tst_TreeCauses::removalThroughALink()
{
    makeLink("source", m_root + "/link");
    QVERIFY(!remove(m_root + "/link"));
    QCOMPARE(m_messages->takeWarnings(),
             QStringList(line(m_root + "/link", "removed", "it is a link to a folder")));
}

// Once for the file, and not again for each folder that stays for it.
void tst_TreeCauses::removalOfAFileThatResists()
{
    const QByteArray locked = m_source + "/folder/locked";
    write(locked + "/file");
    for (const QByteArray& path : {m_root, m_source, QByteArray(m_source + "/folder")})
        setMode(path, 0777);
    setMode(locked, 0555);
    QVERIFY(TreeFiles::asPlainUser([&] {
        QDir source = folder(m_source);
        const bool removed = QuenzoTool::removeRecursively(source);
        const QStringList lines = m_messages->takeWarnings();
        return !removed
            && lines.value(lines.size() - 1) == line(locked + "/file", "removed", "Permission denied")
            && lines.filter(QStringLiteral("could not be removed")).size() == 1;
    }));
    setMode(locked, 0755);
}

QTEST_GUILESS_MAIN(tst_TreeCauses)
#include "tst_treecauses.moc"
