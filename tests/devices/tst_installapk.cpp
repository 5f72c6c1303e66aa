// SPDX-License-Identifier: MIT
#include "installfixture.h"
#include "runroot.h"

#include <QMetaMethod>
#include <QTranslator>

namespace {

// Answers every text of the class's context with the text in brackets.
class BracketTranslator : public QTranslator {
public:
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char* /*comment*/,
                      int /*n*/) const override
    {
        const bool ours = qstrcmp(context, "CInstallApk") == 0;
        return ours ? QStringLiteral("[%1]").arg(QString::fromUtf8(source)) : QString();
    }
};

} // namespace

Q_DECLARE_METATYPE(QVector<QVariantList>)

class tst_InstallApk : public InstallFixture {
    Q_OBJECT

private Q_SLOTS:
    void metaObjectListsSignalsAndSlotsInOrder();
    void errorKeyMayBeLeftOut();
    void instanceIsOneForAll();
    void devicesAreAskedFromAdb();
    void deviceListIsEmptyWithoutAdb();
    void failingToolIsReadAllTheSame();
    void packageNameIsAskedFromAapt_data();
    void packageNameIsAskedFromAapt();
    void missingFileIsReportedAlone();
    void outcomeIsReported_data();
    void outcomeIsReported();
    void textsGoThroughTranslation();
    void onlyDeviceIsNotNamed();
    void chosenDeviceIsNamedInBothSteps();
    void chosenDeviceIsNamedInUninstall();
    void serialIsSplitAtBlanksUnlessQuoted();
    void emptyChoiceIsReported();
    void unaskedAnswerContinuesTheLastTask();
    void noticeOfSeveralDevicesKeepsTheirOrder();
    void emptyPackageNameIsNotChecked();
    void pathReachesAdbWhole_data();
    void pathReachesAdbWhole();
    void packageNameIsReadAfreshEachTime();
};

void tst_InstallApk::metaObjectListsSignalsAndSlotsInOrder()
{
    const QMetaObject& meta = CInstallApk::staticMetaObject;
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    const QStringList expected{
        QStringLiteral("signal onResult(bool,QString,QString) bSuccess,information,errorKey"),
        QStringLiteral("signal onResult(bool,QString) bSuccess,information cloned"),
        QStringLiteral("signal onGetMulitDevices(bool,QStringList) isInstall,lsDevice"),
        QStringLiteral("slot onSelectDeviceFinish(QString) str"),
        QStringLiteral("slot onInstallFinish(int,QProcess::ExitStatus) exitCode,exitStatus"),
        QStringLiteral("slot onUnInstallFinish(int,QProcess::ExitStatus) exitCode,exitStatus"),
        QStringLiteral("slot onInstallReplaceFinish(int,QProcess::ExitStatus) exitCode,exitStatus"),
    };
    QStringList found;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QString line =
            method.methodType() == QMetaMethod::Signal ? QStringLiteral("signal ") : QStringLiteral("slot ");
        line += QString::fromLatin1(method.methodSignature()) + QLatin1Char(' ')
            + QString::fromLatin1(method.parameterNames().join(','));
        if ((method.attributes() & QMetaMethod::Cloned) != 0)
            line += QStringLiteral(" cloned");
        QCOMPARE(method.access(), QMetaMethod::Public);
        found.append(line);
    }
    QCOMPARE(found, expected);
}

void tst_InstallApk::errorKeyMayBeLeftOut()
{
    Flow flow;
    const QSignalSpy two(&flow, SIGNAL(onResult(bool, QString)));
    const QSignalSpy three(&flow, &CInstallApk::onResult);
    Q_EMIT flow.onResult(true, QStringLiteral("text"));
    QCOMPARE(two.count(), 1);
    QCOMPARE(two.first(), QVariantList({true, QStringLiteral("text")}));
    QCOMPARE(three.first(), report(true, "text"));
}

void tst_InstallApk::instanceIsOneForAll()
{
    CInstallApk* const first = CInstallApk::getInstance();
    QCOMPARE(CInstallApk::getInstance(), first);
    QVERIFY(first->parent() == nullptr);
    QCOMPARE(first->thread(), QThread::currentThread());
}

