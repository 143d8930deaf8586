#pragma once

#include <functional>
#include <string>
#include <vector>

namespace velmora::bench {

/// Our way and the bare library's way of the same work, measured in turn in one run, so that a machine which
/// slows down slows both. The figure is the median of the ratios of the pairs.
class Comparison {
public:
    /// Prints the heading.
    explicit Comparison(std::string title);

    /// Runs the pair `rounds` times after a warm-up, each side often enough to be measured, and prints one
    /// line.
    void measure(const std::string& name, double most, const std::function<void()>& ours,
                 const std::function<void()>& bare, int rounds = 41);

    /// How many nanoseconds one call takes, the least of several rounds.
    [[nodiscard]] static double nanoseconds(const std::function<void()>& work);

    /// 0 when every ratio was within its bound, 1 otherwise: the exit status of the program.
    [[nodiscard]] int result() const { return result_; }

private:
    int result_ = 0;
};

}  // namespace velmora::bench
