// SPDX-License-Identifier: MIT
#include "buildscene.h"
#include "person.h"
#include "scriptedtools.h"
#include "treefiles.h"
#include "windowscene.h"

#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTableView>

#include <algorithm>
#include <csignal>

// Whoever closes the window during work is asked, and the work ends cleanly before the window does.
class tst_Closing : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void windowWithoutWorkClosesAtOnce();
    void buildEndsBehindItsStep_data();
    void buildEndsBehindItsStep();
    void unsavedEditsAreAskedAboutAfterTheWork();
    void deviceEndsWhatItHasBegun_data();
    void deviceEndsWhatItHasBegun();
    void nothingBeginsOnADeviceAnyMore();
    void moveLosesNoFile();
    void exportIsWrittenWhole();
    void recordsThatAreReadHoldNobodyUp();

private:
    void startBuild(BuildScene& scene);
    void startInstall(bool install);
    /** Closes by keys, or by the window's frame; the question must come, and is answered by the same means.
     */
    void close(const QString& answer, bool byKeys = false);
    void openRecords();
    static int changes() { return ScriptedTools::calls().filter(QStringLiteral("install")).size(); }

    QTemporaryDir m_settings;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<WindowScene> m_scene;
    QString m_asked; ///< by the window, when it was closed last
};

namespace {

const QString stop = QStringLiteral("&Stop and close");
const QString goOn = QStringLiteral("&Go on working");

constexpr int rows = 100000;

void writeRecords(const QString& file)
{
    {
        QSqlDatabase database =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("preparation"));
        database.setDatabaseName(file);
        QVERIFY2(database.open(), qPrintable(database.lastError().text()));
        QSqlQuery query(database);
        const bool isWritten = query.exec(QStringLiteral("CREATE TABLE many (id INTEGER, name TEXT)"))
            && query.exec(QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                                         "WHERE i < %1) INSERT INTO many SELECT i, 'row ' || i FROM n")
                              .arg(rows));
        QVERIFY2(isWritten, qPrintable(query.lastError().text()));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("preparation"));
}

} // namespace

void tst_Closing::initTestCase()
{
    QVERIFY(m_settings.isValid());
    QVERIFY(WindowScene::linkProgram());
}

void tst_Closing::init()
{
    WindowScene::prepare(m_settings);
    ScriptedTools::write();
    m_folder = std::make_unique<QTemporaryDir>(TreeFiles::quickFolder());
    m_scene = std::make_unique<WindowScene>();
    QCOMPARE(m_scene->show(), QString());
}

void tst_Closing::cleanup()
{
    m_scene.reset();
}

void tst_Closing::close(const QString& answer, bool byKeys)
{
    m_asked.clear();
    const Person person([&](QWidget* dialog) {
        m_asked = qobject_cast<QMessageBox*>(dialog)->text();
        if (byKeys)
            Person::reach(dialog, answer);
        else
            Person::press(dialog, answer);
    });
    if (byKeys)
        m_scene->press(Qt::Key_Q, Qt::ControlModifier);
    else
        m_scene->closeFrame();
    QVERIFY2(person.wasAsked(), "nobody asks");
    QVERIFY2(m_asked.endsWith(QLatin1Char('.')), qPrintable(m_asked));
}

void tst_Closing::windowWithoutWorkClosesAtOnce()
{
    m_scene->closeFrame();
    QVERIFY(!m_scene->isOpen());
}

// A build that waits within a step.
void tst_Closing::startBuild(BuildScene& scene)
{
    QVERIFY(scene.isValid() && scene.signAtGate() && scene.writeJob());
    qputenv("PATH", QFile::encodeName(scene.path(QStringLiteral("bin:"))) + qgetenv("PATH"));
    QCOMPARE(m_scene->open(scene.path(QStringLiteral("job.json"))), QString());
    m_scene->goTo(QStringLiteral("Build"));
    m_scene->click("build");
    SCENE_TRY(scene.processAtGate(QStringLiteral("plain")) > 0);
}

