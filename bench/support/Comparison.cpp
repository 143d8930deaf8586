#include "support/Comparison.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace velmora::bench {

namespace {

using Clock = std::chrono::steady_clock;

double perCall(const std::function<void()>& work, int calls) {
    const auto start = Clock::now();
    for (int i = 0; i < calls; ++i) work();
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count() / calls;
}

/// So many calls that a round takes some milliseconds, which is far more than the clock's own error.
int callsFor(const std::function<void()>& work) {
    constexpr double round = 4e6;
    return std::max(1, static_cast<int>(round / std::max(perCall(work, 2), 1.0)));
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace

Comparison::Comparison(std::string title) {
    std::printf("%s\n  %-44s %10s %10s %7s %7s\n", title.c_str(), "", "ours, us", "bare, us", "ratio",
                "most");
}

void Comparison::measure(const std::string& name, double most, const std::function<void()>& ours,
                         const std::function<void()>& bare, int rounds) {
    const int calls = std::max(callsFor(ours), callsFor(bare));
    std::vector<double> oursTimes;
    std::vector<double> bareTimes;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        oursTimes.push_back(perCall(ours, calls));
        bareTimes.push_back(perCall(bare, calls));
        ratios.push_back(oursTimes.back() / bareTimes.back());
    }
    const double ratio = median(ratios);
    if (ratio > most) result_ = 1;
    std::printf("  %-44s %10.1f %10.1f %7.2f %7.2f%s\n", name.c_str(), median(oursTimes) / 1000,
                median(bareTimes) / 1000, ratio, most, ratio > most ? "  BEYOND" : "");
    std::fflush(stdout);
}

double Comparison::nanoseconds(const std::function<void()>& work) {
    const int calls = callsFor(work);
    double least = perCall(work, calls);
    for (int round = 0; round < 10; ++round) least = std::min(least, perCall(work, calls));
    return least;
}

}  // namespace velmora::bench
