// SPDX-License-Identifier: MIT
// The program's command output, and the rights that it gives back.
#include "treefiles.h"
#include "treescene.h"

#include <QDir>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

using TreeFiles::exists;
using TreeFiles::write;

class tst_HostOutput : public QObject, private TreeScene {
    Q_OBJECT

private Q_SLOTS:
    void init() { openScene(); }
    void cleanup() { closeScene(); }

    void outputLeavesNamesAndRestoresRights();
    void outputThroughAnAliasEnds();
    void outputGivesRightsBackToEveryFolder();
    void outputGivesRightsBackToAFolderItMade();
    void interruptedOutputGivesRightsBack_data();
    void interruptedOutputGivesRightsBack();
    void plainUsersOutputIsWhole_data();
    void plainUsersOutputIsWhole();
};

void tst_HostOutput::outputLeavesNamesAndRestoresRights()
{
    write(m_root + "/source/Log/file", "stays");
    write(m_root + "/source/build", "stays");
    write(m_root + "/source/folder/file", "moves");
    write(m_root + "/source/out/apk/game.apk", "game");
    const QByteArray out = m_root + "/source/out";
    chmod(out.constData(), 0750);
    const Ended outcome = run("output source source/out/ --leave log,BUILD");
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.code, 0);
    QCOMPARE(TreeFiles::mode(out), 0750);
    QCOMPARE(TreeFiles::read(m_root + "/source/Log/file"), QByteArray("stays"));
    QCOMPARE(TreeFiles::read(m_root + "/source/build"), QByteArray("stays"));
    QCOMPARE(TreeFiles::read(out + "/folder/file"), QByteArray("moves"));
    QCOMPARE(TreeFiles::read(out + "/apk/game.apk"), QByteArray("game"));
    QVERIFY(!exists(m_root + "/source/folder"));
}

void tst_HostOutput::outputThroughAnAliasEnds()
{
    write(m_root + "/source/folder/file", "moved");
    TreeFiles::makeLink("source", m_root + "/alias");
    const Ended outcome = run("output source alias/out");
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.code, 0);
    QCOMPARE(TreeFiles::read(m_root + "/source/out/folder/file"), QByteArray("moved"));
    QVERIFY(!exists(m_root + "/source/out/out/out"));
}

void tst_HostOutput::outputGivesRightsBackToEveryFolder()
{
    // Folders that stay: the output folder, the one above it, and what links lead to, over several links.
    const QByteArray above = m_root + "/source/above\xff";
    write(above + "/out/apk/game.apk");
    write(m_root + "/one/file");
    write(m_root + "/two/file");
    TreeFiles::makeLink("../one", m_root + "/source/link");
    TreeFiles::makeLink("../two", m_root + "/one/link");
    chmod(above.constData(), 02775);
    const QByteArray one = m_root + "/one";
    const QByteArray two = m_root + "/two";
    chmod(one.constData(), 0750);
    chmod(two.constData(), 01711);
    const QByteArray out = m_root + "/source/out";
    TreeFiles::makeFolder(out);
    chmod(out.constData(), 02775);
    // A link keeps the folder with the name that is no text.
    write(m_root + "/three/file");
    TreeFiles::makeLink("../../three", above + "/link");
    QCOMPARE(run("output source source/out").code, 0);
    QCOMPARE(TreeFiles::mode(out), 02775);
    QCOMPARE(TreeFiles::mode(above), 02775);
    QCOMPARE(TreeFiles::mode(one), 0750);
    QCOMPARE(TreeFiles::mode(two), 01711);
}

void tst_HostOutput::outputGivesRightsBackToAFolderItMade()
{
    write(m_root + "/source/file");
    QCOMPARE(run("output source source/out").code, 0);
    const mode_t mask = umask(0);
    umask(mask);
    QCOMPARE(TreeFiles::mode(m_root + "/source/out"), int(0777 & ~mask));
}

void tst_HostOutput::interruptedOutputGivesRightsBack_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGQUIT") << SIGQUIT;
    QTest::newRow("SIGUSR1") << SIGUSR1;
    QTest::newRow("SIGXCPU") << SIGXCPU;
    QTest::newRow("SIGRTMIN") << SIGRTMIN;
}

void tst_HostOutput::interruptedOutputGivesRightsBack()
{
    QFETCH(int, number);
    // Listed from the newest on, where it is in memory: the folder is done first, and the files are not.
    closeScene();
    openScene(TreeFiles::quickFolder());
    for (int i = 0; i < 40000; ++i)
        write(m_root + "/source/file" + QByteArray::number(i), "");
    const QByteArray out = m_root + "/source/out";
    TreeFiles::makeFolder(out);
    QuenzoProcess process(QuenzoProcess::words("output source source/out"), folder());
    process.before = [] {
        const struct rlimit none {
            0, 0
        };
        setrlimit(RLIMIT_CORE, &none);
    };
    process.start();
    QVERIFY(process.waitForStarted());
    while (TreeFiles::mode(out) != 02 && process.state() == QProcess::Running)
        process.waitForFinished(1);
    kill(pid_t(process.processId()), number);
    QCOMPARE(process.end().code, -number);
    QCOMPARE(TreeFiles::mode(out), 0755);
}

void tst_HostOutput::plainUsersOutputIsWhole_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("disk") << QDir::tempPath() + QStringLiteral("/trees.XXXXXX");
    QTest::newRow("memory") << TreeFiles::quickFolder();
}

void tst_HostOutput::plainUsersOutputIsWhole()
{
    QFETCH(QString, folder);
    closeScene();
    openScene(folder);
    // Whatever the order of the listing is, some come after the output folder.
    constexpr int count = 40;
    for (int i = 0; i < count; ++i) {
        write(m_root + "/source/file" + QByteArray::number(i));
        write(m_root + "/source/folder" + QByteArray::number(i) + "/file");
        if (i == count / 2)
            TreeFiles::makeFolder(m_root + "/source/out");
    }
    write(m_root + "/source/log/file");
    giveToPlainUser();
    const Ended outcome = runPlainly("output source source/out --leave Log --json");
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.code, 0);
    QCOMPARE(outcome.result().value(QStringLiteral("files")), QJsonValue(2 * count));
    QCOMPARE(TreeFiles::mode(m_root + "/source/out"), 0755);
    QDir source(path(QStringLiteral("source")));
    QCOMPARE(source.entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             (QStringList{QStringLiteral("log"), QStringLiteral("out")}));
    for (int i = 0; i < count; ++i) {
        const QByteArray file = "/file" + QByteArray::number(i);
        QVERIFY(exists(m_root + "/source/out" + file) || exists(m_root + "/source/out/out" + file));
        QVERIFY(exists(m_root + "/source/out/folder" + QByteArray::number(i) + "/file"));
    }
}

QTEST_GUILESS_MAIN(tst_HostOutput)
#include "tst_hostoutput.moc"
