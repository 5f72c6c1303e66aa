// SPDX-License-Identifier: MIT
#include "adbfixture.h"
#include "icons/iconset.h"
#include "person.h"
#include "window/build/buildmodel.h"
#include "window/build/reportmodel.h"
#include "window/channels/markpreview.h"
#include "windowscene.h"

#include <QComboBox>
#include <QCryptographicHash>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>

// A person's way through the whole window, from the sample to a game on a device, with mouse and keys.
class tst_Journey : public AdbFixture {
    Q_OBJECT

private Q_SLOTS:
    void fromTheSampleToTheDevice();

private:
    void makeSample();
    void dragTheMark();
    void buildAndWatch();
    void readTheReport();
    void installOn(const DeviceEmulator& device);
    void undoEverything();
    static QByteArray contentOf(const QString& path);

    QTemporaryDir m_home;
    QString m_job;
    QByteArray m_written; ///< the job as it was made
    std::unique_ptr<WindowScene> m_scene;
};

namespace {

constexpr int harbor = 1; // the sample's channel with a mark and no corner of its own

} // namespace

QByteArray tst_Journey::contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_Journey::makeSample()
{
    m_job = m_home.filePath(QStringLiteral("sample/job.json"));
    const Person person([this](QWidget* dialog) {
        auto* const field = dialog->findChild<QLineEdit*>(QStringLiteral("newJobFolder"));
        field->selectAll();
        QTest::keyClicks(field, QFileInfo(m_job).path());
        Person::press(dialog, QStringLiteral("&Make the job"));
    });
    m_scene->click("startSample");
    SCENE_TRY(m_scene->label("jobState").contains(QLatin1String("can be built")));
    m_written = contentOf(m_job);
}

void tst_Journey::dragTheMark()
{
    m_scene->goTo(QStringLiteral("Channels"));
    m_scene->clickCell("channels", harbor, 1);
    const auto* const preview = m_scene->part<MarkPreview>("markPreview");
    SCENE_TRY(!preview->markRect().isEmpty());
    QCOMPARE(m_scene->part<QComboBox>("corner")->currentText(), QStringLiteral("Right bottom"));
    const QPointF grip = preview->markRect().center();
    m_scene->drag(preview, grip, grip + preview->iconRect().topLeft() - preview->markRect().topLeft());
    QCOMPARE(m_scene->part<QComboBox>("corner")->currentText(), QStringLiteral("Left top"));
    QVERIFY(m_scene->window().isWindowModified());
}

void tst_Journey::buildAndWatch()
{
    m_scene->goTo(QStringLiteral("Build"));
    QCOMPARE(m_scene->part<QPushButton>("buildChosen")->text(), QStringLiteral("Build cho&sen: 1"));
    m_scene->click("build");
    SCENE_TRY(m_scene->part<QMessageBox>("saveBeforeBuild"));
    QTest::keyClick(m_scene->part<QMessageBox>("saveBeforeBuild"), Qt::Key_Return);
    SCENE_TRY(m_scene->cell("buildChannels", 0, BuildModel::ResultColumn) == QStringLiteral("built"));
    SCENE_TRY(m_scene->part<QLabel>("buildOutcome")->isVisible());
    const int count = m_scene->part<QTableView>("buildChannels")->model()->rowCount();
    QCOMPARE(m_scene->label("buildOutcome"), QStringLiteral("Built: %1, unchanged: 0.").arg(count));
    for (int row = 0; row < count; ++row)
        QCOMPARE(m_scene->cell("buildChannels", row, BuildModel::ResultColumn), QStringLiteral("built"));
    QVERIFY2(contentOf(m_job).contains(R"("corner": "left-top")"), "what is built is not what was dragged");
}

void tst_Journey::readTheReport()
{
    m_scene->clickTab("buildTabs", 2);
    const auto* const report = m_scene->part<QTableView>("report");
    SCENE_TRY(report->isVisible() && report->model()->rowCount() > harbor);
    QCOMPARE(m_scene->cell("report", harbor, ReportModel::OutcomeColumn), QStringLiteral("built"));
    QCOMPARE(m_scene->cell("report", harbor, ReportModel::PackageColumn),
             QStringLiteral("com.quenzo.skyharbour"));
}

void tst_Journey::installOn(const DeviceEmulator& device)
{
    m_scene->goTo(QStringLiteral("Devices"));
    m_scene->press(Qt::Key_F5);
    SCENE_TRY(m_scene->part<QTableView>("devices")->model()->rowCount() == 1);
    auto* const channel = m_scene->part<QComboBox>("jobPackage");
    for (int i = 0; i <= harbor; ++i)
        QTest::keyClick(channel, Qt::Key_Down);
    const QString apk = m_scene->part<QLineEdit>("apk")->text();
    QCOMPARE(apk, m_home.filePath(QStringLiteral("sample/output/harbor/harbor.apk")));
    m_scene->click("install");
    SCENE_TRY(m_scene->part<QMessageBox>("deviceQuestion"));
    QMessageBox* const question = m_scene->part<QMessageBox>("deviceQuestion");
    QVERIFY2(question->text().contains(QLatin1String("com.quenzo.skyharbour")), qPrintable(question->text()));
    Person::reach(question, QStringLiteral("Remove and &install"));
    SCENE_TRY(m_scene->label("deviceMessage")
              == device.serial() + QStringLiteral(": Installation is complete!"));
    QCOMPARE(device.receivedHash(), QCryptographicHash::hash(contentOf(apk), QCryptographicHash::Sha1));
}

void tst_Journey::undoEverything()
{
    m_scene->press(Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(m_scene->window().isWindowModified());
    m_scene->press(Qt::Key_S, Qt::ControlModifier);
    SCENE_TRY(!m_scene->window().isWindowModified());
    QCOMPARE(contentOf(m_job), m_written);
}

void tst_Journey::fromTheSampleToTheDevice()
{
    WindowScene::prepare(m_home);
    QVERIFY(WindowScene::linkProgram());
    useTool(true);
    const DeviceEmulator device(DeviceEmulator::Streaming);
    QVERIFY(m_adb->connectTo(device));
    m_scene = std::make_unique<WindowScene>();
    QCOMPARE(m_scene->show(), QString());
    for (void (tst_Journey::*const step)() : {&tst_Journey::makeSample, &tst_Journey::dragTheMark,
                                              &tst_Journey::buildAndWatch, &tst_Journey::readTheReport}) {
        (this->*step)();
        if (QTest::currentTestFailed())
            return;
    }
    installOn(device);
    if (!QTest::currentTestFailed())
        undoEverything();
    m_scene.reset();
    // Of the platform without a screen, and of one without a window manager.
    for (const QString& warning : m_log->takeWarnings())
        QVERIFY2(warning.contains(QStringLiteral("propagateSizeHints"))
                     || warning.contains(QStringLiteral("(SetInputFocus)")),
                 qPrintable(warning));
}

QTEST_MAIN(tst_Journey)
#include "tst_journey.moc"