void tst_InstallApk::devicesAreAskedFromAdb()
{
    ScriptedTools::attach({QStringLiteral("emulator-5554"), QStringLiteral("0123\tunauthorized"),
                           QStringLiteral("4567\toffline"), QStringLiteral("a device:1"),
                           QStringLiteral("::1")});
    QCOMPARE(
        CInstallApk::getDeviceLs(),
        QStringList({QStringLiteral("emulator-5554"), QStringLiteral("a device:1"), QStringLiteral("::1")}));
    QCOMPARE(ScriptedTools::calls(), QStringList(QStringLiteral("adb <devices>")));
}

void tst_InstallApk::deviceListIsEmptyWithoutAdb()
{
    QVERIFY(QFile::remove(RunRoot::path() + QStringLiteral("/tool/mac/adb")));
    QVERIFY(QFile::remove(RunRoot::path() + QStringLiteral("/tool/mac/aapt")));
    QCOMPARE(CInstallApk::getDeviceLs(), QStringList());
    QCOMPARE(CInstallApk::getApkPackageName(m_apk), QString());
}

void tst_InstallApk::failingToolIsReadAllTheSame()
{
    ScriptedTools::answer(QStringLiteral("devices"), R"(printf 'List\nab\tdevice\n'; echo x >&2; exit 1)");
    ScriptedTools::answer(QStringLiteral("d"), "echo \"package: name='a.b'\"; exit 1");
    QCOMPARE(CInstallApk::getDeviceLs(), QStringList(QStringLiteral("ab")));
    QCOMPARE(CInstallApk::getApkPackageName(m_apk), QStringLiteral("a.b"));
    ScriptedTools::answer(QStringLiteral("devices"), R"(printf 'List\nab\tdevice\n' >&2)");
    ScriptedTools::answer(QStringLiteral("d"), "echo \"package: name='a.b'\" >&2");
    QCOMPARE(CInstallApk::getDeviceLs(), QStringList());
    QCOMPARE(CInstallApk::getApkPackageName(m_apk), QString());
}

void tst_InstallApk::packageNameIsAskedFromAapt_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("call");
    const auto row = [](const char* name, const char* path, const char* words) {
        QTest::newRow(name) << QString::fromUtf8(path)
                            << QStringLiteral("aapt <d><badging>") + QString::fromUtf8(words);
    };
    row("plain", "/a/b.apk", "</a/b.apk>");
    row("blanks", "/a  b/c d.apk", "</a  b/c d.apk>");
    row("beyond ASCII", "/ä/游戏.apk", "</ä/游戏.apk>");
    row("leading dash", "-a.apk", "<-a.apk>");
    row("percent sign", "/a%1%20b.apk", "</a%1%20b.apk>");
    row("shell's own characters", "/a;b$(c)'d'&.apk", "</a;b$(c)'d'&.apk>");
    row("backslash", "/a\\b.apk", "</a\\b.apk>");
    row("line break", "/a\nb.apk", "</a\nb.apk>");
    row("quotation mark is not quoted", "/a\" b.apk", "</a><b.apk>");
    row("empty", "", "");
}

void tst_InstallApk::packageNameIsAskedFromAapt()
{
    QFETCH(const QString, path);
    QFETCH(const QString, call);
    QCOMPARE(CInstallApk::getApkPackageName(path), QStringLiteral("org.example.game"));
    QCOMPARE(ScriptedTools::calls(), QStringList(call));
}

void tst_InstallApk::missingFileIsReportedAlone()
{
    Flow flow;
    QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(m_apk, true);
    QCOMPARE(results.takeFirst(), report(false, "Device unavailable!"));

    flow.startTask(m_folder->filePath(QStringLiteral("other.apk")), true);
    QCOMPARE(results.count(), 1);
    QCOMPARE(results.first(), report(false, "File not found!"));
    QCOMPARE(ScriptedTools::calls(), QStringList(QStringLiteral("adb <devices>")));

    // No member has changed: the first file is still the task's.
    ScriptedTools::forgetCalls();
    flow.onSelectDeviceFinish(QStringLiteral("s"));
    TRY_COMPARE(results.count(), 2);
    QCOMPARE(ScriptedTools::calls(), installCalls(m_apk, QStringLiteral("<-s><s>")).mid(1));
}

