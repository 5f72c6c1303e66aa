// SPDX-License-Identifier: MIT
// What the log of the trees says of each failure, and of what stays: one line for people.
#include <quenzotool.h>

#include "messagelog.h"
#include "runroot.h"
#include "treefiles.h"
#include "treeruns.h"

#include <QDir>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

using TreeFiles::makeFolder;
using TreeFiles::makeLink;
using TreeFiles::write;
using namespace TreeRuns;

class tst_TreeCauses : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { umask(022); }
    void init();
    void cleanup();

    void nothingIsSaidUnlessSwitchedOn();
    void successIsSilent_data() { addEveryWay(); }
    void successIsSilent();
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

    std::unique_ptr<MessageLog> m_messages;
    std::unique_ptr<QTemporaryDir> m_folder;
    QByteArray m_root;
    QByteArray m_source;
    QByteArray m_target;
};

void tst_TreeCauses::init()
{
    RunRoot::clear();
    QLoggingCategory::setFilterRules(QStringLiteral("quenzo.trees=true"));
    m_messages = std::make_unique<MessageLog>();
    m_folder = std::make_unique<QTemporaryDir>(TreeFiles::quickFolder());
    m_root = QFile::encodeName(m_folder->path());
    m_source = m_root + "/source";
    m_target = m_root + "/target";
    makeFolder(m_source);
}

void tst_TreeCauses::cleanup()
{
    m_messages.reset();
    QLoggingCategory::setFilterRules(QString());
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
    QLoggingCategory::setFilterRules(QString());
    makeLink("nowhere", m_source + "/link");
    QVERIFY(!transfer(m_source, m_target, Copy));
    QCOMPARE(m_messages->takeWarnings(), QStringList());
}

void tst_TreeCauses::successIsSilent()
{
    QFETCH(Manner, manner);
    write(m_source + "/folder/file", "new");
    write(m_target + "/folder/file", "old");
    QVERIFY(transfer(m_source, m_target, manner));
    QDir target(QFile::decodeName(m_target));
    QVERIFY(QuenzoTool::removeRecursively(target));
    QCOMPARE(m_messages->takeWarnings(), QStringList());
}

void tst_TreeCauses::linkThatLeadsNowhere()
{
    QFETCH(Manner, manner);
    makeLink("nowhere", m_source + "/'%1'\nlink");
    QVERIFY(!transfer(m_source, m_target, manner));
    QCOMPARE(m_messages->takeWarnings(), QStringList(copyLine("/'%1'\nlink", "the link leads nowhere")));
}

void tst_TreeCauses::linkThatLeadsBack()
{
    makeLink(".", m_source + "/again");
    QVERIFY(!transfer(m_source, m_target, Copy));
    QByteArray name;
    for (int i = 0; i < 41; ++i)
        name += "/again";
    QCOMPARE(m_messages->takeWarnings(),
             QStringList(copyLine(name, "the link leads back to a folder that holds it")));
}

void tst_TreeCauses::linkThatLeadsIntoTheTarget()
{
    makeFolder(m_target);
    makeLink("../target", m_source + "/link");
    QVERIFY(!transfer(m_source, m_target, Copy));
    QCOMPARE(m_messages->takeWarnings(), QStringList(copyLine("/link", "it leads into the target")));
}

void tst_TreeCauses::specialFile()
{
    QFETCH(Manner, manner);
    const QByteArray pipe = m_source + "/pipe";
    QCOMPARE(mkfifo(pipe.constData(), 0644), 0);
    QVERIFY(!transfer(m_source, m_target, manner));
    QCOMPARE(m_messages->takeWarnings(), QStringList(copyLine("/pipe", "it is neither a file nor a folder")));
}

void tst_TreeCauses::targetThatCannotBeMade()
{
    QFETCH(Manner, manner);
    m_target = m_root + "/missing/target";
    QVERIFY(!transfer(m_source, m_target, manner));
    QCOMPARE(m_messages->takeWarnings(), QStringList(line(m_target, "made", "No such file or directory")));
}

