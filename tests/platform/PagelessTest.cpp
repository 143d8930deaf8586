#include "support/Environment.h"
#include "support/Files.h"
#include "support/TemporaryDirectory.h"

#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace velmora::test {

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

struct Outcome {
    bool succeeded = false;
    std::string output;
};

Outcome run(const std::string& program) {
    const TemporaryDirectory folder;
    const auto file = (folder / "output").string();
    const bool succeeded = std::system((program + " >" + file + " 2>&1").c_str()) == 0;
    return {succeeded, contentOf(file)};
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
    const Environment platform("QT_QPA_PLATFORM", "offscreen");
    const Environment sandbox("QTWEBENGINE_DISABLE_SANDBOX", "1");
    const Environment variable(GetParam().variable, GetParam().value);

    const auto [succeeded, output] = run(std::string(VELMORA_PAGELESS) + " " + GetParam().name);

    EXPECT_TRUE(succeeded) << output;
    EXPECT_THAT(output, AllOf(HasSubstr("No web page can be shown: the browser engine was not started: "),
                              HasSubstr(GetParam().reason), EndsWith("nothing was loaded\nand left\n")));
}

INSTANTIATE_TEST_SUITE_P(
    Page, WhereTheEngineCannotStart,
    testing::Values(Terms{"gui", "TZ", "UTC", "QApplication"}, Terms{"none", "TZ", "UTC", "QApplication"},
                    Terms{"unshared", "TZ", "UTC", "AA_ShareOpenGLContexts"},
                    Terms{"process", "QTWEBENGINEPROCESS_PATH", "/nowhere/Process", "/nowhere/Process"},
                    Terms{"resources", "QTWEBENGINE_RESOURCES_PATH", "/nowhere", "/nowhere/qtwebengine"}),
    [](const auto& terms) { return terms.param.name; });

TEST(WebPageEngine, WithItsSandboxOnNeverEndsTheHost) {
    const Environment platform("QT_QPA_PLATFORM", "offscreen");
    const Environment sandbox("QTWEBENGINE_DISABLE_SANDBOX", nullptr);

    const auto [succeeded, output] = run(VELMORA_PAGELESS " engine-or-not");

    EXPECT_TRUE(succeeded) << output;
    const bool isRoot = ::geteuid() == 0;
    EXPECT_THAT(output, HasSubstr(isRoot ? "it does not run as root" : "and left"));
}

TEST(WebPageEngine, GoesWithTheApplicationWhosePageIsStillThere) {
    const Environment platform("QT_QPA_PLATFORM", "offscreen");
    const Environment sandbox("QTWEBENGINE_DISABLE_SANDBOX", "1");

    const auto [succeeded, output] = run(VELMORA_PAGELESS " engine");

    EXPECT_TRUE(succeeded) << output;
    EXPECT_THAT(output, AllOf(Not(HasSubstr("No web page")), EndsWith("a page was loaded\nand left\n")));
}

TEST(WebPageEngine, IsNotInAnApplicationThatShowsNoPage) {
    const Environment platform("QT_QPA_PLATFORM", "offscreen");

    const auto [succeeded, output] = run(VELMORA_ADLESS);

    EXPECT_TRUE(succeeded) << output;
}

TEST(WebPageEngine, IsNotNeededToGoOn) {
    const Environment platform("QT_QPA_PLATFORM", "offscreen");
    const TemporaryDirectory elsewhere;
    const auto copy = elsewhere / "pageless";
    std::filesystem::copy_file(VELMORA_PAGELESS, copy);

    const auto [succeeded, output] = run(copy.string() + " engine-missing");

    EXPECT_TRUE(succeeded) << output;
    EXPECT_THAT(output,
                AllOf(HasSubstr("No web page can be shown: "), EndsWith("nothing was loaded\nand left\n")));
}

}  // namespace

}  // namespace velmora::test
