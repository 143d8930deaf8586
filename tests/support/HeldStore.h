#pragma once

#include "support/Process.h"
#include "support/StoreFiles.h"

#include <filesystem>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace velmora::test {

/// Another process that holds a lock on a store for as long as it is told to. Made before this process opens
/// that store: a connection must not be carried into another process.
class HeldStore {
public:
    explicit HeldStore(const std::filesystem::path& file, const std::string& lock = "BEGIN EXCLUSIVE")
        : holder_([&] {
              if (orders_.read() != kHold) return;
              Stranger stranger(file);
              stranger.run(lock);
              isHeld_.write(1);
              (void)orders_.read();
          }) {}

    ~HeldStore() { letGo(); }

    HeldStore(const HeldStore&) = delete;
    HeldStore& operator=(const HeldStore&) = delete;

    /// Returns when it is held.
    void hold() {
        orders_.write(kHold);
        EXPECT_TRUE(isHeld_.read());
    }

    /// It is not held again.
    void letGo() {
        if (std::exchange(hasLetGo_, true)) return;
        orders_.write(kLetGo);
        EXPECT_TRUE(holder_.succeeded());
    }

private:
    static constexpr int kHold = 1;
    static constexpr int kLetGo = 2;

    Pipe isHeld_;
    Pipe orders_;
    Process holder_;
    bool hasLetGo_ = false;
};

}  // namespace velmora::test
