#include "sandbox/DataDirectory.h"
#include "sandbox/Sandbox.h"
#include "sandbox/Zones.h"

#include <chrono>
#include <csignal>
#include <ctime>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>

#include <CommandLine.h>
#include <unistd.h>

using namespace velmora::sandbox;

namespace {

struct Arguments {
    Options options;
    std::filesystem::path data;
    bool plain = false;
    bool withParent = false;
};

std::string zonesInLines() {
    std::string lines;
    for (const auto& zone : allZones())
        lines.append(zone.name).append("\t").append(zone.description).append("\n");
    return lines;
}

std::string zonesInWords() {
    std::string words = "Zones:\n";
    for (const auto& zone : allZones()) {
        words.append("  ").append(zone.name).append(22 - zone.name.size(), ' ');
        words.append(zone.description).append("\n");
    }
    return words;
}

std::optional<int> read(int count, char** words, Arguments& arguments) {
    const CLI::Range ports(0, 65535);
    const CLI::Range times(0, 1'000'000'000);
    auto& options = arguments.options;
    CLI::App program(
        "An ad service on this machine, to see the library at work.\n\n"
        "Prints one line of JSON with \"api\" (for VELMORA_API_BASE_URL), \"ca\" (for VELMORA_CA_FILE),\n"
        "\"geocoder\" (for VELMORA_GEOCODER_URL) and \"inspector\" (for a browser), and serves until it is\n"
        "interrupted.",
        "velmora-sandbox");
    program.footer(zonesInWords());
    program.add_option("--videos", options.videos, "The folder that scripts/make-videos filled.")
        ->check(CLI::ExistingDirectory);
    program.add_option("--http-port", options.httpPort, "Instead of a free port.")->check(ports);
    program.add_option("--https-port", options.httpsPort, "Instead of a free port.")->check(ports);
    program.add_flag_callback(
        "--zones",
        [] {
            std::cout << zonesInLines();
            throw CLI::Success();
        },
        "Print a line for each zone, its name and what it is, and end.");
    program.add_flag("--plain", arguments.plain, "Print the API base over http.");
    program.add_option("--data", arguments.data,
                       "Where to put ca.pem, instead of a folder that goes with the program.");
    program
        .add_option_function<int>(
            "--expiring-millis", [&](int time) { options.expiringAfter = std::chrono::milliseconds(time); },
            "How long the ad of the zone \"expiring\" is good for; 3000 when not given.")
        ->check(times);
    program
        .add_option_function<int>(
            "--token-seconds", [&](int time) { options.tokenLifetime = std::chrono::seconds(time); },
            "How long an access token is good for; 3600 when not given.")
        ->check(times);
    program.add_flag("--with-parent", arguments.withParent,
                     "End when the process that started this one is gone.");
    if (const auto end = readCommandLine(program, count, words)) return end;

    if (!options.videos.empty()) options.videos = std::filesystem::absolute(options.videos);
    return std::nullopt;
}

sigset_t endingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

/// A parent of 0 is nobody to wait for.
void waitForTheEnd(const sigset_t& signals, pid_t parent) {
    constexpr timespec often{.tv_sec = 0, .tv_nsec = 250'000'000};
    while (::sigtimedwait(&signals, nullptr, &often) < 0) {
        if (parent != 0 && ::getppid() != parent) return;
    }
}

void serve(const Arguments& arguments) {
    // Asked now: once the line is out, whoever waited for it may go.
    const pid_t parent = arguments.withParent ? ::getppid() : 0;
    // Before there are threads, so that all of them leave the signals to this one.
    const auto signals = endingSignals();
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    const Sandbox sandbox(arguments.options);
    const DataDirectory data(arguments.data);
    const auto authority = data.path() / "ca.pem";
    std::ofstream(authority) << sandbox.authority();
    const auto& api = arguments.plain ? sandbox.plainApiUrl() : sandbox.apiUrl();
    std::cout << boost::json::object{{"api", api},
                                     {"ca", authority.string()},
                                     {"geocoder", sandbox.geocoderUrl()},
                                     {"inspector", sandbox.inspectorUrl()}}
              << std::endl;
    waitForTheEnd(signals, parent);
}

}  // namespace

int main(int count, char** words) {
    try {
        Arguments arguments;
        if (const auto end = read(count, words, arguments)) return *end;
        serve(arguments);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "velmora-sandbox: " << error.what() << "\n";
        return 1;
    }
}
