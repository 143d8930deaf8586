#include "harness/TemporaryDirectory.h"
#include "support/Exchange.h"

#include <csignal>
#include <cstdio>
#include <filesystem>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmora::test {

namespace {

/// The program under a shell, whose process it takes over.
class Program {
public:
    explicit Program(const std::string& options)
        : output_(::popen(("echo $$; exec " VELMORA_SANDBOX_PROGRAM " " + options + " 2>&1").c_str(), "r")) {
        process_ = std::stoi(line());
    }

    std::string line() {
        std::string text(4096, '\0');
        if (std::fgets(text.data(), static_cast<int>(text.size()), output_) == nullptr) return "";
        return text.substr(0, text.find('\n'));
    }

    void signal(int number) const { ::kill(process_, number); }

    /// The status that it ends with.
    int wait() {
        while (!line().empty()) {
        }
        const int status = ::pclose(output_);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    std::FILE* output_;
    pid_t process_ = 0;
};

TEST(SandboxProgram, SaysWhereItIsServesAndTidiesUp) {
    for (const int number : {SIGTERM, SIGINT}) {
        Program program("");
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
    Program program("--plain --token-seconds 0 --data " + (folder / "new").string());
    const auto says = boost::json::parse(program.line());
    EXPECT_THAT(std::string(says.at("api").as_string()), testing::StartsWith("http://127.0.0.1:"));
    program.signal(SIGTERM);
    EXPECT_EQ(program.wait(), 0);
    EXPECT_TRUE(std::filesystem::exists(folder / "new/ca.pem"));
}

TEST(SandboxProgram, EndsWithItsParentWhenAskedTo) {
    // The shell between hands on one line and dies; what is left of its output ends with the program.
    auto* output = ::popen("bash -c 'exec 3< <(exec " VELMORA_SANDBOX_PROGRAM
                           " --plain --with-parent); read -r line <&3; echo \"$line\"' 2>&1",
                           "r");
    std::string line(4096, '\0');
    ASSERT_NE(std::fgets(line.data(), static_cast<int>(line.size()), output), nullptr);
    const auto says = boost::json::parse(line.substr(0, line.find('\n')));
    EXPECT_EQ(std::fgets(line.data(), static_cast<int>(line.size()), output), nullptr);
    ::pclose(output);
    EXPECT_EQ(ask({.url = std::string(says.at("inspector").as_string())}).status, 0);
}

}  // namespace

}  // namespace velmora::test
