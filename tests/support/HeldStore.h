#pragma once

#include "support/Program.h"

#include <filesystem>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace velmora::test {

/// Another process that holds a lock on a store for as long as it is told to.
class HeldStore {
public:
    explicit HeldStore(const std::filesystem::path& file, std::string lock = "BEGIN EXCLUSIVE")
        : lock_(std::move(lock)), holder_({"sqlite3", "-batch", "-cmd", ".timeout 10000", file.string()}) {}

    /// Returns when it is held.
    void hold() {
        holder_.say(lock_ + "; SELECT 'held';");
        std::string said;
        do said = holder_.line();
        while (!said.empty() && said != "held");
        EXPECT_EQ(said, "held");
    }

    /// It is not held again.
    void letGo() { EXPECT_EQ(holder_.wait(), 0); }

private:
    const std::string lock_;
    RunningProgram holder_;
};

}  // namespace velmora::test
