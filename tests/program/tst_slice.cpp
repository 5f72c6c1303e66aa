// SPDX-License-Identifier: MIT
#include "build/slice.h"

#include <QtTest>

namespace {

// The environment that a line like "A=1 B=2" describes.
QProcessEnvironment environmentOf(const QString& line)
{
    QProcessEnvironment environment;
    for (const QString& word : line.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        environment.insert(word.section(QLatin1Char('='), 0, 0), word.section(QLatin1Char('='), 1));
    return environment;
}

} // namespace

// Which channels a process takes: what the command line says, or a scheduler.
class tst_Slice : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isReadFromOptionsAndSchedulers_data();
    void isReadFromOptionsAndSchedulers();
    void whatCannotBeUsedIsNamed_data();
    void whatCannotBeUsedIsNamed();
    void eachChannelIsInOneSlice();
};

void tst_Slice::isReadFromOptionsAndSchedulers_data()
{
    QTest::addColumn<QString>("slice");
    QTest::addColumn<QString>("slices");
    QTest::addColumn<QString>("variables");
    QTest::addColumn<QString>("found");
    const auto row = [](const char* name, const char* slice, const char* slices, const char* variables,
                        const char* found) {
        QTest::newRow(name) << QString::fromLatin1(slice) << QString::fromLatin1(slices)
                            << QString::fromLatin1(variables) << QString::fromLatin1(found);
    };
    const char* const slurm = "SLURM_ARRAY_TASK_ID=7 SLURM_ARRAY_TASK_MIN=1 SLURM_ARRAY_TASK_COUNT=24";
    row("nothing", "", "", "", "0 of 1 by ");
    row("unrelated variables", "", "", "SLURM_JOB_ID=5 CI=true HOME=/", "0 of 1 by ");
    row("first", "1/3", "", "", "0 of 3 by --slice");
    row("last", "3/3", "", "", "2 of 3 by --slice");
    row("only", "1/1", "", "", "0 of 1 by --slice");
    row("option before Slurm", "2/3", "", slurm, "1 of 3 by --slice");
    row("option before nonsense", "2/3", "", "SLURM_ARRAY_TASK_ID=x CI_NODE_INDEX=y", "1 of 3 by --slice");
    row("option before two schedulers", "2/3", "", "JOB_COMPLETION_INDEX=0 CI_NODE_INDEX=1",
        "1 of 3 by --slice");

    row("Slurm from 1", "", "", slurm, "6 of 24 by SLURM_ARRAY_TASK_ID");
    row("Slurm from 0", "", "", "SLURM_ARRAY_TASK_ID=0 SLURM_ARRAY_TASK_MIN=0 SLURM_ARRAY_TASK_COUNT=4",
        "0 of 4 by SLURM_ARRAY_TASK_ID");
    row("Slurm with steps", "", "",
        "SLURM_ARRAY_TASK_ID=16 SLURM_ARRAY_TASK_MIN=10 SLURM_ARRAY_TASK_COUNT=4 SLURM_ARRAY_TASK_STEP=2",
        "3 of 4 by SLURM_ARRAY_TASK_ID");
    row("Slurm with as many --slices", "", "24", slurm, "6 of 24 by SLURM_ARRAY_TASK_ID");
    row("empty variables are none", "", "",
        "SLURM_ARRAY_TASK_ID= CI_NODE_INDEX= JOB_COMPLETION_INDEX=", "0 of 1 by ");

    row("Kubernetes", "", "3", "JOB_COMPLETION_INDEX=0", "0 of 3 by JOB_COMPLETION_INDEX");
    row("Kubernetes, last", "", "3", "JOB_COMPLETION_INDEX=2", "2 of 3 by JOB_COMPLETION_INDEX");

    row("GitLab", "", "", "CI_NODE_INDEX=1 CI_NODE_TOTAL=3", "0 of 3 by CI_NODE_INDEX");
    row("GitLab, last", "", "3", "CI_NODE_INDEX=3 CI_NODE_TOTAL=3", "2 of 3 by CI_NODE_INDEX");
    row("GitLab, one of a kind", "", "", "CI_NODE_TOTAL=1", "0 of 1 by ");
    row("GitLab, one of a kind, in an array", "", "",
        "CI_NODE_TOTAL=1 SLURM_ARRAY_TASK_ID=2 SLURM_ARRAY_TASK_MIN=1 SLURM_ARRAY_TASK_COUNT=2",
        "1 of 2 by SLURM_ARRAY_TASK_ID");
}

