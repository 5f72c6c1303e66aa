// SPDX-License-Identifier: MIT
#include "person.h"
#include "runroot.h"
#include "window/mainwindow.h"
#include "window/start/jobfiles.h"
#include "window/start/jobmenus.h"
#include "window/start/recentjobs.h"

#include <QtTest>

#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>

namespace {

void drop(QWidget& window, const QString& path)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &enter);
    if (!enter.isAccepted())
        qFatal("the window takes nothing that is dropped");
    QDropEvent event(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &event);
}

template <typename Widget> Widget* find(const QWidget& window, const char* name)
{
    return window.findChild<Widget*>(QLatin1String(name));
}

// Types a folder into the dialog of a new job, and makes it.
std::function<void(QWidget*)> typing(const QString& folder)
{
    return [folder](QWidget* dialog) {
        auto* const field = find<QLineEdit>(*dialog, "newJobFolder");
        field->selectAll();
        QTest::keyClicks(field, folder);
        Person::press(dialog, QStringLiteral("&Make the job"));
    };
}

} // namespace

// Whole jobs: opened, made, dropped on the window, saved and left.
class tst_JobFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void sampleIsReadyToBeBuilt();
    void folderThatIsTakenIsRefused();
    void droppedJobIsOpenedAndRecent();
    void recentJobIsOpenedByTheKeyboard();
    void missingRecentJobIsShownAndCanBeForgotten();
    void apkBeginsAJobWithItsNameAndIcon();
    void damagedApkIsToldOf();
    void mistakesAreListedWithTheirPlaces();
    void whatIsNoJobIsToldInTheBanner();
    void unsavedEditsAreAskedAbout_data();
    void unsavedEditsAreAskedAbout();
    void latestJobIsOpened();
    void editMenuNamesWhatIsUndone();

private:
    QString path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }
    QString makeSample();

    QTemporaryDir m_settings;
    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_JobFiles::initTestCase()
{
    QVERIFY(m_settings.isValid());
    QCoreApplication::setOrganizationName(QStringLiteral("quenzo"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_settings.path());
    RunRoot::writeProgram(QStringLiteral("tool/mac/aapt"), "#!/bin/sh\nexec aapt \"$@\"\n");
}

void tst_JobFiles::init()
{
    QSettings().clear();
    QSettings().setValue(QStringLiteral("language"), QStringLiteral("en"));
    m_folder = std::make_unique<QTemporaryDir>();
}

// The sample's job, made through the window; its path.
QString tst_JobFiles::makeSample()
{
    MainWindow window;
    window.show();
    const Person person(typing(path("sample")));
    QTest::mouseClick(find<QPushButton>(window, "startSample"), Qt::LeftButton);
    const auto* const state = find<QLabel>(window, "jobState");
    if (!QTest::qWaitFor([state] { return state->text().contains(QLatin1String("can be built")); }, 30000))
        qFatal("%s", qUtf8Printable(state->text()));
    return path("sample/job.json");
}

void tst_JobFiles::sampleIsReadyToBeBuilt()
{
    const QString job = makeSample();
    QVERIFY(QFile::exists(job));
    QCOMPARE(RecentJobs::all(), QStringList{job});
}

void tst_JobFiles::folderThatIsTakenIsRefused()
{
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("taken/already")));
    MainWindow window;
    window.show();
    QString refused;
    const Person person([this, &refused](QWidget* dialog) {
        typing(path("taken"))(dialog);
        refused = find<QLabel>(*dialog, "newJobFault")->text();
        Person::press(dialog, QStringLiteral("Cancel"));
    });
    QTest::mouseClick(find<QPushButton>(window, "startSample"), Qt::LeftButton);
    QVERIFY2(refused.contains(QLatin1String("is not empty")), qPrintable(refused));
    QCOMPARE(QDir(path("taken")).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
             QStringList{QStringLiteral("already")});
}

