// SPDX-License-Identifier: MIT
#include "buildscene.h"
#include "terminal.h"

#include <QJsonDocument>
#include <QtTest>

#include <algorithm>
#include <cctype>

// What a run tells while it is at work.
class tst_BuildProgress : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void machinesAreToldEachStepAndEnd_data();
    void machinesAreToldEachStepAndEnd();
    void machinesAreToldOfUnchangedChannels();
    void diagnosticsAreNoObjects();
    void terminalHasALineForEachChannelAtWork_data();
    void terminalHasALineForEachChannelAtWork();
    void terminalWithFewRowsHasTheLineInAll();
    void dumbTerminalHasNoLineToTakeBack();

private:
    static QVector<QJsonObject> linesOf(const QByteArray& error);
    static QVector<QJsonObject> channelLines(const QByteArray& error, const QString& folder);
    static void expectLinesOf(const QJsonObject& channel, const QByteArray& error);
    std::unique_ptr<BuildScene> m_scene;
};

namespace {

// What a terminal shows that is given some bytes: lines, and whether one of them had to be wrapped.
struct Screen {
    QVector<QByteArray> lines{QByteArray()};
    bool isWrapped = false;

    Screen(const QByteArray& bytes, int columns)
    {
        int row = 0;
        int column = 0;
        for (int i = 0; i < bytes.size(); ++i) {
            const char letter = bytes.at(i);
            if (letter == '\r') {
                column = 0;
            } else if (letter == '\n') {
                if (++row == lines.size())
                    lines.append(QByteArray());
            } else if (letter == '\033') {
                const int end = firstLetter(bytes, i + 2);
                const int number = bytes.mid(i + 2, end - i - 2).toInt();
                if (end < bytes.size())
                    obey(bytes.at(end), number, row, column);
                i = end;
            } else {
                lines[row] = lines.at(row).leftJustified(column, ' ').left(column) + letter;
                isWrapped |= ++column >= columns;
            }
        }
    }

    QByteArray text() const
    {
        QByteArray all;
        for (const QByteArray& line : lines)
            all += line + '\n';
        return all;
    }

private:
    static int firstLetter(const QByteArray& bytes, int place)
    {
        while (place < bytes.size() && std::isalpha(static_cast<unsigned char>(bytes.at(place))) == 0)
            ++place;
        return place;
    }

    void obey(char order, int number, int& row, int column)
    {
        if (order == 'A')
            row = std::max(0, row - std::max(1, number));
        if (order == 'K' || order == 'J')
            lines[row].truncate(column);
        if (order == 'J')
            lines.resize(row + 1);
    }
};

const QStringList folders{QStringLiteral("plain"), QStringLiteral("harbor"), QStringLiteral("meadow")};

} // namespace

void tst_BuildProgress::init()
{
    m_scene = std::make_unique<BuildScene>();
    QVERIFY(m_scene->isValid());
}

QVector<QJsonObject> tst_BuildProgress::linesOf(const QByteArray& error)
{
    QVector<QJsonObject> lines;
    for (const QByteArray& line : error.trimmed().split('\n')) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        if (!object.isEmpty())
            lines.append(object);
    }
    return lines;
}

QVector<QJsonObject> tst_BuildProgress::channelLines(const QByteArray& error, const QString& folder)
{
    QVector<QJsonObject> lines;
    for (const QJsonObject& line : linesOf(error)) {
        const QJsonObject channel = line.value(QStringLiteral("channel")).toObject();
        if (channel.value(QStringLiteral("folder")).toString() == folder)
            lines.append(channel);
    }
    return lines;
}

// A line for each step of a channel of the report, in order, and one for its end.
void tst_BuildProgress::expectLinesOf(const QJsonObject& channel, const QByteArray& error)
{
    const QString folder = channel.value(QStringLiteral("folder")).toString();
    QVector<QJsonObject> expected;
    for (const QJsonValue& step : channel.value(QStringLiteral("steps")).toArray())
        expected.append({{QStringLiteral("folder"), folder},
                         {QStringLiteral("step"), step.toObject().value(QStringLiteral("name"))}});
    expected.append({{QStringLiteral("folder"), folder},
                     {QStringLiteral("outcome"), channel.value(QStringLiteral("outcome"))},
                     {QStringLiteral("message"), channel.value(QStringLiteral("message"))}});
    const QVector<QJsonObject> told = channelLines(error, folder);
    QVERIFY2(told == expected, error.constData());
}

void tst_BuildProgress::machinesAreToldEachStepAndEnd_data()
{
    QTest::addColumn<QByteArray>("words");
    QTest::newRow("one process") << QByteArray();
    QTest::newRow("two processes") << QByteArray(" --jobs 2");
    QTest::newRow("quiet") << QByteArray(" --quiet");
}

void tst_BuildProgress::machinesAreToldEachStepAndEnd()
{
    QFETCH(const QByteArray, words);
    QVERIFY(m_scene->write(QStringLiteral("own/assets/channel.json"), "{}")); // fails "meadow"
    const Ended ended = m_scene->run("--json --progress=json" + words);
    QCOMPARE(ended.code, 1);
    for (const QString& folder : folders)
        expectLinesOf(BuildScene::reportOf(ended, folder), ended.error);
    QCOMPARE(channelLines(ended.error, folders.at(0)).first().value(QStringLiteral("step")).toString(),
             QStringLiteral("clear"));
    QCOMPARE(channelLines(ended.error, folders.at(2)).last().value(QStringLiteral("outcome")).toString(),
             QStringLiteral("failed"));
    QJsonObject last;
    for (const QJsonObject& line : linesOf(ended.error)) {
        QCOMPARE(line.keys().size(), 1);
        if (line.contains(QStringLiteral("progress")))
            last = line.value(QStringLiteral("progress")).toObject();
        else
            QCOMPARE(line.keys(), QStringList(QStringLiteral("channel")));
    }
    QCOMPARE(last,
             (QJsonObject{{QStringLiteral("doing"), QStringLiteral("writing the report")},
                          {QStringLiteral("unit"), QStringLiteral("channels")},
                          {QStringLiteral("done"), 3},
                          {QStringLiteral("total"), 3}}));
}

