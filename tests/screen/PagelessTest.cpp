#include "harness/TemporaryDirectory.h"
#include "support/Environment.h"
#include "support/Program.h"

#include <filesystem>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <unistd.h>

namespace velmora::test {

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr auto kEmpty = "nothing was loaded\nand left\n";

/// Without a display.
Ended run(const std::vector<std::string>& words, std::map<std::string, std::string> environment = {}) {
    environment.emplace("QT_QPA_PLATFORM", "offscreen");
    environment.emplace("QTWEBENGINE_DISABLE_SANDBOX", "1");
    return runProgram(words, environment);
}

struct Terms {
    const char* name;
    const char* variable;
    const char* value;
    const char* reason;

    friend void PrintTo(const Terms& terms, std::ostream* stream) { *stream << terms.name; }
};

class WhereTheEngineCannotStart : public testing::TestWithParam<Terms> {};

TEST_P(WhereTheEngineCannotStart, ThePageIsEmptyAndTheLogSaysWhy) {
    const auto ended = run({VELMORA_PAGELESS, GetParam().name}, {{GetParam().variable, GetParam().value}});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output, kEmpty);
    EXPECT_THAT(ended.errors,
                AllOf(HasSubstr("No web page can be shown: the browser engine was not started: "),
                      HasSubstr(GetParam().reason)));
}

INSTANTIATE_TEST_SUITE_P(
    Page, WhereTheEngineCannotStart,
    testing::Values(Terms{"gui", "TZ", "UTC", "QApplication"}, Terms{"none", "TZ", "UTC", "QApplication"},
                    Terms{"unshared", "TZ", "UTC", "AA_ShareOpenGLContexts"},
                    Terms{"process", "QTWEBENGINEPROCESS_PATH", "/nowhere/Process", "/nowhere/Process"},
                    Terms{"resources", "QTWEBENGINE_RESOURCES_PATH", "/nowhere", "/nowhere/qtwebengine"}),
    [](const auto& terms) { return terms.param.name; });

TEST(WebPageEngine, WithItsSandboxOnNeverEndsTheHost) {
    const Environment sandbox("QTWEBENGINE_DISABLE_SANDBOX", nullptr);
    const auto ended = runProgram({VELMORA_PAGELESS, "engine-or-not"}, {{"QT_QPA_PLATFORM", "offscreen"}});
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(ended.output, EndsWith("and left\n"));
    EXPECT_THAT(ended.errors, HasSubstr(::geteuid() == 0 ? "it does not run as root" : ""));
}

TEST(WebPageEngine, GoesWithTheApplicationWhosePageIsStillThere) {
    const auto ended = run({VELMORA_PAGELESS, "engine"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output, "a page was loaded\nand left\n");
    EXPECT_THAT(ended.errors, Not(HasSubstr("No web page")));
}

TEST(WebPageEngine, IsNotInAnApplicationThatShowsNoPage) {
    const auto ended = run({VELMORA_ADLESS});
    EXPECT_EQ(ended.status, 0) << ended.errors;
}

TEST(WebPageEngine, IsNotNeededToGoOn) {
    const TemporaryDirectory elsewhere;
    const auto copy = elsewhere / "pageless";
    std::filesystem::copy_file(VELMORA_PAGELESS, copy);
    const auto ended = run({copy.string(), "engine-missing"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output, kEmpty);
    EXPECT_THAT(ended.errors, HasSubstr("No web page can be shown: "));
}

}  // namespace

}  // namespace velmora::test
