// SPDX-License-Identifier: MIT
#include "buildscene.h"
#include "tickwatch.h"
#include "window/build/buildmodel.h"
#include "window/build/buildpage.h"
#include "window/build/buildwords.h"
#include "window/build/reportmodel.h"
#include "window/channels/jobdocument.h"

#include <QtTest>

#include <QAbstractButton>
#include <QCheckBox>
#include <QDesktopServices>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>

// Generous: other work may load the machine.
#define TRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, 120000)

// The page with the program of the build tree.
class tst_BuildPage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void pageWithoutAJobSaysWhatToDo();
    void brokenChannelSaysWhyAndTheReportIsRead();
    void chosenChannelsAloneAreBuilt();
    void editsAreSavedBeforeTheBuild();
    void stopEndsTheRunBehindItsStep();
    void mistakesOfTheJobAreTold();
    void missingProgramIsTold();
    void channelsChosenElsewhereAreBuiltByOneButton();
    void windowTicksDuringABuild_data();
    void windowTicksDuringABuild();
    void timeLeft_data();
    void timeLeft();

public Q_SLOTS:
    void takeUrl(const QUrl& url) { m_url = url; }

private:
    template <typename T> T* part(const char* name) const
    {
        return m_page->findChild<T*>(QLatin1String(name));
    }
    void openJob();
    void setChannels(int count);
    void click(const char* button) const { QTest::mouseClick(part<QAbstractButton>(button), Qt::LeftButton); }
    void build();
    QString cell(int row, int column) const;
    QString outcome() const { return part<QLabel>("buildOutcome")->text(); }
    bool isDone() const { return part<QLabel>("buildOutcome")->isVisible(); }

    QTemporaryDir m_settings;
    std::unique_ptr<BuildScene> m_scene;
    std::unique_ptr<JobDocument> m_document;
    std::unique_ptr<BuildPage> m_page;
    QUrl m_url;
};

void tst_BuildPage::initTestCase()
{
    QVERIFY(m_settings.isValid());
    QCoreApplication::setOrganizationName(QStringLiteral("quenzo"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_settings.path());
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "takeUrl");
}

void tst_BuildPage::init()
{
    const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/quenzo");
    QFile::remove(program);
    QVERIFY(QFile::link(QStringLiteral(QUENZO_PROGRAM), program));
    m_scene = std::make_unique<BuildScene>();
    QVERIFY(m_scene->isValid());
    m_document = std::make_unique<JobDocument>();
    m_page = std::make_unique<BuildPage>(*m_document);
    m_page->resize(900, 600);
    m_page->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page.get()));
}

void tst_BuildPage::cleanup()
{
    m_page.reset();
    m_document.reset();
}

void tst_BuildPage::openJob()
{
    QVERIFY(m_scene->writeJob());
    QString fault;
    QVERIFY2(m_document->open(m_scene->path(QStringLiteral("job.json")), fault), qPrintable(fault));
    TRY_VERIFY(part<QPushButton>("build")->isVisible());
}

// As many as wanted, that take little time each.
void tst_BuildPage::setChannels(int count)
{
    QJsonArray channels;
    for (int i = 0; i < count; ++i)
        channels.append(QJsonObject{{QStringLiteral("folder"), QStringLiteral("c%1").arg(i)}});
    m_scene->job.insert(QStringLiteral("channels"), channels);
    m_scene->job.remove(QStringLiteral("icons"));
}

void tst_BuildPage::build()
{
    click("build");
    TRY_VERIFY(isDone());
}

QString tst_BuildPage::cell(int row, int column) const
{
    const QAbstractItemModel* const model = part<QTableView>("buildChannels")->model();
    return model->index(row, column).data().toString();
}

void tst_BuildPage::pageWithoutAJobSaysWhatToDo()
{
    QVERIFY(part<QLabel>("nothingToBuild")->isVisible());
    QVERIFY2(part<QLabel>("nothingToBuild")->text().startsWith(QStringLiteral("No job is open. Open one")),
             qPrintable(part<QLabel>("nothingToBuild")->text()));
}

