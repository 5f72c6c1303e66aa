// SPDX-License-Identifier: MIT
#include "devicefixture.h"
#include "terminal.h"

#include <QtTest>

namespace {

const char* const endOfInput = "\x04";

} // namespace

// What the host asks and shows on a terminal.
class tst_DeviceQuestions : public DeviceFixture {
    Q_OBJECT

private Q_SLOTS:
    void deviceIsChosenByNumberOnATerminal();
    void noChoiceChangesNothing();
    void installIsConfirmedOnATerminal();
    void refusedConfirmationChangesNothing();
    void yesIsNotAsked();
    void progressIsShownOnATerminal();
    void uninstallIsConfirmedOnATerminal();
    void progressKeepsToOneLine_data();
    void progressKeepsToOneLine();
    void stepsAreToldToTheVerbose();
    void dumbTerminalsGetNoControlCharacters();
};

void tst_DeviceQuestions::deviceIsChosenByNumberOnATerminal()
{
    ScriptedTools::attach({QStringLiteral("a"), QStringLiteral("b c")});
    Terminal terminal;
    QuenzoProcess process(QuenzoProcess::words("uninstall --yes") << m_apk);
    start(process, terminal);
    QTRY_VERIFY_WITH_TIMEOUT(terminal.shown().contains("Number of the device:"), timeLimitMs);
    QVERIFY2(terminal.shown().contains("  1  a\r\n  2  b c\r\n"), terminal.shown().constData());
    terminal.type("3\nx\n2\n");
    const Ended ended = process.end();
    QCOMPARE(ended.code, 0);
    for (const char* objection : {"'3' is none of the numbers 1 to 2.", "'x' is none of the numbers 1 to 2."})
        QVERIFY2(terminal.shown().contains(objection), terminal.shown().constData());
    QCOMPARE(ended.output, QByteArray("Uninstall successful!\n"));
    QCOMPARE(ScriptedTools::calls().last(), QStringLiteral("adb <-s><b c><uninstall><org.example.game>"));
}

void tst_DeviceQuestions::noChoiceChangesNothing()
{
    ScriptedTools::attach({QStringLiteral("a"), QStringLiteral("b")});
    for (const char* answer : {"\n", endOfInput}) {
        Terminal terminal;
        QuenzoProcess process(QuenzoProcess::words("install") << m_apk);
        start(process, terminal);
        QTRY_VERIFY_WITH_TIMEOUT(terminal.shown().contains("Number of the device:"), timeLimitMs);
        terminal.type(answer);
        QCOMPARE(process.end().code, 1);
        QVERIFY2(terminal.shown().contains("no device was chosen"), terminal.shown().constData());
    }
    QCOMPARE(ScriptedTools::calls().filter(QStringLiteral("install")), QStringList());
}

void tst_DeviceQuestions::installIsConfirmedOnATerminal()
{
    ScriptedTools::attach({QStringLiteral("a")});
    Terminal terminal;
    QuenzoProcess process(QuenzoProcess::words("install") << m_apk);
    start(process, terminal);
    QTRY_VERIFY_WITH_TIMEOUT(terminal.shown().contains("[y/N]"), timeLimitMs);
    QVERIFY2(terminal.shown().contains("Remove org.example.game and its data from a"),
             terminal.shown().constData());
    terminal.type("Y\n");
    QCOMPARE(process.end().code, 0);
    QCOMPARE(ScriptedTools::calls().last(), QStringLiteral("adb <install><-r><%1>").arg(m_apk));
}

void tst_DeviceQuestions::refusedConfirmationChangesNothing()
{
    ScriptedTools::attach({QStringLiteral("a")});
    for (const char* answer : {"n\n", "\n", endOfInput}) {
        Terminal terminal;
        QuenzoProcess process(QuenzoProcess::words("install") << m_apk);
        start(process, terminal);
        QTRY_VERIFY_WITH_TIMEOUT(terminal.shown().contains("[y/N]"), timeLimitMs);
        terminal.type(answer);
        QCOMPARE(process.end().code, 1);
        QVERIFY2(terminal.shown().contains("nothing was changed"), terminal.shown().constData());
        QVERIFY2(!terminal.shown().contains("[y/N] quenzo"), terminal.shown().constData());
    }
    QCOMPARE(ScriptedTools::calls().filter(QStringLiteral("install")), QStringList());
}

void tst_DeviceQuestions::yesIsNotAsked()
{
    ScriptedTools::attach({QStringLiteral("a")});
    Terminal terminal;
    QuenzoProcess process(QuenzoProcess::words("install -y") << m_apk);
    start(process, terminal);
    QCOMPARE(process.end().code, 0);
    QVERIFY2(!terminal.shown().contains("[y/N]"), terminal.shown().constData());
}

