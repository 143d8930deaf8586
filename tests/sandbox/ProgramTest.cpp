#include "support/Program.h"
#include "harness/TemporaryDirectory.h"
#include "support/Exchange.h"

#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

TEST(SandboxProgram, SaysWhereItIsServesAndTidiesUp) {
    for (const int number : {SIGTERM, SIGINT}) {
        RunningProgram program({VELMORA_SANDBOX_PROGRAM});
        const auto says = boost::json::parse(program.line());
        const std::string authority(says.at("ca").as_string());
        const std::string api(says.at("api").as_string());
        const std::string inspector(says.at("inspector").as_string());
        EXPECT_THAT(api, testing::StartsWith("https://127.0.0.1:"));
        EXPECT_EQ(ask({.url = api + "/token/", .authorityFile = authority}).status, 200);
        EXPECT_THAT(ask({.url = inspector}).body, testing::HasSubstr("</html>"));
        program.signal(number);
        EXPECT_EQ(program.wait(), 0);
        EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(authority).parent_path()));
    }
}

TEST(SandboxProgram, TakesItsOptions) {
    const TemporaryDirectory folder;
    RunningProgram program(
        {VELMORA_SANDBOX_PROGRAM, "--plain", "--token-seconds", "0", "--data", folder / "new"});
    const auto says = boost::json::parse(program.line());
    EXPECT_THAT(std::string(says.at("api").as_string()), testing::StartsWith("http://127.0.0.1:"));
    program.signal(SIGTERM);
    EXPECT_EQ(program.wait(), 0);
    EXPECT_TRUE(std::filesystem::exists(folder / "new/ca.pem"));
}

TEST(SandboxProgram, EndsWithItsParentWhenAskedTo) {
    // The shell between hands on one line and dies; what is left of its output ends with the program.
    RunningProgram shell({"bash", "-c",
                          "exec 2>&1 3< <(exec " VELMORA_SANDBOX_PROGRAM
                          " --plain --with-parent); read -r line <&3; echo \"$line\""});
    const auto says = boost::json::parse(shell.line());
    EXPECT_EQ(shell.line(), "");
    EXPECT_EQ(ask({.url = std::string(says.at("inspector").as_string())}).status, 0);
}

}  // namespace

}  // namespace velmora::test
