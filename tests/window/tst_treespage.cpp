// SPDX-License-Identifier: MIT
#include "window/trees/treespage.h"

#include "treefiles.h"

#include <QtTest>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

using Tree = QMap<QByteArray, QByteArray>;

class tst_TreesPage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void startNeedsALook();
    void lookTouchesNothing();
    void copyBringsEverything();
    void moveEmptiesTheSource();
    void outputLeavesNamesAndRights();
    void whatCannotBeDoneIsSaidBefore();
    void stoppedWorkLosesNothing();

private:
    template <typename Widget> Widget* find(const char* name) const
    {
        return m_page->findChild<Widget*>(QLatin1String(name));
    }
    void fill(const QString& target, int operation = 0);
    void click(const char* button) { QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton); }
    void look();
    QString told() const { return find<QLabel>("toldOfTrees")->text(); }
    QStringList fates() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<TreesPage> m_page;
    QByteArray m_source;
    QByteArray m_target;
};

void tst_TreesPage::init()
{
    QLocale::setDefault(QLocale::c());
    m_folder = std::make_unique<QTemporaryDir>(TreeFiles::quickFolder());
    QVERIFY(m_folder->isValid());
    m_source = QFile::encodeName(m_folder->filePath(QStringLiteral("source")));
    m_target = QFile::encodeName(m_folder->filePath(QStringLiteral("target")));
    TreeFiles::makeFolder(m_source);
    TreeFiles::makeFolder(m_source + "/Log");
    TreeFiles::write(m_source + "/Log/today", "log");
    TreeFiles::write(m_source + "/game", "new");
    TreeFiles::makeFolder(m_target);
    TreeFiles::write(m_target + "/game", "old");
    m_page = std::make_unique<TreesPage>();
    m_page->resize(800, 600);
    m_page->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page.get()));
}

void tst_TreesPage::fill(const QString& target, int operation)
{
    auto* const operate = find<QComboBox>("treeOperation");
    operate->setFocus();
    for (int i = 0; i < operation; ++i)
        QTest::keyClick(operate, Qt::Key_Down);
    QTest::keyClicks(find<QLineEdit>("treeSource"), QFile::decodeName(m_source));
    QTest::keyClicks(find<QLineEdit>("treeTarget"), target);
}

void tst_TreesPage::look()
{
    click("lookAtTrees");
    QTRY_VERIFY_WITH_TIMEOUT(find<QPushButton>("lookAtTrees")->isEnabled(), 60000);
}

QStringList tst_TreesPage::fates() const
{
    const QAbstractItemModel* const model = find<QTableView>("treeFiles")->model();
    QStringList lines;
    for (int row = 0; row < model->rowCount(); ++row)
        lines.append(model->index(row, 1).data().toString() + QLatin1String(": ")
                     + model->index(row, 0).data().toString());
    lines.sort();
    return lines;
}

void tst_TreesPage::startNeedsALook()
{
    fill(QFile::decodeName(m_target));
    QVERIFY(!find<QPushButton>("startTrees")->isEnabled());
    look();
    QVERIFY(find<QPushButton>("startTrees")->isEnabled());
    QTest::keyClicks(find<QLineEdit>("treeTarget"), QStringLiteral("2"));
    QVERIFY2(!find<QPushButton>("startTrees")->isEnabled(), "nobody has looked at that folder");
}

void tst_TreesPage::lookTouchesNothing()
{
    const Tree before = TreeFiles::content(QFile::encodeName(m_folder->path()));
    fill(QFile::decodeName(m_target));
    look();
    QCOMPARE(fates(),
             QStringList({QStringLiteral("Log/today: goes"), QStringLiteral("game: replaces a file")}));
    QVERIFY2(told().contains(QStringLiteral("2 files")), qPrintable(told()));
    QCOMPARE(TreeFiles::content(QFile::encodeName(m_folder->path())), before);
}

void tst_TreesPage::copyBringsEverything()
{
    const Tree source = TreeFiles::content(m_source);
    fill(QFile::decodeName(m_target));
    look();
    click("startTrees");
    QTRY_COMPARE_WITH_TIMEOUT(m_page->workAtHand(), QString(), 60000);
    QVERIFY2(told().startsWith(QLatin1String("Done")), qPrintable(told()));
    QCOMPARE(TreeFiles::content(m_target), source);
    QCOMPARE(TreeFiles::content(m_source), source);
}

void tst_TreesPage::moveEmptiesTheSource()
{
    const Tree source = TreeFiles::content(m_source);
    fill(QFile::decodeName(m_target), 1);
    look();
    click("startTrees");
    QTRY_COMPARE_WITH_TIMEOUT(m_page->workAtHand(), QString(), 60000);
    QCOMPARE(TreeFiles::content(m_target), source);
    QCOMPARE(TreeFiles::content(m_source), Tree());
}

void tst_TreesPage::outputLeavesNamesAndRights()
{
    const QFileDevice::Permissions rights = QFileInfo(QFile::decodeName(m_source + "/Log")).permissions();
    fill(QFile::decodeName(m_source + "/out"), 2);
    QTest::keyClicks(find<QLineEdit>("treeNamesThatStay"), QStringLiteral("log, out"));
    look();
    QCOMPARE(fates(), QStringList({QStringLiteral("Log: stays"), QStringLiteral("game: goes")}));
    click("startTrees");
    QTRY_COMPARE_WITH_TIMEOUT(m_page->workAtHand(), QString(), 60000);
    QVERIFY2(told().startsWith(QLatin1String("Done")), qPrintable(told()));
    QVERIFY(TreeFiles::exists(m_source + "/out/game"));
    QVERIFY(TreeFiles::exists(m_source + "/Log/today"));
    QCOMPARE(QFileInfo(QFile::decodeName(m_source + "/Log")).permissions(), rights);
}

void tst_TreesPage::whatCannotBeDoneIsSaidBefore()
{
    const Tree before = TreeFiles::content(m_source);
    fill(QFile::decodeName(m_source + "/inside"));
    look();
    QVERIFY2(!told().isEmpty(), "nothing is said");
    QVERIFY(!find<QPushButton>("startTrees")->isEnabled());
    QCOMPARE(TreeFiles::content(m_source), before);
}

void tst_TreesPage::stoppedWorkLosesNothing()
{
    TreeFiles::makeFolder(m_source + "/many");
    TreeFiles::writeMany(m_source + "/many/file", 20000, "kept");
    fill(QFile::decodeName(m_target), 1);
    look();
    click("startTrees");
    click("stopTrees");
    QTRY_COMPARE_WITH_TIMEOUT(m_page->workAtHand(), QString(), 60000);
    QVERIFY2(told().startsWith(QLatin1String("Stopped."))
                 && told().endsWith(QLatin1String("; look and start again to go on.")),
             qPrintable(told()));
    QVERIFY(!find<QPushButton>("startTrees")->isEnabled() && find<QPushButton>("lookAtTrees")->isEnabled());
    const auto kept = [](const QByteArray& folder) {
        const auto values = TreeFiles::content(folder).values();
        return std::count_if(values.cbegin(), values.cend(),
                             [](const QByteArray& value) { return value.contains("kept"); });
    };
    QCOMPARE(kept(m_source + "/many") + kept(m_target + "/many"), 20000);
}

QTEST_MAIN(tst_TreesPage)
#include "tst_treespage.moc"