void tst_Closing::buildEndsBehindItsStep_data()
{
    QTest::addColumn<bool>("byKeys");
    QTest::newRow("mouse") << false;
    QTest::newRow("keys") << true;
}

void tst_Closing::buildEndsBehindItsStep()
{
    QFETCH(const bool, byKeys);
    const QByteArray path = qgetenv("PATH");
    BuildScene scene;
    startBuild(scene);
    close(goOn, byKeys);
    QVERIFY(m_scene->isOpen());
    QVERIFY2(m_scene->part<QPushButton>("stopBuild")->isEnabled(), "the build has been stopped");
    close(stop, byKeys);
    QVERIFY2(m_scene->isOpen(), "the window does not wait for the step");
    QVERIFY(!m_scene->part<QPushButton>("build")->isEnabled());
    QVERIFY(m_scene->label("bannerText").startsWith(QLatin1String("The window closes as soon as")));
    m_scene->closeFrame(); // once more: it has been answered
    QVERIFY(m_scene->isOpen());
    QVERIFY(scene.openGate());
    SCENE_TRY(!m_scene->isOpen());
    const qint64 builder = scene.processAtGate(QStringLiteral("plain"));
    QVERIFY2(::kill(pid_t(builder), 0) != 0, "what was building is still there");
    const Ended next = scene.run();
    QVERIFY2(next.code == 0, next.error.constData());
    qputenv("PATH", path);
}

void tst_Closing::unsavedEditsAreAskedAboutAfterTheWork()
{
    const QByteArray path = qgetenv("PATH");
    BuildScene scene;
    startBuild(scene);
    m_scene->goTo(QStringLiteral("Channels"));
    m_scene->clickCell("channels", 0, 1);
    m_scene->click("copyChannelsButton");
    QVERIFY(m_scene->window().isWindowModified());
    close(stop);
    {
        const Person person([](QWidget* dialog) { Person::press(dialog, QStringLiteral("&Go on editing")); });
        QVERIFY(scene.openGate());
        SCENE_TRY(person.wasAsked());
    }
    QVERIFY(m_scene->isOpen());
    QVERIFY2(m_scene->part<QPushButton>("build")->isEnabled(), "the window is still about to close");
    const Person person([](QWidget* dialog) { Person::press(dialog, QStringLiteral("&Drop the edits")); });
    m_scene->closeFrame();
    QVERIFY(person.wasAsked() && !m_scene->isOpen());
    qputenv("PATH", path);
}

// Up to the question before data goes.
void tst_Closing::startInstall(bool install)
{
    ScriptedTools::attach({QStringLiteral("a")});
    const QString apk = m_folder->filePath(QStringLiteral("game.apk"));
    QVERIFY(QFile(apk).open(QIODevice::WriteOnly));
    m_scene->goTo(QStringLiteral("Devices"));
    m_scene->click("refreshDevices");
    SCENE_TRY(m_scene->part<QTableView>("devices")->model()->rowCount() == 1);
    m_scene->type("apk", apk);
    m_scene->click(install ? "install" : "uninstall");
}

void tst_Closing::deviceEndsWhatItHasBegun_data()
{
    QTest::addColumn<bool>("install");
    QTest::addColumn<bool>("byKeys");
    QTest::addColumn<int>("steps");
    QTest::newRow("install, mouse") << true << false << 2;
    QTest::newRow("install, keys") << true << true << 2;
    QTest::newRow("removal, mouse") << false << false << 1;
    QTest::newRow("removal, keys") << false << true << 1;
}

