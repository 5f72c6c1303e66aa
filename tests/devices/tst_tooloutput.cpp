// SPDX-License-Identifier: MIT
#include "devices/tooloutput.h"

#include <QtTest>

using ToolOutput::InstallOutcome;

Q_DECLARE_METATYPE(ToolOutput::InstallOutcome::Kind)

class tst_ToolOutput : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readyDevicesAreListed_data();
    void readyDevicesAreListed();
    void longListIsReadWhole();
    void packageNameIsRead_data();
    void packageNameIsRead();
    void installOutcomeIsRead_data();
    void installOutcomeIsRead();
    void uninstallFailsByItsWordAlone_data();
    void uninstallFailsByItsWordAlone();
    void gistIsOneLineOfBoundedLength_data();
    void gistIsOneLineOfBoundedLength();
};

void tst_ToolOutput::readyDevicesAreListed_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QStringList>("serials");
    const QString heading = QStringLiteral("List of devices attached\n");
    const auto row = [&](const char* name, const QString& output, const QStringList& serials = {}) {
        QTest::newRow(name) << output << serials;
    };

    row("nothing at all", {});
    row("no device", heading + QLatin1Char('\n'));
    row("one", heading + QStringLiteral("emulator-5554\tdevice\n\n"), {QStringLiteral("emulator-5554")});
    row("no line break at the end", heading + QStringLiteral("emulator-5554\tdevice"),
        {QStringLiteral("emulator-5554")});
    row("order is adb's", heading + QStringLiteral("b\tdevice\na\tdevice\n"),
        {QStringLiteral("b"), QStringLiteral("a")});
    row("unauthorized", heading + QStringLiteral("0123\tunauthorized\n"));
    row("offline", heading + QStringLiteral("0123\toffline\n"));
    row("further states",
        heading + QStringLiteral("1\trecovery\n2\tsideload\n3\tbootloader\n4\thost\n5\tno device\n"),
        {QStringLiteral("5\tno")});
    row("ready beside offline", heading + QStringLiteral("a\toffline\nb\tdevice\nc\tunauthorized\n"),
        {QStringLiteral("b")});
    row("carriage returns", QStringLiteral("List of devices attached\r\nemulator-5554\tdevice\r\n\r\n"),
        {QStringLiteral("emulator-5554")});
    row("daemon start-up lines",
        QStringLiteral("* daemon not running; starting now at tcp:5037\n* daemon started successfully\n")
            + heading + QStringLiteral("emulator-5554\tdevice\n"),
        {QStringLiteral("emulator-5554")});
    row("heading in the middle of a line",
        QStringLiteral("x\n") + QStringLiteral("List of devices attachedab\tdevice\n"),
        {QStringLiteral("ab")});
    row("heading glued to a device is the first part", QStringLiteral("List of devices attacheda\tdevice\n"));
    row("first line never counts", QStringLiteral("a\tdevice\nb\tdevice\n"), {QStringLiteral("b")});
    row("word device in the serial", heading + QStringLiteral("my-device-1\tdevice\n"),
        {QStringLiteral("my-device-1")});
    row("word device in an offline serial", heading + QStringLiteral("my-device-1\toffline\n"),
        {QStringLiteral("my")});
    row("network serial", heading + QStringLiteral("192.168.0.7:5555\tdevice\n"),
        {QStringLiteral("192.168.0.7:5555")});
    row("serial with blanks", heading + QStringLiteral("adb-0123 (2)._adb-tls-connect._tcp\tdevice\n"),
        {QStringLiteral("adb-0123 (2)._adb-tls-connect._tcp")});
    row("blank before the tab stays", heading + QStringLiteral("ab \tdevice\n"), {QStringLiteral("ab ")});
    row("a blank separates as well", heading + QStringLiteral("ab device\n"), {QStringLiteral("ab")});
    row("state alone", heading + QStringLiteral("device\n"));
    row("empty serial", heading + QStringLiteral("\tdevice\n"));
    row("upper case is another word", heading + QStringLiteral("ab\tDEVICE\n"));
    row("beyond ASCII", heading + QString::fromUtf8("héé-手机\tdevice\n"), {QString::fromUtf8("héé-手机")});
    row("explanation that holds the word",
        heading
            + QStringLiteral("0123\tno permissions; see [http://developer.android.com/tools/device.html]\n"),
        {QStringLiteral("0123\tno permissions; see [http://developer.android.com/tools")});
}