void tst_Slice::isReadFromOptionsAndSchedulers()
{
    QFETCH(const QString, slice);
    QFETCH(const QString, slices);
    QFETCH(const QString, variables);
    QString fault;
    const Slice found = Slice::of(slice, slices, environmentOf(variables), fault);
    QCOMPARE(fault, QString());
    QTEST(QStringLiteral("%1 of %2 by %3").arg(found.index).arg(found.count).arg(found.source), "found");
}

void tst_Slice::whatCannotBeUsedIsNamed_data()
{
    QTest::addColumn<QString>("slice");
    QTest::addColumn<QString>("slices");
    QTest::addColumn<QString>("variables");
    QTest::addColumn<QString>("fault");
    const auto row = [](const char* slice, const char* slices, const char* variables, const char* fault) {
        QTest::newRow(
            qPrintable(QStringLiteral("[%1] [%2] [%3]")
                           .arg(QLatin1String(slice), QLatin1String(slices), QLatin1String(variables))))
            << QString::fromUtf8(slice) << QString::fromUtf8(slices) << QString::fromUtf8(variables)
            << QString::fromUtf8(fault);
    };
    for (const char* word : {"0/3", "4/3", "1", "1/", "/3", "1/0", "1/2/3", "-1/3", "+1/3", "1/3\n", "one/3",
                             "1.0/3", "\xd9\xa1/3", "9999999999/9999999999"})
        row(word, "", "",
            QStringLiteral("--slice is I/N, from 1/N to N/N, not '%1'")
                .arg(QString::fromUtf8(word))
                .toUtf8()
                .constData());
    for (const char* word : {"0", "-3", "three", "3.5", "99999999999"})
        row("", word, "JOB_COMPLETION_INDEX=0",
            QStringLiteral("--slices is a number from 1 on, not '%1'")
                .arg(QLatin1String(word))
                .toUtf8()
                .constData());
    row("1/3", "3", "", "--slice says of how many already: leave --slices out");
    row("", "3", "", "--slices says of how many, but nothing says which: say --slice I/N");

    row("", "", "SLURM_ARRAY_TASK_ID=x SLURM_ARRAY_TASK_MIN=1 SLURM_ARRAY_TASK_COUNT=2",
        "SLURM_ARRAY_TASK_ID is a number from 0 on, not 'x'");
    row("", "", "SLURM_ARRAY_TASK_ID=1 SLURM_ARRAY_TASK_COUNT=2", "SLURM_ARRAY_TASK_MIN is missing");
    row("", "", "SLURM_ARRAY_TASK_ID=1 SLURM_ARRAY_TASK_MIN=1", "SLURM_ARRAY_TASK_COUNT is missing");
    row("", "", "SLURM_ARRAY_TASK_ID=1 SLURM_ARRAY_TASK_MIN=1 SLURM_ARRAY_TASK_COUNT=0",
        "SLURM_ARRAY_TASK_COUNT is a number from 1 on, not '0'");
    row("", "",
        "SLURM_ARRAY_TASK_ID=1 SLURM_ARRAY_TASK_MIN=1 SLURM_ARRAY_TASK_COUNT=2 SLURM_ARRAY_TASK_STEP=0",
        "SLURM_ARRAY_TASK_STEP is a number from 1 on, not '0'");
    row("", "", "SLURM_ARRAY_TASK_ID=9 SLURM_ARRAY_TASK_MIN=1 SLURM_ARRAY_TASK_COUNT=3",
        "SLURM_ARRAY_TASK_ID is 9, which is none of 3 tasks from 1 on in steps of 1; number the array "
        "evenly, or say --slice I/N");
    row("", "",
        "SLURM_ARRAY_TASK_ID=4 SLURM_ARRAY_TASK_MIN=1 SLURM_ARRAY_TASK_COUNT=3 SLURM_ARRAY_TASK_STEP=2",
        "SLURM_ARRAY_TASK_ID is 4, which is none of 3 tasks from 1 on in steps of 2; number the array "
        "evenly, or say --slice I/N");
    row("", "", "SLURM_ARRAY_TASK_ID=0 SLURM_ARRAY_TASK_MIN=1 SLURM_ARRAY_TASK_COUNT=3",
        "SLURM_ARRAY_TASK_ID is 0, which is none of 3 tasks from 1 on in steps of 1; number the array "
        "evenly, or say --slice I/N");
    row("", "24", "SLURM_ARRAY_TASK_ID=7 SLURM_ARRAY_TASK_MIN=7 SLURM_ARRAY_TASK_COUNT=1",
        "--slices is 24, but by SLURM_ARRAY_TASK_ID there are 1: choose with --slice I/N");

    row("", "", "JOB_COMPLETION_INDEX=0",
        "JOB_COMPLETION_INDEX does not tell of how many: say --slices N, as many as the job has completions");
    row("", "3", "JOB_COMPLETION_INDEX=3",
        "JOB_COMPLETION_INDEX is 3, but with --slices 3 the last one is 2");
    row("", "3", "JOB_COMPLETION_INDEX=-1", "JOB_COMPLETION_INDEX is a number from 0 on, not '-1'");

    row("", "", "CI_NODE_INDEX=0 CI_NODE_TOTAL=3", "CI_NODE_INDEX is a number from 1 on, not '0'");
    row("", "", "CI_NODE_INDEX=1", "CI_NODE_TOTAL is missing");
    row("", "", "CI_NODE_TOTAL=3", "CI_NODE_INDEX is missing");
    row("", "", "CI_NODE_TOTAL=many", "CI_NODE_TOTAL is a number from 1 on, not 'many'");
    row("", "", "CI_NODE_INDEX=4 CI_NODE_TOTAL=3", "CI_NODE_INDEX is 4, but CI_NODE_TOTAL is 3");

    row("", "", "CI_NODE_INDEX=1 CI_NODE_TOTAL=3 SLURM_ARRAY_TASK_ID=1",
        "SLURM_ARRAY_TASK_ID and CI_NODE_INDEX both say which slice this is: choose with --slice I/N");
    row("", "3", "CI_NODE_INDEX=1 CI_NODE_TOTAL=3 JOB_COMPLETION_INDEX=0",
        "JOB_COMPLETION_INDEX and CI_NODE_INDEX both say which slice this is: choose with --slice I/N");
}

void tst_Slice::whatCannotBeUsedIsNamed()
{
    QFETCH(const QString, slice);
    QFETCH(const QString, slices);
    QFETCH(const QString, variables);
    QString said = QStringLiteral("from before");
    const Slice found = Slice::of(slice, slices, environmentOf(variables), said);
    QTEST(said, "fault");
    QVERIFY(found.isWhole());
}

void tst_Slice::eachChannelIsInOneSlice()
{
    constexpr int channels = 100;
    for (int count = 1; count <= 12; ++count) {
        QVector<int> takers(channels);
        for (int index = 0; index < count; ++index) {
            const Slice slice{index, count, {}};
            int taken = 0;
            for (int channel = 0; channel < channels; ++channel) {
                takers[channel] += slice.takes(channel) ? 1 : 0;
                taken += slice.takes(channel) ? 1 : 0;
            }
            QVERIFY2(taken == channels / count || taken == channels / count + 1,
                     qPrintable(QStringLiteral("%1 channels in one of %2").arg(taken).arg(count)));
        }
        QCOMPARE(takers, QVector<int>(channels, 1));
    }
}

QTEST_GUILESS_MAIN(tst_Slice)
#include "tst_slice.moc"