void tst_JobFiles::droppedJobIsOpenedAndRecent()
{
    const QString job = makeSample();
    QSettings().remove(QStringLiteral("jobs/recent"));
    MainWindow window;
    window.show();
    drop(window, job);
    QTRY_COMPARE(window.windowTitle(), QStringLiteral("job.json[*] in sample - QuenzoTool"));
    QCOMPARE(RecentJobs::all(), QStringList{job});
    QCOMPARE(find<QListWidget>(window, "recentJobs")->count(), 1);
}

void tst_JobFiles::recentJobIsOpenedByTheKeyboard()
{
    makeSample();
    MainWindow window;
    window.show();
    auto* const recent = find<QListWidget>(window, "recentJobs");
    QCOMPARE(recent->count(), 1);
    QTest::keyClick(recent, Qt::Key_Down);
    QTest::keyClick(recent, Qt::Key_Return);
    QTRY_COMPARE(window.windowTitle(), QStringLiteral("job.json[*] in sample - QuenzoTool"));
}

void tst_JobFiles::missingRecentJobIsShownAndCanBeForgotten()
{
    RecentJobs::add(path("gone.json"));
    MainWindow window;
    window.show();
    auto* const recent = find<QListWidget>(window, "recentJobs");
    QTRY_COMPARE(recent->item(0)->text(), path("gone.json") + QStringLiteral(" (not there)"));
    QTest::keyClick(recent, Qt::Key_Down);
    QTest::keyClick(recent, Qt::Key_Return);
    const auto* const banner = find<QLabel>(window, "bannerText");
    QTRY_VERIFY(banner->isVisible());
    QVERIFY2(banner->text().contains(path("gone.json")), qPrintable(banner->text()));
    QTest::keyClick(recent, Qt::Key_Delete);
    QCOMPARE(recent->count(), 0);
    QVERIFY(RecentJobs::all().isEmpty());
}

