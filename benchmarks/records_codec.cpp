// SPDX-License-Identifier: MIT
// The codec beside the conversions that it is made of, which leave the characters where they are.
#include "bench_records.h"

#include <quenzotool.h>

#include <benchmark/benchmark.h>

#include <string>

namespace {

QString textOf(benchmark::State& state)
{
    const QString piece = QStringLiteral("0123456789ab");
    return piece.repeated(static_cast<int>(state.range(0)) / piece.size() + 1)
        .left(static_cast<int>(state.range(0)));
}

void encode(benchmark::State& state)
{
    const QString text = textOf(state);
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        benchmark::DoNotOptimize(QuenzoTool::ckEncode(text));
    }
}

void encodeParts(benchmark::State& state)
{
    const QString text = textOf(state);
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        benchmark::DoNotOptimize(QString::fromLatin1(text.toUtf8().toBase64()));
    }
}

void decode(benchmark::State& state)
{
    const QString text = QuenzoTool::ckEncode(textOf(state));
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        benchmark::DoNotOptimize(QuenzoTool::ckDecode(text));
    }
}

void decodeParts(benchmark::State& state)
{
    const QString text = QString::fromLatin1(textOf(state).toUtf8().toBase64());
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        benchmark::DoNotOptimize(QString::fromUtf8(QByteArray::fromBase64(text.toUtf8())));
    }
}

} // namespace

void registerCodec()
{
    for (const int bytes : {12, 40, 200, 1048576}) {
        const std::string suffix = std::to_string(bytes) + "_bytes/";
        benchmark::RegisterBenchmark(("encode_" + suffix + "quenzo").c_str(), encode)->Arg(bytes);
        benchmark::RegisterBenchmark(("encode_" + suffix + "its_parts").c_str(), encodeParts)->Arg(bytes);
        benchmark::RegisterBenchmark(("decode_" + suffix + "quenzo").c_str(), decode)->Arg(bytes);
        benchmark::RegisterBenchmark(("decode_" + suffix + "its_parts").c_str(), decodeParts)->Arg(bytes);
    }
}
