// SPDX-License-Identifier: MIT
#include "build/slice.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QString contentOf(const QString& path)
{
    QFile file(QStringLiteral(SOURCE_DIR "/") + path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

// The files that users take over for their schedulers, run and read as schedulers do.
class tst_FarmExamples : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void slurmScriptCallsQuenzo_data();
    void slurmScriptCallsQuenzo();
    void kubernetesSaysHowManyTwice();
    void pageShowsTheExamples();
};

void tst_FarmExamples::slurmScriptCallsQuenzo_data()
{
    QTest::addColumn<QString>("cpus");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("call");
    const QString job = QStringLiteral("/share/sky harbour/job.json");
    QTest::newRow("a task") << QStringLiteral("4") << QStringList(job)
                            << QByteArray("build|--jobs|4|/share/sky harbour/job.json|\n");
    QTest::newRow("a cluster that tells no cores")
        << QString() << QStringList(job) << QByteArray("build|--jobs|1|/share/sky harbour/job.json|\n");
    QTest::newRow("collecting") << QStringLiteral("4") << QStringList{job, QStringLiteral("--collect")}
                                << QByteArray("build|/share/sky harbour/job.json|--collect|\n");
}

void tst_FarmExamples::slurmScriptCallsQuenzo()
{
    QFETCH(const QString, cpus);
    QFETCH(const QStringList, arguments);
    const QTemporaryDir folder;
    QFile program(folder.filePath(QStringLiteral("quenzo")));
    QVERIFY(program.open(QIODevice::WriteOnly));
    QVERIFY(program.write("#!/bin/sh\nprintf '%s|' \"$@\"\necho\n") > 0);
    program.close();
    QVERIFY(program.setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"),
                       folder.path() + QLatin1Char(':') + qEnvironmentVariable("PATH"));
    if (!cpus.isEmpty())
        environment.insert(QStringLiteral("SLURM_CPUS_PER_TASK"), cpus);
    QProcess script;
    script.setProcessEnvironment(environment);
    script.start(QStringLiteral(SOURCE_DIR "/examples/slurm.sh"), arguments);
    QVERIFY2(script.waitForFinished(), qPrintable(script.errorString()));
    QCOMPARE(script.readAllStandardError(), QByteArray());
    QTEST(script.readAllStandardOutput(), "call");
    QCOMPARE(script.exitCode(), 0);
}

// A count that differs from the completions would leave channels out.
void tst_FarmExamples::kubernetesSaysHowManyTwice()
{
    const QString manifest = contentOf(QStringLiteral("examples/kubernetes.yaml"));
    const auto captured = [&manifest](const char* pattern) {
        return QRegularExpression(QLatin1String(pattern)).match(manifest).captured(1);
    };
    const QString completions = captured("\n  completions: ([0-9]+)\n");
    QVERIFY(!completions.isEmpty());
    QCOMPARE(captured("\"--slices\", \"([0-9]+)\""), completions);
    QProcessEnvironment last;
    last.insert(QStringLiteral("JOB_COMPLETION_INDEX"), QString::number(completions.toInt() - 1));
    QString fault;
    const Slice slice = Slice::of({}, completions, last, fault);
    QCOMPARE(fault, QString());
    QCOMPARE(slice.index, completions.toInt() - 1);
    QVERIFY(manifest.contains(QStringLiteral("\n  completionMode: Indexed\n")));
    QVERIFY(manifest.contains(QStringLiteral("\n  suspend: true\n")));
}

void tst_FarmExamples::pageShowsTheExamples()
{
    const QString page = contentOf(QStringLiteral("docs/scaling.md"));
    int shown = 0;
    for (const QString& example :
         {QStringLiteral("examples/slurm.sh"), QStringLiteral("examples/kubernetes.yaml")}) {
        QVERIFY2(page.contains(QStringLiteral("(../%1)").arg(example)), qPrintable(example));
        for (const QString& line : contentOf(example).split(QLatin1Char('\n'))) {
            static const QRegularExpression command(QStringLiteral("^#   (.*(?:sbatch|kubectl).*)$"));
            const QString text = command.match(line).captured(1);
            if (text.isEmpty())
                continue;
            QString inPage = text;
            inPage.replace(QStringLiteral("-f kubernetes"), QStringLiteral("-f examples/kubernetes"));
            QVERIFY2(page.contains(QStringLiteral("    %1\n").arg(inPage)), qPrintable(text));
            ++shown;
        }
    }
    QCOMPARE(shown, 5);
}

QTEST_GUILESS_MAIN(tst_FarmExamples)
#include "tst_farmexamples.moc"
