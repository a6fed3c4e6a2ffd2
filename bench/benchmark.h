// SPDX-License-Identifier: GPL-2.0-or-later
// Shared helpers of the benchmarks: timing, frame rings larger than the caches, printing.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <vector>

namespace bench {

// Best of several rounds of `iterations` calls, in microseconds per call:
// the best round is the one least disturbed by the rest of the machine.
inline double microsecondsPerCall(int rounds, int iterations, const std::function<void(int)> &call)
{
    double best = 1e300;
    for (int round = 0; round < rounds; ++round) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < iterations; ++i)
            call(i);
        const auto end = std::chrono::steady_clock::now();
        const double us = std::chrono::duration<double, std::micro>(end - start).count() / iterations;
        if (us < best)
            best = us;
    }
    return best;
}

// The best time of each of two workloads, measured in alternation so that
// slow phases of a shared machine hit both alike: microseconds per call.
struct Pair
{
    double first;
    double second;
};

inline Pair alternating(int rounds, int iterations, const std::function<void(int)> &first,
                        const std::function<void(int)> &second)
{
    Pair best{1e300, 1e300};
    for (int round = 0; round < rounds; ++round) {
        best.first = std::min(best.first, microsecondsPerCall(1, iterations, first));
        best.second = std::min(best.second, microsecondsPerCall(1, iterations, second));
    }
    return best;
}

// Frames arrive fresh from the camera on the device, so per-frame work is
// measured over a ring of frames that together exceed the CPU caches (64 MiB
// at least: twice the largest last-level cache we run on).
struct FrameRing
{
    explicit FrameRing(size_t bytes)
        : frames(std::max<size_t>(8, (64u << 20) / bytes + 1), std::vector<uint8_t>(bytes))
    {
    }
    uint8_t *at(int i) { return frames[static_cast<size_t>(i) % frames.size()].data(); }
    std::vector<std::vector<uint8_t>> frames;
};

inline void printRatio(const char *what, double measured, const char *reference, double referenceValue, double target)
{
    const double ratio = measured / referenceValue;
    std::printf("%-34s %10.3f\n%-34s %10.3f\nratio %-28s %10.3f  (target <= %.2f) %s\n", what, measured, reference,
                referenceValue, "", ratio, target, ratio <= target ? "met" : "NOT MET");
}

} // namespace bench
