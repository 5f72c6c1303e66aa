// SPDX-License-Identifier: MIT
// What may stand in a target already: links and mounts that lead back, links that lead elsewhere.
#include <threadcommon.h>

#include "faultycalls.h"
#include "runroot.h"
#include "treefixture.h"

#include <QDir>
#include <QtTest>

using TreeFiles::content;
using TreeFiles::exists;
using TreeFiles::makeFolder;
using TreeFiles::makeLink;
using TreeFiles::setMode;
using TreeFiles::write;
using namespace TreeRuns;

class tst_TreeTargets : public TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() override;

    void linkIntoTheSourceIsRefused_data() { addPlaces(); }
    void linkIntoTheSourceIsRefused();
    void mountOfTheSourceIsRefused_data() { addPlaces(); }
    void mountOfTheSourceIsRefused();
    void folderBehindALinkThatIsOfTheSourceIsRefused_data() { addEveryWay(); }
    void folderBehindALinkThatIsOfTheSourceIsRefused();
    void outputByAnotherNameOfTheSourceIsRefused_data();
    void outputByAnotherNameOfTheSourceIsRefused();
    void linkFromAnOutputInsideTheSourceIsRefused();
    void linkToElsewhereIsFollowed_data() { addEveryWay(); }
    void linkToElsewhereIsFollowed();
    void danglingLinkStaysAndIsFalse_data() { addEveryWay(); }
    void danglingLinkStaysAndIsFalse();
    void folderOfAFilesNameKeepsItsRights_data() { addEveryWay(); }
    void folderOfAFilesNameKeepsItsRights();
    void exchangedTargetIsNotFollowed_data();
    void exchangedTargetIsNotFollowed();
    void exchangedSourceIsNotGoneOnWith_data();
    void exchangedSourceIsNotGoneOnWith();
    void runsAtOnceLoseNothing_data();
    void runsAtOnceLoseNothing();

private:
    static void addPlaces();
    void fillTwoFolders() const;
};

void tst_TreeTargets::init()
{
    TreeFixture::init();
    makeFolder(m_target);
}

void tst_TreeTargets::addPlaces()
{
    QTest::addColumn<Manner>("manner");
    QTest::addColumn<QByteArray>("place");
    for (const auto& [manner, what] : everyWay) {
        for (const char* place : {"/folder", "/folder/inner", "/other", "/other/inner", ""})
            QTest::addRow("%s, source%s", what, place) << manner << QByteArray(place);
    }
}

void tst_TreeTargets::fillTwoFolders() const
{
    write(m_source + "/folder/inner/file", "1");
    write(m_source + "/other/inner/file", "2");
    write(m_source + "/other/file", "3");
    write(m_source + "/folder/file", "4");
}

void tst_TreeTargets::linkIntoTheSourceIsRefused()
{
    QFETCH(Manner, manner);
    QFETCH(QByteArray, place);
    fillTwoFolders();
    // Both, since either folder may be listed first, and so be moved before the other is refused.
    makeLink(m_source + place, m_target + "/folder");
    makeLink(m_source + place, m_target + "/other");
    const Tree before = content(m_root);
    QVERIFY(!transfer(manner));
    QCOMPARE(content(m_root), before);
}

void tst_TreeTargets::mountOfTheSourceIsRefused()
{
    QFETCH(Manner, manner);
    QFETCH(QByteArray, place);
    fillTwoFolders();
    const Mount folder = Mount::folder(m_source + place, m_target + "/folder");
    const Mount other = Mount::folder(m_source + place, m_target + "/other");
    if (!folder.isMounted || !other.isMounted)
        QSKIP("only root can mount a folder");
    const Tree before = content(m_source);
    QVERIFY(!transfer(manner));
    QCOMPARE(content(m_source), before);
}

// The link leads to a folder above the source, which a folder of the source's name leads into again.
void tst_TreeTargets::folderBehindALinkThatIsOfTheSourceIsRefused()
{
    QFETCH(Manner, manner);
    write(m_source + "/up/source/file", "1");
    makeLink("..", m_target + "/up");
    const Tree before = content(m_source);
    QVERIFY(!transfer(manner));
    QCOMPARE(content(m_source), before);
}

void tst_TreeTargets::outputByAnotherNameOfTheSourceIsRefused_data()
{
    QTest::addColumn<QByteArray>("place");
    QTest::newRow("source") << QByteArray("source");
    QTest::newRow("folder in it") << QByteArray("source/folder");
}

void tst_TreeTargets::outputByAnotherNameOfTheSourceIsRefused()
{
    QFETCH(QByteArray, place);
    write(m_source + "/file", "1");
    write(m_source + "/folder/file", "2");
    m_target = m_root + "/alias";
    makeLink(place, m_target);
    const Tree before = content(m_root);
    QVERIFY(!transfer(CutForOutput));
    ThreadCommon around;
    QVERIFY(!around.exceptCut(QFile::decodeName(m_source), QFile::decodeName(m_target), {}));
    QCOMPARE(content(m_root), before);
}

void tst_TreeTargets::linkFromAnOutputInsideTheSourceIsRefused()
{
    m_target = m_source + "/out";
    write(m_source + "/folder/file", "1");
    makeFolder(m_target);
    makeLink("../folder", m_target + "/folder");
    QVERIFY(!transfer(CutForOutput));
    setMode(m_target, 0755);
    QCOMPARE(TreeFiles::read(m_source + "/folder/file"), QByteArray("1"));
}

