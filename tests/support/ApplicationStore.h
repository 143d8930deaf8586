#pragma once

#include "platform/Directories.h"
#include "support/Records.h"
#include "support/StoreFiles.h"

#include <filesystem>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace velmora::test {

/// The store of the application as another program has it open. It begins with nothing in it.
class ApplicationStore final : public Stranger {
public:
    ApplicationStore() : Stranger(emptied()) {}

    static std::filesystem::path emptied() {
        for (const char* key : {"developerKey", "appUserId", "debugMode", "velmoraUserId", "requestQueue",
                                "finalstates", "cachedDoneAdSuggestions", "cachedAds"})
            platform::UserDefaults::standard().removeObjectForKey(key);
        return platform::applicationDataDirectory() / "defaults.sqlite3";
    }

    /// The elements of a record's list; none without the record.
    Array list(const std::string& key, std::string_view name) {
        const auto record = valueOf(key);
        return record ? test::valueOf(*record).at(name).as_array() : Array();
    }

    /// Each final state as "id=state", with the passed duration where there is one.
    std::string states() {
        std::string text;
        for (const auto& one : list("finalstates", "states")) {
            const auto& state = one.as_object();
            const auto* id = state.if_contains("suggestionId");
            text += (text.empty() ? "" : " ") + (id != nullptr ? platform::description(*id) : "none") + "=" +
                    platform::description(state.at("state"));
            const auto& extra = state.at("extraInfo").as_object();
            EXPECT_LE(extra.size(), 1U);
            if (const auto* passed = extra.if_contains("passedDuration"))
                text += "/" + platform::description(*passed);
        }
        return text;
    }
};

}  // namespace velmora::test