void tst_JobFiles::apkBeginsAJobWithItsNameAndIcon()
{
    const QString apk = path("base.apk");
    QVERIFY(QFile::copy(QStringLiteral(":/quenzo/sample/skyharbour.apk"), apk));
    MainWindow window;
    window.show();
    QString told;
    const Person person([this, &told](QWidget* dialog) {
        told = find<QLabel>(*dialog, "newJobGame")->text();
        typing(path("made"))(dialog);
    });
    drop(window, apk);
    QTRY_COMPARE_WITH_TIMEOUT(window.windowTitle(), QStringLiteral("job.json[*] in made - QuenzoTool"),
                              30000);
    QVERIFY2(told.contains(QLatin1String("Sky Harbour\n"))
                 && told.contains(QLatin1String("com.quenzo.skyharbour")),
             qPrintable(told));
    QFile file(path("made/job.json"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonObject job = QJsonDocument::fromJson(file.readAll()).object();
    QCOMPARE(job.value(QLatin1String("game")).toString(), QStringLiteral("Sky Harbour"));
    QCOMPARE(job.value(QLatin1String("base")).toString(), QStringLiteral("../base.apk"));
    QVERIFY(!QImage(path("made/icon.png")).isNull());
}

void tst_JobFiles::damagedApkIsToldOf()
{
    QFile apk(path("damaged.apk"));
    QVERIFY(apk.open(QIODevice::WriteOnly) && apk.write("no archive") > 0);
    apk.close();
    MainWindow window;
    window.show();
    drop(window, apk.fileName());
    const auto* const banner = find<QLabel>(window, "bannerText");
    QTRY_VERIFY_WITH_TIMEOUT(banner->isVisible(), 30000);
    QVERIFY2(banner->text().contains(apk.fileName()), qPrintable(banner->text()));
}

void tst_JobFiles::mistakesAreListedWithTheirPlaces()
{
    const QString job = makeSample();
    QVERIFY(QFile::remove(path("sample/packages/harbourpay.zip")));
    MainWindow window;
    window.show();
    drop(window, job);
    const auto* const faults = find<QPlainTextEdit>(window, "jobFaults");
    QTRY_VERIFY_WITH_TIMEOUT(faults->isVisible(), 30000);
    const QString text = faults->toPlainText();
    QVERIFY2(text.startsWith(QLatin1String("/sdks/harbourpay/package: ")), qPrintable(text));
    const QString state = find<QLabel>(window, "jobState")->text();
    QVERIFY2(state.contains(QLatin1String("cannot be built yet")), qPrintable(state));
}

void tst_JobFiles::whatIsNoJobIsToldInTheBanner()
{
    MainWindow window;
    window.show();
    drop(window, path("letter.txt"));
    const auto* const banner = find<QLabel>(window, "bannerText");
    QTRY_VERIFY(banner->isVisible());
    QCOMPARE(banner->text(),
             path("letter.txt") + QStringLiteral(" is neither a job, which ends in .json, nor an APK."));
}

void tst_JobFiles::unsavedEditsAreAskedAbout_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("mayLeave");
    QTest::addColumn<bool>("isSaved");
    QTest::newRow("save") << QStringLiteral("&Save") << true << true;
    QTest::newRow("drop") << QStringLiteral("&Drop the edits") << true << false;
    QTest::newRow("stay") << QStringLiteral("&Go on editing") << false << false;
}

void tst_JobFiles::unsavedEditsAreAskedAbout()
{
    QFETCH(const QString, answer);
    const QString job = makeSample();
    QWidget window;
    JobDocument document;
    JobFiles files(document, &window);
    files.open(job);
    QVERIFY2(!document.isOpen(), "the window waits for the file");
    QTRY_VERIFY(document.isOpen());
    bool hasLeft = false;
    const std::function<void()> leave = [&] { hasLeft = files.mayLeave(leave); };
    leave();
    QVERIFY2(hasLeft, "there was nothing to ask");
    document.setName(0, QStringLiteral("another name"));
    const Person person([answer](QWidget* dialog) { Person::press(dialog, answer); });
    leave();
    QVERIFY(person.wasAsked());
    QTRY_VERIFY(!document.isSaving());
    QTEST(hasLeft, "mayLeave");
    QFile file(job);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QTEST(file.readAll().contains("another name"), "isSaved");
}

void tst_JobFiles::latestJobIsOpened()
{
    const QString job = makeSample();
    const QString other = path("sample/other.json");
    QVERIFY(QFile::copy(job, other));
    QWidget window;
    JobDocument document;
    JobFiles files(document, &window);
    const QSignalSpy opened(&document, &JobDocument::opened);
    files.open(job);
    files.open(other);
    QTRY_COMPARE(document.path(), other);
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
    QCOMPARE(document.path(), other);
    QCOMPARE(opened.size(), 1);
}

void tst_JobFiles::editMenuNamesWhatIsUndone()
{
    const QString job = makeSample();
    QMainWindow window;
    JobDocument document;
    JobFiles files(document, &window);
    JobMenus menus(document, files, &window);
    menus.setTexts();
    files.open(job);
    QTRY_VERIFY(document.isOpen());
    auto* const undo = window.findChild<QAction*>(QStringLiteral("undo"));
    auto* const redo = window.findChild<QAction*>(QStringLiteral("redo"));
    auto* const save = window.findChild<QAction*>(QStringLiteral("save"));
    QVERIFY(!undo->isEnabled() && !redo->isEnabled() && !save->isEnabled());
    const QString before = document.nameOf(0);
    document.setName(0, QStringLiteral("another name"));
    QCOMPARE(undo->text(), QStringLiteral("&Undo: ") + document.undoStack()->undoText());
    QVERIFY(!document.undoStack()->undoText().isEmpty());
    QVERIFY(undo->isEnabled() && save->isEnabled());
    undo->trigger();
    QCOMPARE(document.nameOf(0), before);
    QCOMPARE(undo->text(), QStringLiteral("&Undo"));
    QVERIFY(!undo->isEnabled() && redo->isEnabled() && !save->isEnabled());
}

QTEST_MAIN(tst_JobFiles)
#include "tst_jobfiles.moc"
