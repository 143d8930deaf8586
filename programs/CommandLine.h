#pragma once

#include <optional>

#include <CLI/CLI.hpp>

/// Reads the command line of a program, whose options `program` lists. Absent when the program is to go on;
/// otherwise the status that it is to end with: 0 after `--help`, 2 after a line on standard error that says
/// what is wrong.
[[nodiscard]] inline std::optional<int> readCommandLine(CLI::App& program, int count,
                                                        const char* const* words) {
    program.failure_message([](const CLI::App* which, const CLI::Error& error) {
        return which->get_name() + ": " + error.what() + "; see --help\n";
    });
    try {
        program.parse(count, words);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        constexpr int misused = 2;
        return program.exit(error) == 0 ? 0 : misused;
    }
}