void tst_BuildProgress::machinesAreToldOfUnchangedChannels()
{
    QCOMPARE(m_scene->run().code, 0);
    const Ended ended = m_scene->run("--progress=json");
    QCOMPARE(ended.code, 0);
    for (const QString& folder : folders) {
        const QVector<QJsonObject> expected{{{QStringLiteral("folder"), folder},
                                             {QStringLiteral("outcome"), QStringLiteral("unchanged")},
                                             {QStringLiteral("message"), QString()}}};
        QVERIFY2(channelLines(ended.error, folder) == expected, ended.error.constData());
    }
}

void tst_BuildProgress::diagnosticsAreNoObjects()
{
    QVERIFY(m_scene->write(QStringLiteral("own/assets/channel.json"), "{}"));
    const Ended ended = m_scene->run("--progress=json");
    int diagnostics = 0;
    for (const QByteArray& line : ended.error.trimmed().split('\n')) {
        if (QJsonDocument::fromJson(line).isObject())
            continue;
        QVERIFY2(line.startsWith("quenzo: "), line.constData());
        ++diagnostics;
    }
    QVERIFY(diagnostics > 0);
}

void tst_BuildProgress::terminalHasALineForEachChannelAtWork_data()
{
    QTest::addColumn<QByteArray>("words");
    QTest::addColumn<int>("columns");
    QTest::addColumn<QList<QByteArray>>("lines");
    const QByteArray plain = "  plain: sign";
    const QByteArray harbor = "  harbor: sign";
    const QByteArray meadow = "  meadow: sign";
    QTest::newRow("one process") << QByteArray() << 80 << QList<QByteArray>{plain};
    QTest::newRow("three processes") << QByteArray("--jobs 3") << 80
                                     << QList<QByteArray>{harbor, meadow, plain};
    QTest::newRow("narrow") << QByteArray("--jobs 3") << 12
                            << QList<QByteArray>{harbor.left(11), meadow.left(11), plain.left(11)};
}

void tst_BuildProgress::terminalHasALineForEachChannelAtWork()
{
    QFETCH(const QByteArray, words);
    QFETCH(const int, columns);
    QFETCH(const QList<QByteArray>, lines);
    QVERIFY(m_scene->signAtGate());
    Terminal terminal;
    terminal.setColumns(static_cast<unsigned short>(columns));
    const auto process = m_scene->process(words);
    process->setStandardErrorFile(terminal.path());
    process->start();
    const QByteArray whole = QByteArray(" building 0 %").left(columns - 2);
    const auto shows = [&] {
        const QVector<QByteArray> shown = Screen(terminal.shown(), columns).lines;
        return shown.size() == lines.size() + 1 && shown.last().mid(1).startsWith(whole)
            && shown.mid(0, lines.size()).toList() == lines;
    };
    QTRY_VERIFY2_WITH_TIMEOUT(shows(), Screen(terminal.shown(), columns).text().constData(), 30000);
    QVERIFY(m_scene->openGate());
    const Ended ended = process->end();
    QCOMPARE(ended.code, 0);
    const Screen left(terminal.shown(), columns);
    QVERIFY2(left.lines == QVector<QByteArray>{QByteArray()}, left.text().constData());
    QVERIFY2(!left.isWrapped, terminal.shown().constData());
}

void tst_BuildProgress::terminalWithFewRowsHasTheLineInAll()
{
    QVERIFY(m_scene->signAtGate());
    Terminal terminal;
    terminal.setColumns(80, 3);
    const auto process = m_scene->process("--jobs 3");
    process->setStandardErrorFile(terminal.path());
    process->start();
    QTRY_COMPARE_WITH_TIMEOUT(m_scene->waiting(), 3, 30000);
    const int before = terminal.shown().size();
    constexpr int severalTimes = 500; // that the line is written
    QTRY_VERIFY_WITH_TIMEOUT(terminal.shown().size() > before + severalTimes, 30000);
    const Screen screen(terminal.shown(), 80);
    QCOMPARE(screen.lines.size(), 1);
    QVERIFY2(screen.lines.first().mid(1).startsWith(" building 0 %"), screen.text().constData());
    QVERIFY(m_scene->openGate());
    QCOMPARE(process->end().code, 0);
    QVERIFY2(!terminal.shown().contains("\033[3A"), terminal.shown().constData()); // two at work have room
}

void tst_BuildProgress::dumbTerminalHasNoLineToTakeBack()
{
    Terminal terminal;
    const auto process = m_scene->process("--jobs 2");
    process->setVariable("TERM", QStringLiteral("dumb"));
    process->setStandardErrorFile(terminal.path());
    QCOMPARE(process->end().code, 0);
    const QByteArray shown = terminal.shown();
    QVERIFY2(!shown.contains('\033'), shown.constData());
    QVERIFY2(shown.contains("quenzo: harbor: built"), shown.constData());
}

QTEST_GUILESS_MAIN(tst_BuildProgress)
#include "tst_buildprogress.moc"
