#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace velmora::bench {

using Clock = std::chrono::steady_clock;

/// What an exchange may cost, in milliseconds, for being handed from thread to thread and back: it depends on
/// the machine, not on the exchange.
inline constexpr double kHandOvers = 0.08;

inline double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

template <class Work>
double milliseconds(const Work& work) {
    const auto start = Clock::now();
    work();
    return millisecondsSince(start);
}

inline double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// The heading of the lines that `verdict` prints.
inline void heading(const char* title) {
    std::printf("%-42s %9s %9s    %6s %6s\n", title, "ours", "bare", "ratio", "most");
}

/// Prints a line; 1 when the ratio is beyond its bound.
inline int verdict(const char* name, double ours, double bare, double most) {
    const double ratio = ours / bare;
    std::printf("  %-40s %9.3f %9.3f ms %6.2f %6.2f%s\n", name, ours, bare, ratio, most,
                ratio > most ? "  BEYOND" : "");
    std::fflush(stdout);
    return ratio > most ? 1 : 0;
}

}  // namespace velmora::bench
