#pragma once

#include <algorithm>
#include <benchmark/benchmark.h>
#include <QList>

namespace benchsupport {

// Reports measured delays (nanoseconds) as median, 99th percentile and maximum in milliseconds,
// with how many there were under `countName`.
inline void reportLatencies(benchmark::State &state, QList<qint64> delays, const char *countName)
{
    if (delays.isEmpty())
        return;
    std::sort(delays.begin(), delays.end());
    state.counters["median_ms"] = double(delays.at(delays.size() / 2)) / 1e6;
    state.counters["p99_ms"] = double(delays.at(delays.size() * 99 / 100)) / 1e6;
    state.counters["max_ms"] = double(delays.last()) / 1e6;
    state.counters[countName] = double(delays.size());
}

} // namespace benchsupport
