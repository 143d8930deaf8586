#include "sandbox/Sandbox.h"
#include "support/Program.h"

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string nameOf(const std::string& program) { return std::filesystem::path(program).filename().string(); }

TEST(Programs, EachSaysHowItIsUsedAndRefusesWhatItDoesNotKnow) {
    for (const std::string program : {VELMORA_PROGRAMS}) {
        const auto helped = runProgram({program, "--help"});
        EXPECT_EQ(helped.status, 0) << program;
        EXPECT_THAT(helped.output, HasSubstr("Usage: " + nameOf(program)));
        EXPECT_EQ(helped.errors, "");

        for (const std::vector<std::string>& words :
             {std::vector<std::string>{program, "--no-such-option"},
              {program, "1", "2", "3", "4", "5", "one word too many"}}) {
            const auto refused = runProgram(words);
            EXPECT_EQ(refused.status, 2) << program << " " << words[1];
            EXPECT_EQ(refused.output, "");
            EXPECT_THAT(refused.errors, StartsWith(nameOf(program) + ": "));
            EXPECT_EQ(std::count(refused.errors.begin(), refused.errors.end(), '\n'), 1) << refused.errors;
        }
    }
}

TEST(Programs, ARequestRefusesValuesThatMeanNothing) {
    for (const char* option : {"--cache=often", "--count=0", "--parallel=-1", "--count=1.5"})
        EXPECT_EQ(runProgram({VELMORA_REQUEST, option}).status, 2) << option;
}

/// A list of what is printed, without what differs from run to run.
boost::json::value linesOf(const std::string& output) {
    boost::json::array lines;
    std::istringstream text(output);
    for (std::string line; std::getline(text, line);) {
        auto object = boost::json::parse(line).as_object();
        object.erase("ms");
        for (const char* volatileText : {"suggestionId", "videoFilePath"}) {
            auto* value = object.if_contains(volatileText);
            if (value != nullptr && value->is_string()) *value = "some";
        }
        lines.push_back(std::move(object));
    }
    return lines;
}

TEST(Programs, ARequestPrintsALineForEveryCallback) {
    const TemporaryDirectory data;
    const sandbox::Sandbox service({.expiringAfter = std::chrono::milliseconds(50)});
    const struct {
        std::vector<std::string> options;
        const char* lines;
    } cases[] = {
        {{"--zone", "no-fill", "--count", "2", "--parallel", "2"},
         R"([{"event": "noAdAvailable", "zone": "no-fill"}, {"event": "noAdAvailable", "zone": "no-fill"}])"},
        {{"--zone", "expiring", "--wait-expiring"},
         R"([{"event": "adAvailable", "zone": "expiring", "cacheType": 2, "suggestionId": "some",
              "videoFilePath": null},
             {"event": "expiring", "zone": "expiring", "cacheType": 2, "suggestionId": "some",
              "videoFilePath": null}])"},
        {{"--zone", "banner", "--cache", "cached"},
         R"([{"event": "adAvailable", "zone": "banner", "cacheType": 1, "suggestionId": "some",
              "videoFilePath": "some"}])"},
        {{"--zone", "broken-video", "--cache", "streamed"},
         R"([{"event": "adAvailable", "zone": "broken-video", "cacheType": 2, "suggestionId": "some",
              "videoFilePath": null}])"},
    };
    for (const auto& one : cases) {
        std::vector<std::string> words{VELMORA_REQUEST};
        words.insert(words.end(), one.options.begin(), one.options.end());
        const auto ended = runProgram(words, {{"VELMORA_API_BASE_URL", service.plainApiUrl()},
                                              {"XDG_DATA_HOME", data.path().string()}});
        EXPECT_EQ(ended.status, 0);
        EXPECT_EQ(linesOf(ended.output), boost::json::parse(one.lines)) << ended.output;
        EXPECT_EQ(ended.errors, "");
    }
    const auto refused =
        runProgram({VELMORA_REQUEST, "--zone", "z"},
                   {{"VELMORA_API_BASE_URL", "http://127.0.0.1:1"}, {"XDG_DATA_HOME", data.path().string()}});
    EXPECT_EQ(refused.status, 0) << refused.errors;
    EXPECT_EQ(linesOf(refused.output), boost::json::parse(R"([{"event": "error", "zone": "z", "message":
        "Error fetching data from server, code:-1 ,error:VelmoraTransportErrorDomain"}])"));
}

}  // namespace

}  // namespace velmora::test
