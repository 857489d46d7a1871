// The main() of benchmarks whose code needs a QCoreApplication (event loops, timers, sockets).
#include <benchmark/benchmark.h>

#include <QCoreApplication>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