void tst_BuildPage::brokenChannelSaysWhyAndTheReportIsRead()
{
    QVERIFY(m_scene->write(QStringLiteral("own/assets/channel.json"), "{}")); // fails "meadow"
    openJob();
    QVERIFY(!part<QPushButton>("openReport")->isEnabled());
    build();
    QCOMPARE(outcome(),
             QStringLiteral("Failed: 1. Built: 2, unchanged: 0. Choose a failed channel to see why."));
    QCOMPARE(cell(0, BuildModel::ResultColumn), QStringLiteral("built"));
    QVERIFY2(cell(2, BuildModel::ResultColumn).startsWith(QStringLiteral("failed: ")),
             qPrintable(cell(2, BuildModel::ResultColumn)));
    auto* const table = part<QTableView>("buildChannels");
    const QModelIndex failed = table->model()->index(2, BuildModel::ResultColumn);
    table->scrollTo(failed);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(failed).center());
    QVERIFY2(
        part<QPlainTextEdit>("wholeMessage")->toPlainText().contains(QStringLiteral("assets/channel.json")),
        qPrintable(part<QPlainTextEdit>("wholeMessage")->toPlainText()));

    auto* const bar = part<QTabWidget>("buildTabs")->tabBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(1).center());
    QTest::keyClicks(part<QLineEdit>("messageFilter"), QStringLiteral("harbor"));
    const QAbstractItemModel* const messages = part<QTableView>("buildMessages")->model();
    QVERIFY(messages->rowCount() > 1);
    for (int row = 0; row < messages->rowCount(); ++row)
        QCOMPARE(messages->index(row, 0).data().toString(), QStringLiteral("harbor"));

    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(2).center());
    const QAbstractItemModel* const report = part<QTableView>("report")->model();
    TRY_VERIFY(report->rowCount() == 3);
    QCOMPARE(report->index(2, ReportModel::OutcomeColumn).data().toString(), QStringLiteral("failed"));
    QCOMPARE(report->index(0, ReportModel::PackageColumn).data().toString(),
             QStringLiteral("com.quenzo.skyharbour"));
    click("openReport");
    QCOMPARE(m_url, QUrl::fromLocalFile(m_scene->path(QStringLiteral("output/report.html"))));
}

void tst_BuildPage::chosenChannelsAloneAreBuilt()
{
    openJob();
    auto* const table = part<QTableView>("buildChannels");
    click("allChannels"); // none
    click("build");
    QCOMPARE(outcome(), QStringLiteral("Choose at least one channel."));
    table->setFocus();
    table->setCurrentIndex(table->model()->index(0, 0));
    QTest::keyClick(table, Qt::Key_Space);
    QCOMPARE(part<QCheckBox>("allChannels")->checkState(), Qt::PartiallyChecked);
    click("build");
    QVERIFY(!isDone());
    TRY_VERIFY(isDone());
    QCOMPARE(outcome(), QStringLiteral("Built: 1, unchanged: 0."));
    QVERIFY(QFile::exists(m_scene->path(QStringLiteral("output/plain/plain.apk"))));
    QVERIFY(!QFile::exists(m_scene->path(QStringLiteral("output/harbor"))));
    QCOMPARE(cell(1, BuildModel::ResultColumn), QString());
}

void tst_BuildPage::editsAreSavedBeforeTheBuild()
{
    setChannels(1);
    openJob();
    m_document->setName(0, QStringLiteral("Edited"));
    click("build");
    TRY_VERIFY(part<QMessageBox>("saveBeforeBuild"));
    QTest::keyClick(part<QMessageBox>("saveBeforeBuild"), Qt::Key_Escape);
    TRY_VERIFY(!part<QMessageBox>("saveBeforeBuild"));
    QVERIFY(part<QPushButton>("build")->isEnabled());
    click("build");
    TRY_VERIFY(part<QMessageBox>("saveBeforeBuild"));
    QTest::keyClick(part<QMessageBox>("saveBeforeBuild"), Qt::Key_Return);
    TRY_VERIFY(isDone());
    QVERIFY(!m_document->isModified());
    QVERIFY2(m_scene->read(QStringLiteral("output/report.json")).contains("Edited"), "the edit is not in it");
    click("build"); // the next one, by the same page
    QVERIFY(!isDone());
    TRY_VERIFY(isDone());
    QCOMPARE(outcome(), QStringLiteral("Built: 0, unchanged: 1."));
}