void tst_Closing::deviceEndsWhatItHasBegun()
{
    QFETCH(const bool, install);
    QFETCH(const bool, byKeys);
    QFETCH(const int, steps);
    ScriptedTools::answer(QStringLiteral("uninstall"), "read line <\"$dir/gate\"; echo Success");
    startInstall(install);
    SCENE_TRY(m_scene->part<QMessageBox>("deviceQuestion"));
    Person::press(m_scene->part<QMessageBox>("deviceQuestion"),
                  install ? QStringLiteral("Remove and &install") : QStringLiteral("&Remove"));
    SCENE_TRY(changes() == 1);
    close(stop, byKeys);
    QVERIFY2(m_scene->isOpen(), "the window does not wait for the device");
    ScriptedTools::openGate();
    SCENE_TRY(!m_scene->isOpen());
    QCOMPARE(changes(), steps);
}

void tst_Closing::nothingBeginsOnADeviceAnyMore()
{
    ScriptedTools::answer(
        QStringLiteral("d"),
        "read line <\"$dir/gate\"; echo \"package: name='org.example.game' versionCode='1'\"");
    startInstall(true);
    close(stop);
    QCOMPARE(m_asked, QStringLiteral("The package's name is being read."));
    ScriptedTools::openGate();
    SCENE_TRY(!m_scene->isOpen());
    QVERIFY(!m_scene->part<QMessageBox>("deviceQuestion"));
    QCOMPARE(changes(), 0);
}

void tst_Closing::moveLosesNoFile()
{
    constexpr int count = 5000;
    const QString source = m_folder->filePath(QStringLiteral("source"));
    const QString target = m_folder->filePath(QStringLiteral("target"));
    TreeFiles::makeFolder(QFile::encodeName(source));
    TreeFiles::makeFolder(QFile::encodeName(target));
    TreeFiles::writeMany(QFile::encodeName(source) + "/file", count, "kept");
    m_scene->goTo(QStringLiteral("Folders"));
    m_scene->part<QComboBox>("treeOperation")->setFocus();
    QTest::keyClick(m_scene->part<QComboBox>("treeOperation"), Qt::Key_Down);
    m_scene->type("treeSource", source);
    m_scene->type("treeTarget", target);
    m_scene->click("lookAtTrees");
    SCENE_TRY(m_scene->part<QPushButton>("startTrees")->isEnabled());
    m_scene->click("startTrees");
    close(stop);
    SCENE_TRY(!m_scene->isOpen());
    const auto kept = [](const QString& folder) {
        const auto values = TreeFiles::content(QFile::encodeName(folder)).values();
        return std::count_if(values.cbegin(), values.cend(),
                             [](const QByteArray& value) { return value.contains("kept"); });
    };
    QCOMPARE(kept(source) + kept(target), count);
}

void tst_Closing::openRecords()
{
    const QString file = m_folder->filePath(QStringLiteral("records.db"));
    writeRecords(file);
    m_scene->goTo(QStringLiteral("Records"));
    m_scene->type("recordsFile", file);
    QTest::keyClick(m_scene->part<QLineEdit>("recordsFile"), Qt::Key_Return);
}

void tst_Closing::exportIsWrittenWhole()
{
    openRecords();
    SCENE_TRY(m_scene->part<QTableView>("rows")->model()->rowCount() == rows);
    const QString csv = m_folder->filePath(QStringLiteral("many.csv"));
    const Person person([&csv](QWidget* dialog) {
        qobject_cast<QFileDialog*>(dialog)->selectFile(csv);
        QTest::keyClick(dialog->findChild<QLineEdit*>(), Qt::Key_Return);
    });
    m_scene->click("saveRows");
    close(stop);
    SCENE_TRY(!m_scene->isOpen());
    QFile file(csv);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll().count('\n'), rows + 1);
}

// Nothing is lost with them: whoever closes meanwhile is not asked.
void tst_Closing::recordsThatAreReadHoldNobodyUp()
{
    openRecords();
    m_scene->closeFrame();
    QVERIFY(!m_scene->isOpen());
}

QTEST_MAIN(tst_Closing)
#include "tst_closing.moc"
