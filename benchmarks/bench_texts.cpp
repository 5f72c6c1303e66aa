// SPDX-License-Identifier: MIT
// The text helpers over a hundredfold range of lengths, and a line of the tool's log.
#include <quenzobase.h>
#include <quenzotool.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>

namespace {

QString repeated(const char* piece, int length)
{
    return QString::fromUtf8(piece).repeated(length / int(qstrlen(piece)) + 1).left(length);
}

void escapeBlanks(benchmark::State& state, int length)
{
    const QString text = repeated("a b  c ", length);
    for (auto _ : state)
        benchmark::DoNotOptimize(QuenzoTool::blankReplace(text));
}

void shorten(benchmark::State& state, int length)
{
    const QString text = repeated("shorten me ", length);
    for (auto _ : state)
        benchmark::DoNotOptimize(QuenzoTool::getStrInMaxCount(text, length - 1, QStringLiteral("...")));
}

void splitQuery(benchmark::State& state, int length)
{
    const QString url = QStringLiteral("http://host/file?") + repeated("key=value&k=v&", length);
    QMap<QString, QString> params;
    for (auto _ : state)
        QuenzoTool::getUrlParam(url, params);
}

void splitGluedQuery(benchmark::State& state, int length)
{
    const QString url = QStringLiteral("http://host/file?") + repeated("flag&key=value&", length);
    QMap<QString, QString> params;
    for (auto _ : state)
        QuenzoTool::getUrlParam(url, params);
}

void logLine(benchmark::State& state)
{
    for (auto _ : state)
        QuenzoBase::Log(
            QStringLiteral("Copy Fail:\r\nSrc:/project/assets/a.png\r\nDest:/out/assets/a.png\r\n"));
}

// The same line written by a program that opens the file for it.
void logLineOpening(benchmark::State& state)
{
    for (auto _ : state) {
        QFile file(QuenzoBase::getRunPath() + QStringLiteral("/peer.log"));
        if (!file.open(QIODevice::Append))
            state.SkipWithError("cannot open the peer's log");
        file.write(QDateTime::currentDateTime().toString(Qt::ISODateWithMs).toUtf8() + " Copy Fail:\r\n");
    }
}

// The limit: one write of the line to a file that stays open.
void logLineWriting(benchmark::State& state)
{
    QFile file(QuenzoBase::getRunPath() + QStringLiteral("/peer.log"));
    if (!file.open(QIODevice::Append | QIODevice::Unbuffered))
        state.SkipWithError("cannot open the peer's log");
    const QByteArray line(112, 'x');
    for (auto _ : state)
        file.write(line);
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    using benchmark::RegisterBenchmark;
    for (const int length : {1000, 10000, 100000, 1000000}) {
        const std::string behind = "_" + std::to_string(length) + "/quenzo";
        RegisterBenchmark(("blankReplace" + behind).c_str(), escapeBlanks, length);
        RegisterBenchmark(("getStrInMaxCount" + behind).c_str(), shorten, length);
        RegisterBenchmark(("getUrlParam" + behind).c_str(), splitQuery, length);
        RegisterBenchmark(("getUrlParam_glued" + behind).c_str(), splitGluedQuery, length);
    }
    RegisterBenchmark("log_line/quenzo", logLine);
    RegisterBenchmark("log_line/opened_each_time", logLineOpening);
    RegisterBenchmark("log_line/write_alone", logLineWriting);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