void tst_InstallApk::outcomeIsReported_data()
{
    QTest::addColumn<bool>("install");
    QTest::addColumn<QByteArray>("removal");
    QTest::addColumn<QByteArray>("installation");
    QTest::addColumn<QVector<QVariantList>>("reports");
    const auto install = [](const char* name, const QByteArray& removal, const QByteArray& installation,
                            const QVector<QVariantList>& reports) {
        QTest::newRow(name) << true << removal << installation << reports;
    };
    const auto uninstall = [](const char* name, const QByteArray& removal, const QVariantList& outcome) {
        QTest::newRow(name) << false << removal << QByteArray() << QVector<QVariantList>{outcome};
    };
    const QVariantList complete = report(true, "Installation is complete!");
    const QByteArray success = "echo Success";

    install("installed", success, "echo P; echo Success", {complete});
    install("installed, failing exit code", success, "echo P; echo Success; exit 1", {complete});
    install("installed, carriage returns", success, R"(printf 'P\r\nSuccess\r\n')", {complete});
    install("installed, no line break", success, "printf Success", {complete});
    install("removal failed", "echo 'Failure [DELETE_FAILED_INTERNAL_ERROR]'; exit 1", "echo P; echo Success",
            {complete});
    install("removal crashed", "echo 'out'; printf 'no way' >&2; kill -9 $$", "echo P; echo Success",
            {report(false, "no way")});
    install("removal crashed in silence", "kill -9 $$", "echo P; echo Success", {report(false, "")});
    install("refused", success, "echo P; echo 'Failure [INSTALL_FAILED_INVALID_APK]'; exit 1",
            {report(false, "Installation failed!", "INSTALL_FAILED_INVALID_APK")});
    install("refused, exit code of success", success, "echo P; echo 'Failure [INSTALL_FAILED_OLDER_SDK]'",
            {report(false, "Installation failed!", "INSTALL_FAILED_OLDER_SDK")});
    install("refused without a code", success, "echo P; echo 'Error: no room'; exit 1", {});
    install("refused on the error stream", success, "echo P; echo 'Failure [X]' >&2; exit 1", {});
    install("code in the first line", success, "echo 'Failure [X]'", {});
    install("install crashed", success, "echo P; echo Success; kill -9 $$", {});
    install("install crashed with a code", success, "echo P; echo 'Failure [X]'; kill -9 $$",
            {report(false, "Installation failed!", "X")});
    install("install printed nothing", success, "exit 0", {});

    uninstall("uninstalled", success, report(true, "Uninstall successful!"));
    uninstall("nothing printed", "exit 1", report(true, "Uninstall successful!"));
    uninstall("failure on the error stream", "echo Failure >&2; exit 1",
              report(true, "Uninstall successful!"));
    uninstall("absent package", "echo 'Failure [DELETE_FAILED_INTERNAL_ERROR]'",
              report(false, "Uninstallation failed (app may not exist)!"));
    uninstall("uninstall crashed", "echo Failure; printf 'gone \\303\\244' >&2; kill -9 $$",
              report(false, "gone \303\244"));
}

void tst_InstallApk::outcomeIsReported()
{
    QFETCH(const bool, install);
    QFETCH(const QByteArray, removal);
    QFETCH(const QByteArray, installation);
    QFETCH(const QVector<QVariantList>, reports);
    ScriptedTools::attach({QStringLiteral("emulator-5554")});
    ScriptedTools::answer(QStringLiteral("uninstall"), removal);
    ScriptedTools::answer(QStringLiteral("install"), installation);

    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    const QSignalSpy choices(&flow, &CInstallApk::onGetMulitDevices);
    flow.startTask(m_apk, install);
    QCOMPARE(results.count(), 0);
    if (!reports.isEmpty()) {
        TRY_COMPARE(results.count(), reports.size());
        QCOMPARE(results.last(), reports.last());
    } else {
        TRY_COMPARE(ScriptedTools::calls().size(), 4);
    }
    makeIdle(flow, results);
    QCOMPARE(results.count(), reports.size() + 1);
    QCOMPARE(choices.count(), 0);
}