void tst_BuildPage::stopEndsTheRunBehindItsStep()
{
    setChannels(200);
    openJob();
    click("build");
    TRY_VERIFY(cell(1, BuildModel::ResultColumn) == QStringLiteral("built"));
    QCOMPARE(m_page->workAtHand(), QStringLiteral("The packages of Sky Harbour are being built."));
    click("stopBuild");
    QVERIFY(!part<QPushButton>("stopBuild")->isEnabled());
    QCOMPARE(part<QLabel>("buildTimeLeft")->text(), QStringLiteral("Stopping behind the step at hand"));
    TRY_VERIFY(isDone());
    QVERIFY2(outcome().startsWith(QStringLiteral("Stopped. Built: ")), qPrintable(outcome()));
    QCOMPARE(cell(199, BuildModel::ResultColumn), QStringLiteral("not reached"));
    QCOMPARE(m_page->workAtHand(), QString());
}

void tst_BuildPage::mistakesOfTheJobAreTold()
{
    m_scene->job.insert(QStringLiteral("base"), QStringLiteral("nowhere.apk"));
    openJob();
    build();
    QCOMPARE(outcome(), QStringLiteral("The build did not come to its end. The messages tell why."));
    const auto* const messages = part<QTableView>("buildMessages");
    QVERIFY(messages->isVisible());
    QVERIFY2(messages->model()->index(0, 1).data().toString().contains(QStringLiteral("/base")),
             qPrintable(messages->model()->index(0, 1).data().toString()));
}

void tst_BuildPage::missingProgramIsTold()
{
    openJob();
    QVERIFY(QFile::remove(QCoreApplication::applicationDirPath() + QStringLiteral("/quenzo")));
    build();
    QVERIFY2(outcome().startsWith(QStringLiteral("The program "))
                 && outcome().contains(QStringLiteral("Install it")),
             qPrintable(outcome()));
    QVERIFY(part<QPushButton>("build")->isEnabled());
}

void tst_BuildPage::windowTicksDuringABuild_data()
{
    QTest::addColumn<int>("channels");
    QTest::addColumn<bool>("imports");
    QTest::newRow("fifty channels") << 50 << false;
    QTest::newRow("an import for each of ten") << 10 << true;
}

void tst_BuildPage::windowTicksDuringABuild()
{
    QFETCH(const int, channels);
    QFETCH(const bool, imports);
    setChannels(channels);
    if (imports)
        m_scene->job.insert(QStringLiteral("defaults"),
                            QJsonObject{{QStringLiteral("sdks"), QJsonArray{QStringLiteral("pay")}}});
    openJob();
    const TickWatch watch;
    build();
    QCOMPARE(outcome(), QStringLiteral("Built: %1, unchanged: 0.").arg(channels));
    qInfo("%s", watch.figures().constData());
    QVERIFY2(watch.isWithin(), watch.figures());
    // A window that waited would not tick for each channel.
    QVERIFY2(watch.ticks() > channels, watch.figures());
}

void tst_BuildPage::channelsChosenElsewhereAreBuiltByOneButton()
{
    openJob();
    QVERIFY(!part<QPushButton>("buildChosen")->isEnabled());
    m_page->setChosen({1});
    QCOMPARE(part<QPushButton>("buildChosen")->text(), QStringLiteral("Build cho&sen: 1"));
    click("buildChosen");
    QVERIFY(!isDone());
    TRY_VERIFY(isDone());
    QCOMPARE(outcome(), QStringLiteral("Built: 1, unchanged: 0."));
    QVERIFY(QFile::exists(m_scene->path(QStringLiteral("output/harbor/harbor.apk"))));
    QCOMPARE(cell(0, BuildModel::ResultColumn), QString());
    QCOMPARE(part<QCheckBox>("allChannels")->checkState(), Qt::PartiallyChecked);
}

void tst_BuildPage::timeLeft_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << qint64(0) << QStringLiteral("about 1 s left");
    QTest::newRow("seconds") << qint64(59) << QStringLiteral("about 59 s left");
    QTest::newRow("minutes") << qint64(150) << QStringLiteral("about 3 min left");
}

void tst_BuildPage::timeLeft()
{
    QFETCH(const qint64, seconds);
    QTEST(BuildWords::timeLeft(seconds), "text");
}

QTEST_MAIN(tst_BuildPage)
#include "tst_buildpage.moc"