void tst_DeviceQuestions::progressIsShownOnATerminal()
{
    ScriptedTools::attach({QStringLiteral("a")});
    ScriptedTools::answer(QStringLiteral("install"), "read line <\"$dir/gate\"; echo P; echo Success");
    Terminal terminal;
    QuenzoProcess process(QuenzoProcess::words("install -y") << m_apk);
    start(process, terminal);
    QTRY_VERIFY_WITH_TIMEOUT(terminal.shown().contains("\\ installing on a"), timeLimitMs);
    ScriptedTools::openGate();
    const Ended ended = process.end();
    QCOMPARE(ended.code, 0);
    QVERIFY2(terminal.shown().endsWith("\r\033[K"), terminal.shown().constData());
    QCOMPARE(ended.output, QByteArray("Installation is complete!\n"));
}

void tst_DeviceQuestions::uninstallIsConfirmedOnATerminal()
{
    ScriptedTools::attach({QStringLiteral("a")});
    for (const char* answer : {"n\n", "y\n"}) {
        Terminal terminal;
        QuenzoProcess process(QuenzoProcess::words("uninstall") << m_apk);
        start(process, terminal);
        QTRY_VERIFY_WITH_TIMEOUT(terminal.shown().contains("[y/N]"), timeLimitMs);
        QCOMPARE(ScriptedTools::calls().filter(QStringLiteral("<uninstall>")), QStringList());
        terminal.type(answer);
        QCOMPARE(process.end().code, *answer == 'y' ? 0 : 1);
    }
    QCOMPARE(ScriptedTools::calls().filter(QStringLiteral("<uninstall>")).size(), 1);
}

void tst_DeviceQuestions::progressKeepsToOneLine_data()
{
    // Of the columns the last one stays free, and the words before the serial take 16.
    QTest::addColumn<int>("columns");
    QTest::addColumn<QByteArray>("shown");
    const auto letters = [](int count) { return QString(count, QChar(0x624b)).toUtf8(); };
    QTest::newRow("30") << 30 << letters(6);
    QTest::newRow("32") << 32 << letters(7);
    QTest::newRow("80") << 80 << letters(15) + "-phone";
}

void tst_DeviceQuestions::progressKeepsToOneLine()
{
    QFETCH(const int, columns);
    QFETCH(const QByteArray, shown);
    // Each of these letters takes two columns.
    const QString serial = QString(15, QChar(0x624b)) + QStringLiteral("-phone");
    ScriptedTools::attach({serial});
    ScriptedTools::answer(QStringLiteral("install"), "read line <\"$dir/gate\"; echo P; echo Success");
    Terminal terminal;
    terminal.setColumns(static_cast<unsigned short>(columns));
    QuenzoProcess process(QuenzoProcess::words("install -y") << m_apk);
    start(process, terminal);
    const QByteArray line = "/ installing on " + shown + "\r\033[K";
    QTRY_VERIFY2_WITH_TIMEOUT(terminal.shown().contains(line), terminal.shown().constData(), timeLimitMs);
    ScriptedTools::openGate();
    QCOMPARE(process.end().code, 0);
}

void tst_DeviceQuestions::stepsAreToldToTheVerbose()
{
    ScriptedTools::attach({QStringLiteral("a")});
    const Ended ended = confirmed(QuenzoProcess::words("install -v -s a") << m_apk);
    const QStringList lines = QString::fromUtf8(ended.error).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    const QString running = QStringLiteral("quenzo: running ");
    QStringList steps;
    QStringList programs;
    for (const QString& line : lines)
        (line.startsWith(running) ? programs : steps).append(line);
    QCOMPARE(steps,
             (QStringList{QStringLiteral("quenzo: removing the package org.example.game and its data"),
                          QStringLiteral("quenzo: installing %1").arg(m_apk)}));
    QCOMPARE(programs.size(), ScriptedTools::calls().size());
    for (const QString& word :
         QStringList{QStringLiteral("/aapt\" d badging \"") + m_apk, QStringLiteral("adb"),
                     QStringLiteral(" uninstall "), QStringLiteral(" install ")})
        QVERIFY2(!programs.filter(word).isEmpty(), ended.error.constData());
    QCOMPARE(ended.code, 0);
}

void tst_DeviceQuestions::dumbTerminalsGetNoControlCharacters()
{
    ScriptedTools::attach({QStringLiteral("a")});
    ScriptedTools::answer(QStringLiteral("install"), "read line <\"$dir/gate\"; echo P; echo Success");
    Terminal terminal;
    QuenzoProcess process(QuenzoProcess::words("install -y") << m_apk);
    process.setVariable("TERM", QStringLiteral("dumb"));
    start(process, terminal);
    ScriptedTools::openGate();
    QCOMPARE(process.end().code, 0);
    QCOMPARE(terminal.shown(), QByteArray());
}

QTEST_GUILESS_MAIN(tst_DeviceQuestions)
#include "tst_devicequestions.moc"