void tst_ToolOutput::readyDevicesAreListed()
{
    QFETCH(const QString, output);
    QFETCH(const QStringList, serials);
    QCOMPARE(ToolOutput::readySerials(output), serials);
}

void tst_ToolOutput::longListIsReadWhole()
{
    constexpr int count = 20000;
    QStringList lines{QStringLiteral("List of devices attached")};
    for (int i = 0; i < count; ++i)
        lines.append(QString::number(i) + QStringLiteral("\tdevice"));
    const QString output = lines.join(QLatin1Char('\n'));
    const QStringList serials = ToolOutput::readySerials(output);
    QCOMPARE(serials.size(), count);
    QCOMPARE(serials.last(), QString::number(count - 1));
}

void tst_ToolOutput::packageNameIsRead_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("name");
    const auto row = [](const char* name, const char* output, const char* package) {
        QTest::newRow(name) << QString::fromUtf8(output) << QString::fromUtf8(package);
    };

    row("first line", "package: name='com.example.game' versionCode='1' versionName='1.0'\n",
        "com.example.game");
    row("behind other lines", "W/zipro: odd\npackage: name='a.b'\nlaunchable-activity: name='a.b.Main'\n",
        "a.b");
    row("first occurrence", "package: name='a.b'\npackage: name='c.d'\n", "a.b");
    row("carriage return", "package: name='a.b' versionCode=''\r\n", "a.b");
    row("empty name", "package: name='' versionCode=''\n", "");
    row("none", "ERROR: dump failed because no AndroidManifest.xml found\n", "");
    row("nothing at all", "", "");
    row("upper case is another word", "Package: name='a.b'\n", "");
    row("no closing quotation mark", "package: name='a.b\nrest", "a.b\nrest");
    row("cut behind the equals sign", "package: name=", "");
    row("cut behind the mark", "package: name", "");
    row("cut behind the opening quotation mark", "package: name='", "");
    row("two characters are skipped whatever they are", "package: name: a.b'", "a.b");
}

void tst_ToolOutput::packageNameIsRead()
{
    QFETCH(const QString, output);
    QTEST(ToolOutput::packageName(output), "name");
}

