#pragma once

#include <cstdint>
#include <optional>
#include <string>

class QCoreApplication;

namespace request {

/// What the command line asks for.
struct Options {
    std::string appKey;
    std::optional<std::string> zone;
    /// 1 cached, 2 streamed.
    std::int64_t cacheType = 2;
    int count = 1;
    int parallel = 1;
    bool waitForExpiry = false;
    bool debug = false;
};

/// Absent when the command line is at fault, which it has said then. Ends the process for `--help`.
[[nodiscard]] std::optional<Options> parse(const QCoreApplication& application);

}  // namespace request