void tst_InstallApk::textsGoThroughTranslation()
{
    BracketTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(m_folder->filePath(QStringLiteral("other.apk")), true);
    flow.startTask(m_apk, true);
    flow.onSelectDeviceFinish({});
    ScriptedTools::attach({QStringLiteral("ab")});
    flow.startTask(m_apk, true);
    TRY_COMPARE(results.count(), 4);
    ScriptedTools::answer(QStringLiteral("uninstall"), "kill -9 $$");
    flow.UnInstall({});
    TRY_COMPARE(results.count(), 5);
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(results.at(0), report(false, "[File not found!]", "[]"));
    QCOMPARE(results.at(1), report(false, "[Device unavailable!]", "[]"));
    QCOMPARE(results.at(2), report(false, "[Please select devices first!]", "[]"));
    QCOMPARE(results.at(3), report(true, "[Installation is complete!]", "[]"));
    QCOMPARE(results.at(4), report(false, "", "[]"));
}

void tst_InstallApk::onlyDeviceIsNotNamed()
{
    ScriptedTools::attach({QStringLiteral("emulator-5554"), QStringLiteral("0123\toffline")});
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(m_apk, true);
    TRY_COMPARE(results.count(), 1);
    QCOMPARE(ScriptedTools::calls(), installCalls(m_apk));

    ScriptedTools::forgetCalls();
    flow.startTask(m_apk, false);
    TRY_COMPARE(results.count(), 2);
    QCOMPARE(ScriptedTools::calls(), installCalls(m_apk).mid(0, 3));
}

void tst_InstallApk::chosenDeviceIsNamedInBothSteps()
{
    ScriptedTools::attach({QStringLiteral("emulator-5554"), QStringLiteral("10.0.0.1:5555")});
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    const QSignalSpy choices(&flow, &CInstallApk::onGetMulitDevices);
    flow.startTask(m_apk, true);
    QCOMPARE(choices.count(), 1);
    QCOMPARE(choices.first().first().toBool(), true);
    flow.onSelectDeviceFinish(QStringLiteral("10.0.0.1:5555"));
    TRY_COMPARE(results.count(), 1);
    QCOMPARE(ScriptedTools::calls(), installCalls(m_apk, QStringLiteral("<-s><10.0.0.1:5555>")));
}

void tst_InstallApk::chosenDeviceIsNamedInUninstall()
{
    ScriptedTools::attach({QStringLiteral("a"), QStringLiteral("b")});
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    const QSignalSpy choices(&flow, &CInstallApk::onGetMulitDevices);
    flow.startTask(m_apk, false);
    QCOMPARE(choices.count(), 1);
    QCOMPARE(choices.first().first().toBool(), false);
    flow.onSelectDeviceFinish(QStringLiteral("b"));
    TRY_COMPARE(results.count(), 1);
    QCOMPARE(ScriptedTools::calls(), installCalls(m_apk, QStringLiteral("<-s><b>")).mid(0, 3));
}

void tst_InstallApk::serialIsSplitAtBlanksUnlessQuoted()
{
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.UnInstall(QStringLiteral("my phone"));
    TRY_VERIFY(!ScriptedTools::calls().filter(QStringLiteral("adb")).isEmpty());
    QCOMPARE(ScriptedTools::calls().last(),
             QStringLiteral("adb <-s><my><phone><uninstall><org.example.game>"));
    TRY_COMPARE(results.count(), 1);
    flow.UnInstall(QStringLiteral("\"my phone\""));
    TRY_COMPARE(results.count(), 2);
    QCOMPARE(ScriptedTools::calls().last(),
             QStringLiteral("adb <-s><my phone><uninstall><org.example.game>"));
}