void tst_ToolOutput::installOutcomeIsRead_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<bool>("crashed");
    QTest::addColumn<InstallOutcome::Kind>("kind");
    QTest::addColumn<QString>("code");
    const auto row = [](const char* name, const char* output, bool crashed, InstallOutcome::Kind kind,
                        const char* code = "") {
        QTest::newRow(name) << QString::fromUtf8(output) << crashed << kind << QString::fromUtf8(code);
    };
    const auto installed = InstallOutcome::Installed;
    const auto refused = InstallOutcome::Refused;
    const auto unclear = InstallOutcome::Unclear;

    row("streamed", "Performing Streamed Install\nSuccess\n", false, installed);
    row("carriage returns", "Performing Streamed Install\r\nSuccess\r\n", false, installed);
    row("pushed", "a.apk: 1 file pushed\n\tpkg: /data/local/tmp/a.apk\nSuccess\n", false, installed);
    row("success by crash", "Performing Streamed Install\nSuccess\n", true, unclear);
    row("code by crash", "Performing\nSuccess [X]\n", true, refused, "X");
    row("success wins over a code", "Performing\nFailure [X]\nSuccess\n", false, installed);
    row("success in the first line only", "Success\nmore\n", false, unclear);
    row("one line that ends in success", "Success", false, installed);
    row("one line with success in it", "Success.", false, unclear);
    row("one line with a code", "Failure [INSTALL_FAILED_INVALID_APK]", false, unclear);
    row("line break first", "\nSuccess", false, installed);
    row("line breaks around success", "\nSuccess\n", false, installed);
    row("line breaks around a code", "\nFailure [X]\n", false, refused, "X");
    row("second line has a code", "Performing\nFailure [INSTALL_FAILED_INVALID_APK]\n", false, refused,
        "INSTALL_FAILED_INVALID_APK");
    row("code with explanation", "P\nFailure [INSTALL_FAILED_OLDER_SDK: needs 99]\n", false, refused,
        "INSTALL_FAILED_OLDER_SDK: needs 99");
    row("brackets in the first line do not count", "[ 5%] a.apk\nFailure [X]\n", false, refused, "X");
    row("first pair counts", "P\n\tpkg: a[1].apk\nFailure [X]\n", false, refused, "1");
    row("up to the first closing bracket", "P\nFailure [X [y] z]\n", false, refused, "X [y");
    row("over several lines", "P\nFailure [X\nY]\n", false, refused, "X\nY");
    row("empty code", "P\nFailure []\n", false, refused, "");
    row("closing bracket first", "P\n] Failure [X\n", false, unclear);
    row("no code", "P\nFailure\n", false, unclear);
    row("no closing bracket", "P\nFailure [X\n", false, unclear);
    row("lower case is another word", "P\nsuccess\n", false, unclear);
    row("word in a path", "P\n\tpkg: Success.apk\nError: unknown\n", false, installed);
    row("nothing at all", "", false, unclear);
    row("nothing but a line break", "\n", false, unclear);
}

void tst_ToolOutput::installOutcomeIsRead()
{
    QFETCH(const QString, output);
    QFETCH(const bool, crashed);
    const InstallOutcome outcome = ToolOutput::installOutcome(output, crashed);
    QTEST(outcome.kind, "kind");
    QTEST(outcome.code, "code");
}

void tst_ToolOutput::uninstallFailsByItsWordAlone_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<bool>("failed");
    QTest::newRow("success") << QStringLiteral("Success\n") << false;
    QTest::newRow("nothing at all") << QString() << false;
    QTest::newRow("failure") << QStringLiteral("Failure\n") << true;
    QTest::newRow("failure with a code")
        << QStringLiteral("Failure [DELETE_FAILED_INTERNAL_ERROR]\r\n") << true;
    QTest::newRow("one line is enough") << QStringLiteral("Failure") << true;
    QTest::newRow("within a word") << QStringLiteral("xFailurex") << true;
    QTest::newRow("lower case is another word") << QStringLiteral("failure\n") << false;
    QTest::newRow("another error") << QStringLiteral("Error: null\n") << false;
}

void tst_ToolOutput::uninstallFailsByItsWordAlone()
{
    QFETCH(const QString, output);
    QTEST(ToolOutput::uninstallFailed(output), "failed");
}

void tst_ToolOutput::gistIsOneLineOfBoundedLength_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("gist");
    const auto letters = [](int count) { return QString(count, QLatin1Char('x')); };
    const QString nothing = QStringLiteral("it said nothing");
    QTest::newRow("nothing") << QString() << nothing;
    QTest::newRow("blanks") << QStringLiteral(" \r\n\t") << nothing;
    QTest::newRow("several lines") << QStringLiteral("\none\n\n two \n") << QStringLiteral("one two");
    QTest::newRow("longest") << letters(300) << letters(300);
    QTest::newRow("longer") << letters(301) << letters(300) + QStringLiteral("...");
    // A flood is not looked through.
    QTest::newRow("text behind many blanks") << QString(2999, QLatin1Char(' ')) + letters(9) << letters(1);
    QTest::newRow("text behind too many blanks") << QString(3000, QLatin1Char(' ')) + letters(9) << nothing;
}

void tst_ToolOutput::gistIsOneLineOfBoundedLength()
{
    QFETCH(const QString, output);
    QTEST(ToolOutput::gist(output), "gist");
}

QTEST_APPLESS_MAIN(tst_ToolOutput)
#include "tst_tooloutput.moc"
