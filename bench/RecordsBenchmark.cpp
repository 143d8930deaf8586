// What a record costs over the bare JSON library: text to records, records to text, and how both grow.

#include "model/RecordOutput.h"
#include "model/VLAdSuggestion.h"
#include "model/VLSuggestionListDirectResponseModel.h"
#include "platform/Json.h"
#include "support/Comparison.h"
#include "support/Suggestions.h"

#include <cstdio>

#include <benchmark/benchmark.h>

using namespace velmora;

namespace {

std::shared_ptr<VLSuggestionListDirectResponseModel> read(const std::string& text) {
    auto value = platform::parseJson(text);
    return recordFrom<VLSuggestionListDirectResponseModel>(value ? value->if_object() : nullptr);
}

}  // namespace

int main() {
    const auto text = bench::answer(1000);
    const auto record = read(text);
    // The same text that the record writes: it has more entries than the one that was read.
    const auto value = boost::json::parse(recordToJson(*record).value());

    bench::Comparison comparison("1000 suggestions, " + std::to_string(text.size() / 1024) + " KB");
    comparison.measure(
        "text to records", 1.6, [&] { benchmark::DoNotOptimize(read(text)); },
        [&] { benchmark::DoNotOptimize(boost::json::parse(text)); });
    comparison.measure(
        "records to text", 1.6, [&] { benchmark::DoNotOptimize(recordToJson(*record)); },
        [&] { benchmark::DoNotOptimize(boost::json::serialize(value)); });

    std::printf("\nA suggestion's share of an answer, ns, ours and bare\n  %10s %10s %10s %10s %10s\n",
                "count", "read", "bare", "written", "bare");
    for (const int count : {10, 100, 1000, 5000, 20000}) {
        const auto answer = bench::answer(count);
        const auto records = read(answer);
        const auto tree = boost::json::parse(recordToJson(*records).value());
        const auto share = [&](const std::function<void()>& work) {
            return bench::Comparison::nanoseconds(work) / count;
        };
        std::printf("  %10d %10.0f %10.0f %10.0f %10.0f\n", count,
                    share([&] { benchmark::DoNotOptimize(read(answer)); }),
                    share([&] { benchmark::DoNotOptimize(boost::json::parse(answer)); }),
                    share([&] { benchmark::DoNotOptimize(recordToJson(*records)); }),
                    share([&] { benchmark::DoNotOptimize(boost::json::serialize(tree)); }));
    }
    return comparison.result();
}