void tst_TreeCauses::folderOfTheTargetThatIsAFile()
{
    QFETCH(Manner, manner);
    write(m_source + "/entry/file");
    write(m_target + "/entry");
    QVERIFY(!transfer(m_source, m_target, manner));
    QCOMPARE(m_messages->takeWarnings(), QStringList(line(m_target + "/entry", "made", "File exists")));
}

void tst_TreeCauses::existingFileWithoutOverwrite()
{
    write(m_source + "/file");
    write(m_target + "/file");
    QVERIFY(!QuenzoTool::copyDirectory(QDir(QFile::decodeName(m_source)), QDir(QFile::decodeName(m_target)),
                                       false, false));
    QCOMPARE(m_messages->takeWarnings(), QStringList(copyLine("/file", "File exists")));
}

void tst_TreeCauses::targetInsideTheSource()
{
    m_target = m_source + "/target";
    QVERIFY(!transfer(m_source, m_target, Move));
    QCOMPARE(m_messages->takeWarnings(),
             QStringList(line(m_source, QByteArray("copied to '" + m_target + "'").constData(),
                              "the target lies inside it")));
}

void tst_TreeCauses::fileOntoItself()
{
    write(m_source + "/file");
    m_target = m_source;
    QVERIFY(!transfer(m_source, m_target, Copy));
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
    QVERIFY(!transfer(m_source, m_target, manner));
    QCOMPARE(m_messages->takeWarnings(), QStringList(copyLine('/' + name, "File name too long")));
}

void tst_TreeCauses::unreadableFolder()
{
    QFETCH(Manner, manner);
    const QByteArray locked = m_source + "/locked";
    write(locked + "/file");
    for (const QByteArray& path : {m_root, m_source, QFile::encodeName(RunRoot::path())})
        QCOMPARE(chmod(path.constData(), 0777), 0);
    QCOMPARE(chmod(locked.constData(), 0), 0);
    QVERIFY(TreeFiles::asPlainUser([&] {
        return !transfer(m_source, m_target, manner)
            && m_messages->takeWarnings() == QStringList(line(locked, "read", "Permission denied"));
    }));
    QCOMPARE(chmod(locked.constData(), 0755), 0);
}

void tst_TreeCauses::linkToAFolderThatStays()
{
    write(m_root + "/elsewhere/file");
    makeLink("../elsewhere", m_source + "/link");
    QVERIFY(transfer(m_source, m_target, Move));
    QCOMPARE(m_messages->takeWarnings(),
             QStringList(line(m_source + "/link", "removed", "it is a link to a folder")));
}

void tst_TreeCauses::removalThroughALink()
{
    makeLink("source", m_root + "/link");
    QDir link(QFile::decodeName(m_root + "/link"));
    QVERIFY(!QuenzoTool::removeRecursively(link));
    QCOMPARE(m_messages->takeWarnings(),
             QStringList(line(m_root + "/link", "removed", "it is a link to a folder")));
}

// Once for the file, and not again for each folder that stays for it.
void tst_TreeCauses::removalOfAFileThatResists()
{
    const QByteArray locked = m_source + "/folder/locked";
    write(locked + "/file");
    for (const QByteArray& path : {m_root, m_source, QByteArray(m_source + "/folder")})
        QCOMPARE(chmod(path.constData(), 0777), 0);
    QCOMPARE(chmod(locked.constData(), 0555), 0);
    QVERIFY(TreeFiles::asPlainUser([&] {
        QDir source(QFile::decodeName(m_source));
        const bool removed = QuenzoTool::removeRecursively(source);
        const QStringList lines = m_messages->takeWarnings();
        return !removed
            && lines.value(lines.size() - 1) == line(locked + "/file", "removed", "Permission denied")
            && lines.filter(QStringLiteral("could not be removed")).size() == 1;
    }));
    QCOMPARE(chmod(locked.constData(), 0755), 0);
}

QTEST_GUILESS_MAIN(tst_TreeCauses)
#include "tst_treecauses.moc"
