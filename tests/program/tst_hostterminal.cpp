// SPDX-License-Identifier: MIT
#include "quenzoprocess.h"
#include "terminal.h"

#include <QTemporaryDir>
#include <QtTest>

// What a person at a terminal sees of work that takes a while, and of failures.
class tst_HostTerminal : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void scriptsCountIsShownInOneLine_data();
    void scriptsCountIsShownInOneLine();
    void onlyATerminalThatWantsItGetsColour_data();
    void onlyATerminalThatWantsItGetsColour();
    void aPipeGetsNoEscapes();

private:
    QString path(const char* name) const { return m_folder.filePath(QLatin1String(name)); }

    QTemporaryDir m_folder;
};

void tst_HostTerminal::initTestCase()
{
    QFile script(path("count.py"));
    QVERIFY(script.open(QIODevice::WriteOnly));
    // Counts as the shipped scripts do, and waits at a quarter until somebody has seen it.
    script.write("import os, struct, time\n"
                 "def work():\n"
                 "    file = int(os.environ['QUENZO_PROGRESS'])\n"
                 "    os.write(file, struct.pack('=QQ', 1000000, 4000000))\n"
                 "    while not os.path.exists('seen'): time.sleep(0.01)\n"
                 "    return 'param'\n");
}

void tst_HostTerminal::scriptsCountIsShownInOneLine_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("80") << 80 << QByteArray("running 25 % [#####...............] 1.0 MB of 4.0 MB");
    QTest::newRow("32") << 32 << QByteArray("running 25 % ");
}

void tst_HostTerminal::scriptsCountIsShownInOneLine()
{
    QFETCH(const int, columns);
    QFETCH(const QByteArray, text);
    QFile::remove(path("seen"));
    Terminal terminal;
    terminal.setColumns(static_cast<unsigned short>(columns));
    QuenzoProcess process(QuenzoProcess::words("run count.py work"), m_folder.path());
    process.setVariable("TERM", QStringLiteral("xterm"));
    process.setStandardErrorFile(terminal.path());
    process.start();
    QByteArray shown;
    QTRY_VERIFY2_WITH_TIMEOUT((shown = terminal.shown()).contains(text), shown.constData(), 30000);
    // The rate needs a second of work.
    QTRY_VERIFY2_WITH_TIMEOUT((shown = terminal.shown()).contains(" left"), shown.constData(), 30000);
    QFile seen(path("seen"));
    QVERIFY(seen.open(QIODevice::WriteOnly));
    QCOMPARE(process.end().code, 0);
    QVERIFY2(!shown.contains('\n'), shown.constData());
    for (const QByteArray& line : shown.split('\r'))
        QVERIFY2(QByteArray(line).replace("\033[K", "").size() < columns, line.constData());
}

void tst_HostTerminal::onlyATerminalThatWantsItGetsColour_data()
{
    QTest::addColumn<QString>("term");
    QTest::addColumn<QString>("noColour");
    QTest::addColumn<bool>("coloured");
    QTest::newRow("terminal") << QStringLiteral("xterm") << QString() << true;
    QTest::newRow("dumb") << QStringLiteral("dumb") << QString() << false;
    QTest::newRow("no colour") << QStringLiteral("xterm") << QStringLiteral("1") << false;
}

void tst_HostTerminal::onlyATerminalThatWantsItGetsColour()
{
    QFETCH(const QString, term);
    QFETCH(const QString, noColour);
    QFETCH(const bool, coloured);
    Terminal terminal;
    QuenzoProcess process(QuenzoProcess::words("unpack absent.zip folder"), m_folder.path());
    process.setVariable("TERM", term);
    process.setVariable("NO_COLOR", noColour);
    process.setStandardErrorFile(terminal.path());
    QCOMPARE(process.end().code, 1);
    const QByteArray label = coloured ? "\033[1;31mquenzo:\033[0m" : "quenzo:";
    QCOMPARE(terminal.shown(), label + " 'absent.zip' does not exist\r\n");
}

void tst_HostTerminal::aPipeGetsNoEscapes()
{
    QuenzoProcess process(QuenzoProcess::words("unpack absent.zip folder"), m_folder.path());
    process.setVariable("TERM", QStringLiteral("xterm"));
    const Ended ended = process.end();
    QCOMPARE(ended.error, QByteArray("quenzo: 'absent.zip' does not exist\n"));
}

QTEST_GUILESS_MAIN(tst_HostTerminal)
#include "tst_hostterminal.moc"