void tst_InstallApk::emptyChoiceIsReported()
{
    Flow flow;
    QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.onSelectDeviceFinish(QStringLiteral(""));
    QCOMPARE(results.takeFirst(), report(false, "Please select devices first!"));
    flow.onSelectDeviceFinish(QString());
    QCOMPARE(results.takeFirst(), report(false, "Please select devices first!"));
    QCOMPARE(ScriptedTools::calls(), QStringList());
}

void tst_InstallApk::unaskedAnswerContinuesTheLastTask()
{
    ScriptedTools::attach({QStringLiteral("ab")});
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(m_apk, true);
    TRY_COMPARE(results.count(), 1);
    ScriptedTools::forgetCalls();
    flow.onSelectDeviceFinish(QStringLiteral("x"));
    TRY_COMPARE(results.count(), 2);
    QCOMPARE(ScriptedTools::calls(), installCalls(m_apk, QStringLiteral("<-s><x>")).mid(1));
}

void tst_InstallApk::noticeOfSeveralDevicesKeepsTheirOrder()
{
    const QStringList serials{QStringLiteral("z"), QStringLiteral("a"), QStringLiteral("m n")};
    ScriptedTools::attach(serials);
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    const QSignalSpy choices(&flow, &CInstallApk::onGetMulitDevices);
    flow.startTask(m_apk, true);
    QCOMPARE(choices.count(), 1);
    QCOMPARE(choices.first().last().toStringList(), serials);
    QCOMPARE(results.count(), 0);
    QCOMPARE(ScriptedTools::calls(), QStringList(QStringLiteral("adb <devices>")));
}

void tst_InstallApk::emptyPackageNameIsNotChecked()
{
    ScriptedTools::attach({QStringLiteral("ab")});
    ScriptedTools::answer(QStringLiteral("d"), "exit 1");
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    flow.startTask(m_apk, true);
    TRY_COMPARE(results.count(), 1);
    QCOMPARE(
        ScriptedTools::calls().mid(2),
        QStringList({QStringLiteral("adb <uninstall>"), QStringLiteral("adb <install><-r><%1>").arg(m_apk)}));
}

void tst_InstallApk::pathReachesAdbWhole_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("blanks") << QStringLiteral("a  b c.apk");
    QTest::newRow("beyond ASCII") << QString::fromUtf8("游戏 ü.apk");
    QTest::newRow("leading dash") << QStringLiteral("-r.apk");
    QTest::newRow("shell's own characters") << QStringLiteral("a;$(b)`c`'d'&*.apk");
    QTest::newRow("brackets and words") << QStringLiteral("Success [1] device.apk");
}

void tst_InstallApk::pathReachesAdbWhole()
{
    QFETCH(const QString, name);
    ScriptedTools::attach({QStringLiteral("ab")});
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_folder->path()));
    QVERIFY(QFile(name).open(QIODevice::WriteOnly));
    for (const QString& path : {name, m_folder->filePath(name)}) {
        ScriptedTools::forgetCalls();
        Flow flow;
        const QSignalSpy results(&flow, &CInstallApk::onResult);
        flow.startTask(path, true);
        TRY_COMPARE(results.count(), 1);
        QCOMPARE(ScriptedTools::calls(), installCalls(path));
    }
    QVERIFY(QDir::setCurrent(before));
}

void tst_InstallApk::packageNameIsReadAfreshEachTime()
{
    Flow flow;
    const QSignalSpy results(&flow, &CInstallApk::onResult);
    for (const char* name : {"a.b", "c.d"}) {
        ScriptedTools::answer(QStringLiteral("d"), QByteArray("echo \"package: name='") + name + "'\"");
        const int before = results.count();
        flow.UnInstall({});
        TRY_COMPARE(results.count(), before + 1);
        QCOMPARE(ScriptedTools::calls().last(),
                 QStringLiteral("adb <uninstall><%1>").arg(QLatin1String(name)));
    }
}

QTEST_GUILESS_MAIN(tst_InstallApk)
#include "tst_installapk.moc"
