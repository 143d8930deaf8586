#pragma once

#include "harness/TemporaryDirectory.h"

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

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

/// Runs a program, the first of these words, to its end, with these variables beside those of this process.
inline Ended runProgram(const std::vector<std::string>& words,
                        const std::map<std::string, std::string>& environment = {}) {
    const TemporaryDirectory folder;
    std::vector<std::string> texts = words;
    std::vector<char*> arguments;
    for (auto& text : texts) arguments.push_back(text.data());
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

    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    const int flags = O_WRONLY | O_CREAT;
    ::posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, (folder / "out").c_str(), flags, 0600);
    ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, (folder / "err").c_str(), flags, 0600);
    pid_t process = 0;
    const int failure =
        ::posix_spawn(&process, arguments[0], &files, nullptr, arguments.data(), variables.data());
    ::posix_spawn_file_actions_destroy(&files);
    if (failure != 0) return {};

    int status = 0;
    ::waitpid(process, &status, 0);
    const auto textOf = [&folder](const char* name) {
        return (std::ostringstream() << std::ifstream(folder / name).rdbuf()).str();
    };
    return {.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1,
            .output = textOf("out"),
            .errors = textOf("err")};
}

}  // namespace velmora::test
