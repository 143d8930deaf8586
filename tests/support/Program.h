#pragma once

#include "harness/TemporaryDirectory.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmora::test {

/// How a program ended, and what it wrote until then.
struct Ended {
    /// -1 when it was killed or could not be started.
    int status = -1;
    std::string output = {};
    std::string errors = {};
};

/// Starts a program, the first of these words, with these variables beside those of this process and with
/// these files; 0 when it could not be started.
inline pid_t startProgram(std::vector<std::string> words,
                          const std::map<std::string, std::string>& environment,
                          const posix_spawn_file_actions_t& files) {
    std::vector<char*> arguments;
    for (auto& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::vector<std::string> settings;
    for (const auto& [name, value] : environment) settings.push_back(name + "=" + value);
    for (char** one = ::environ; *one != nullptr; ++one) {
        const std::string setting = *one;
        if (!environment.contains(setting.substr(0, setting.find('=')))) settings.push_back(setting);
    }
    std::vector<char*> variables;
    for (auto& setting : settings) variables.push_back(setting.data());
    variables.push_back(nullptr);
    pid_t process = 0;
    const int failure =
        ::posix_spawnp(&process, arguments[0], &files, nullptr, arguments.data(), variables.data());
    return failure == 0 ? process : 0;
}

/// -1 of a process that was killed, or is none.
inline int statusOf(pid_t process) {
    int status = -1;
    if (process > 0) ::waitpid(process, &status, 0);
    return process > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Runs a program to its end.
inline Ended runProgram(const std::vector<std::string>& words,
                        const std::map<std::string, std::string>& environment = {}) {
    const TemporaryDirectory folder;
    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    const int flags = O_WRONLY | O_CREAT;
    ::posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, (folder / "out").c_str(), flags, 0600);
    ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, (folder / "err").c_str(), flags, 0600);
    const auto process = startProgram(words, environment, files);
    ::posix_spawn_file_actions_destroy(&files);

    const int status = statusOf(process);
    const auto textOf = [&folder](const char* name) {
        return (std::ostringstream() << std::ifstream(folder / name).rdbuf()).str();
    };
    return {.status = status, .output = textOf("out"), .errors = textOf("err")};
}

/// A program that runs beside the test, which talks with it line by line. A test that is done with it closes
/// what connects them and waits for it, so that it ends where it reads or writes on.
class RunningProgram {
public:
    explicit RunningProgram(const std::vector<std::string>& words,
                            const std::map<std::string, std::string>& environment = {}) {
        std::array<int, 2> input{};
        std::array<int, 2> output{};
        if (::pipe2(input.data(), O_CLOEXEC) != 0 || ::pipe2(output.data(), O_CLOEXEC) != 0) return;
        posix_spawn_file_actions_t files;
        ::posix_spawn_file_actions_init(&files);
        ::posix_spawn_file_actions_adddup2(&files, input[0], STDIN_FILENO);
        ::posix_spawn_file_actions_adddup2(&files, output[1], STDOUT_FILENO);
        process_ = startProgram(words, environment, files);
        ::posix_spawn_file_actions_destroy(&files);
        ::close(input[0]);
        ::close(output[1]);
        input_ = input[1];
        output_ = ::fdopen(output[0], "r");
    }

    ~RunningProgram() {
        if (output_ != nullptr) std::fclose(output_);
        wait();
    }

    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    /// Without its end; empty when no more comes.
    std::string line() {
        std::string text(4096, '\0');
        if (output_ == nullptr || std::fgets(text.data(), static_cast<int>(text.size()), output_) == nullptr)
            return "";
        return text.substr(0, text.find('\n'));
    }

    /// Writes a line to its input.
    void say(const std::string& line) const {
        const auto text = line + "\n";
        EXPECT_EQ(::write(input_, text.data(), text.size()), static_cast<ssize_t>(text.size())) << line;
    }

    void signal(int number) const {
        if (process_ > 0) ::kill(process_, number);
    }

    /// At once, wherever it is. What it wrote until then can still be read.
    void kill() {
        signal(SIGKILL);
        wait();
    }

    /// Closes its input and lets it come to its end; the status of that, -1 when it was killed.
    int wait() {
        if (input_ >= 0) ::close(input_);
        input_ = -1;
        const int status = statusOf(process_);
        process_ = 0;
        return status;
    }

private:
    pid_t process_ = 0;
    int input_ = -1;
    std::FILE* output_ = nullptr;
};

}  // namespace velmora::test
