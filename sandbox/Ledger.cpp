#include "sandbox/Ledger.h"

#include <algorithm>

namespace velmora::sandbox {

namespace json = boost::json;

namespace {

constexpr std::size_t kLongestBody = std::size_t{64} << 10U;

json::object fields(const Fields& from) {
    json::object object;
    for (const auto& [name, value] : from) object.emplace(name, value);
    return object;
}

json::value bodyOf(const std::string& text) {
    boost::system::error_code error;
    auto value = json::parse(text, error);
    return error ? json::value(text) : value;
}

json::object describe(const LedgerEntry& entry) {
    const auto& request = entry.request;
    return {{"number", entry.number},
            {"time", entry.time},
            {"sinceStart", entry.sinceStart},
            {"secure", request.secure},
            {"method", request.method},
            {"path", request.path},
            {"query", fields(request.query)},
            {"headers", fields(request.headers)},
            {"body", bodyOf(request.body)},
            {"status", entry.status},
            {"kind", entry.kind},
            {"zone", entry.zone ? json::value(*entry.zone) : json::value()},
            {"problems", json::array(entry.problems.begin(), entry.problems.end())}};
}

template <class Duration>
std::int64_t milliseconds(Duration duration) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(duration).count();
}

}  // namespace

Ledger::Ledger(std::size_t mostEntries) : mostEntries_(mostEntries) {}

void Ledger::add(LedgerEntry entry) {
    if (entry.request.body.size() > kLongestBody) entry.request.body.resize(kLongestBody);
    entry.time = milliseconds(std::chrono::system_clock::now().time_since_epoch());
    entry.sinceStart = milliseconds(std::chrono::steady_clock::now() - start_);
    const auto shared = std::make_shared<LedgerEntry>(std::move(entry));

    const std::lock_guard lock(mutex_);
    shared->number = next_++;
    problems_ += shared->problems.size();
    entries_.push_back(shared);
    if (entries_.size() > mostEntries_) entries_.pop_front();
    added_.notify_all();
}

void Ledger::clear() {
    const std::lock_guard lock(mutex_);
    entries_.clear();
    problems_ = 0;
}

json::array Ledger::entriesAfter(std::uint64_t number) const {
    std::vector<Shared> wanted;
    {
        const std::lock_guard lock(mutex_);
        const auto first = std::partition_point(entries_.begin(), entries_.end(),
                                                [&](const auto& entry) { return entry->number <= number; });
        wanted.assign(first, entries_.end());
    }
    json::array list;
    list.reserve(wanted.size());
    for (const auto& entry : wanted) list.push_back(describe(*entry));
    return list;
}

std::uint64_t Ledger::oldest() const {
    const std::lock_guard lock(mutex_);
    return entries_.empty() ? next_ : entries_.front()->number;
}

std::uint64_t Ledger::last() const {
    const std::lock_guard lock(mutex_);
    return next_ - 1;
}

std::uint64_t Ledger::problems() const {
    const std::lock_guard lock(mutex_);
    return problems_;
}

bool Ledger::await(std::string_view kind, std::size_t count, std::chrono::milliseconds most) const {
    const auto isWanted = [&](const auto& entry) { return entry->kind == kind; };
    std::unique_lock lock(mutex_);
    return added_.wait_for(lock, most, [&] {
        return static_cast<std::size_t>(std::count_if(entries_.begin(), entries_.end(), isWanted)) >= count;
    });
}

}  // namespace velmora::sandbox