void tst_TreeTargets::linkToElsewhereIsFollowed()
{
    QFETCH(Manner, manner);
    write(m_source + "/folder/file", "1");
    write(m_source + "/folder/inner/file", "2");
    makeFolder(m_root + "/elsewhere/inner");
    makeLink("../elsewhere", m_target + "/folder");
    QVERIFY(transfer(manner));
    QCOMPARE(content(m_root + "/elsewhere"),
             Tree({{"file", "file 1"}, {"inner", "folder"}, {"inner/file", "file 2"}}));
}

// It does not exist, and so is in nobody's way but the file system's.
void tst_TreeTargets::danglingLinkStaysAndIsFalse()
{
    QFETCH(Manner, manner);
    write(m_source + "/file", "new");
    makeLink("nowhere", m_target + "/file");
    QVERIFY(!transfer(manner));
    QCOMPARE(content(m_target), Tree({{"file", "link nowhere"}}));
    QVERIFY(exists(m_source + "/file"));
    QCOMPARE(RunRoot::log().count("Copy Fail:"), manner == CutForOutput ? 1 : 0);
}

void tst_TreeTargets::folderOfAFilesNameKeepsItsRights()
{
    QFETCH(Manner, manner);
    write(m_source + "/entry");
    write(m_target + "/entry/file");
    QVERIFY(!transfer(manner));
    QCOMPARE(TreeFiles::mode(m_target + "/entry"), 0755);
    QVERIFY(exists(m_target + "/entry/file"));
}

void tst_TreeTargets::exchangedTargetIsNotFollowed_data()
{
    QTest::addColumn<Manner>("manner");
    QTest::addColumn<bool>("isThere");
    for (const auto& [manner, what] : {everyWay[0], everyWay[1]}) {
        for (const bool isThere : {true, false})
            QTest::addRow("%s, %s", what, isThere ? "there" : "new") << manner << isThere;
    }
}

// Somebody else lets the way to the target lead into the source while it is looked at.
void tst_TreeTargets::exchangedTargetIsNotFollowed()
{
    QFETCH(Manner, manner);
    QFETCH(bool, isThere);
    const QByteArray place = m_root + "/place";
    const QByteArray aside = m_root + "/aside";
    fillTwoFolders();
    const Tree before = content(m_source);
    makeFolder(isThere ? place + "/target" : place);
    FaultyCalls::actBeforeNth(FaultyCalls::Climbing, 1, [&] {
        QCOMPARE(rename(place.constData(), aside.constData()), 0);
        makeLink("source", place);
    });
    QVERIFY(TreeRuns::transfer(m_source, place + "/target", manner));
    QVERIFY(FaultyCalls::wasHit());
    QCOMPARE(content(aside + "/target"), before);
    QCOMPARE(content(m_source), manner == Copy ? before : Tree());
}

void tst_TreeTargets::exchangedSourceIsNotGoneOnWith_data()
{
    QTest::addColumn<Manner>("manner");
    for (const auto& [manner, what] : {everyWay[0], everyWay[1]})
        QTest::newRow(what) << manner;
}

// Somebody else puts another folder in the source's place while it is closed for the many in a linked one,
// from where no way but its path leads back.
void tst_TreeTargets::exchangedSourceIsNotGoneOnWith()
{
    QFETCH(Manner, manner);
    const QByteArray deep = QByteArray("/n").repeated(40) + "/file";
    for (const char* name : {"/one", "/two"}) {
        write(m_root + "/elsewhere" + name + deep, "deep");
        makeLink(QByteArray("../elsewhere") + name, m_source + name);
        write(m_root + "/other" + name + "/file", "other");
    }
    const QByteArray aside = m_root + "/aside";
    const QByteArray intruder = m_root + "/other";
    const Tree other = content(intruder);
    FaultyCalls::actBeforeNth(FaultyCalls::Opening, 1, [&] { // of the first deep file
        QCOMPARE(rename(m_source.constData(), aside.constData()), 0);
        QCOMPARE(rename(intruder.constData(), m_source.constData()), 0);
    });
    QVERIFY(!transfer(manner));
    QVERIFY(FaultyCalls::wasHit());
    QCOMPARE(content(m_source), other);
    QCOMPARE(content(m_target).keys("file other"), QList<QByteArray>());
}

void tst_TreeTargets::runsAtOnceLoseNothing_data()
{
    QTest::addColumn<int>("operate");
    QTest::newRow("cut") << int(OPERATE_CUT);
    QTest::newRow("output") << int(OPERATE_CUT_OUTPUT);
}

void tst_TreeTargets::runsAtOnceLoseNothing()
{
    QFETCH(int, operate);
    const QVariantMap map = folders();
    for (int round = 0; round < 60; ++round) {
        QSet<QByteArray> names;
        for (int i = 0; i < 12; ++i) {
            const QByteArray name = "file" + QByteArray::number(i);
            write(m_source + '/' + name, "new");
            names.insert(name);
        }
        ThreadCommon one;
        ThreadCommon two;
        for (ThreadCommon* const run : {&one, &two})
            run->StartOperate(static_cast<THREAD_OPERATE>(operate), map);
        one.start();
        two.start();
        one.wait();
        two.wait();
        for (const QByteArray& name : qAsConst(names))
            QVERIFY2(exists(m_source + '/' + name) || exists(m_target + '/' + name), name.constData());
    }
}

QTEST_GUILESS_MAIN(tst_TreeTargets)
#include "tst_treetargets.moc"
