// SPDX-License-Identifier: MIT
// The database class beside SQLite's own interfaces.
#include "bench_records.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    registerInsertions();
    registerUpdates();
    registerSelects();
    registerQueue();
    registerCodec();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
