#pragma once

#include "sandbox/Http.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>

#include <boost/json.hpp>

namespace velmora::sandbox {

/// One exchange, as the ledger keeps it.
struct LedgerEntry {
    Request request;
    int status = 0;
    /// What was asked for: "suggestions", "token", "tracker" and so on.
    std::string kind;
    std::optional<std::string> zone;
    /// What was wrong with the request, in words.
    std::vector<std::string> problems;

    /// Given by the ledger.
    std::uint64_t number = 0;
    std::int64_t time = 0;
    std::int64_t sinceStart = 0;
};

/// The last exchanges with the service, in order. Any thread.
class Ledger {
public:
    explicit Ledger(std::size_t mostEntries);

    /// Bodies are cut, and the oldest entry makes room.
    void add(LedgerEntry entry);
    /// Numbers go on where they were.
    void clear();

    /// Those with a higher number that are still there.
    [[nodiscard]] boost::json::array entriesAfter(std::uint64_t number) const;
    /// The number of the oldest entry that is there, or else of the next to come.
    [[nodiscard]] std::uint64_t oldest() const;
    /// The highest number given; 0 before the first.
    [[nodiscard]] std::uint64_t last() const;
    /// Problems since the last clearing, those of dropped entries included.
    [[nodiscard]] std::uint64_t problems() const;
    /// Whether so many entries of the kind are there in time.
    [[nodiscard]] bool await(std::string_view kind, std::size_t count, std::chrono::milliseconds most) const;

private:
    using Shared = std::shared_ptr<const LedgerEntry>;

    const std::size_t mostEntries_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    mutable std::mutex mutex_;
    mutable std::condition_variable added_;
    std::deque<Shared> entries_;
    std::uint64_t next_ = 1;
    std::uint64_t problems_ = 0;
};

}  // namespace velmora::sandbox
