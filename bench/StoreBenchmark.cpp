// What the store costs over bare SQLite and bare JSON: the same text under the same settings.

#include "model/RecordOutput.h"
#include "model/VLAdSuggestion.h"
#include "model/VLSuggestionListDirectResponseModel.h"
#include "platform/UserDefaults.h"
#include "support/BareStore.h"
#include "support/Comparison.h"
#include "support/Suggestions.h"

#include <filesystem>

#include <benchmark/benchmark.h>
#include <stdlib.h>

using namespace velmora;

int main() {
    std::string folder = (std::filesystem::temp_directory_path() / "velmora-bench-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) return 1;

    // Both sides keep the same text: what the record writes.
    std::shared_ptr<VLSuggestionListDirectResponseModel> record;
    std::string text;
    for (int count = 1; text.size() < 10 * 1024; ++count) {
        auto value = boost::json::parse(bench::answer(count));
        record = recordFrom<VLSuggestionListDirectResponseModel>(value.if_object());
        text = recordToJson(*record).value();
    }
    const auto value = boost::json::parse(text);

    int result = 0;
    {
        platform::UserDefaults defaults(std::filesystem::path(folder) / "ours.sqlite3");
        bench::BareStore bare(std::filesystem::path(folder) / "bare.sqlite3");
        const auto setOurs = [&] { defaults.setJson(recordToJson(*record), "key"); };
        const auto getOurs = [&] {
            auto stored = defaults.objectForKey("key");
            benchmark::DoNotOptimize(
                recordFrom<VLSuggestionListDirectResponseModel>(stored ? stored->if_object() : nullptr));
        };

        bench::Comparison comparison("A record of " + std::to_string(text.size()) + " bytes");
        comparison.measure("set", 1.3, setOurs, [&] { bare.set(value); });
        // The bare side makes no record of the value.
        comparison.measure("get", 1.6, getOurs, [&] { benchmark::DoNotOptimize(bare.get()); });

        const auto many = bench::answer(100);
        defaults.setJson(many, "list");
        bare.set(many);
        comparison.measure(
            "add to a list of 100", 2,
            [&] { defaults.appendToList("suggestions", R"({"suggestions":[{"title":"t"}]})", "list"); },
            [&] { bare.append(R"({"title":"t"})", "$.suggestions[#]"); });
        result = comparison.result();
    }
    std::filesystem::remove_all(folder);
    return result;
}
