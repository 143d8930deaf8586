#include "sandbox/DataDirectory.h"
#include "sandbox/Sandbox.h"
#include "sandbox/Zones.h"

#include <charconv>
#include <csignal>
#include <ctime>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include <getopt.h>
#include <unistd.h>

using namespace velmora::sandbox;

namespace {

constexpr int kMisused = 2;

struct Arguments {
    Options options;
    std::filesystem::path data;
    bool plain = false;
    bool withParent = false;
    bool help = false;
};

constexpr const char* kUsage = R"(velmora-sandbox: an ad service on this machine, to see the library at work

Prints one line of JSON with "api" (for VELMORA_API_BASE_URL), "ca" (for VELMORA_CA_FILE), "geocoder" (for
VELMORA_GEOCODER_URL) and "inspector" (for a browser), and serves until it is interrupted.

  --videos DIR          the folder that scripts/make-videos filled
  --http-port N         instead of a free port
  --https-port N        instead of a free port
  --plain               print the API base over http
  --data DIR            where to put ca.pem, instead of a folder that goes with the program
  --expiring-millis N   how long the ad of the zone "expiring" is good for; 3000 when not given
  --token-seconds N     how long an access token is good for; 3600 when not given
  --with-parent         end when the process that started this one is gone
  --help                say this

Zones:
)";

/// What stands in the way of starting; the text is for the user.
struct Misused : std::runtime_error {
    using std::runtime_error::runtime_error;
};

int number(const std::string& option, std::string_view text, int most) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < 0 || value > most) {
        throw Misused("--" + option + " takes a whole number from 0 to " + std::to_string(most) + ", not \"" +
                      std::string(text) + "\"");
    }
    return value;
}

std::filesystem::path folder(const std::string& option, const std::string& text) {
    if (!std::filesystem::is_directory(text)) throw Misused("--" + option + ": there is no folder " + text);
    return std::filesystem::absolute(text);
}

Arguments parse(int count, char** words) {
    constexpr int highestPort = 65535;
    constexpr int longest = 1'000'000'000;
    enum Option { videos = 1, httpPort, httpsPort, plain, data, expiring, tokens, withParent, help };
    static const option known[]{{"videos", required_argument, nullptr, videos},
                                {"http-port", required_argument, nullptr, httpPort},
                                {"https-port", required_argument, nullptr, httpsPort},
                                {"plain", no_argument, nullptr, plain},
                                {"data", required_argument, nullptr, data},
                                {"expiring-millis", required_argument, nullptr, expiring},
                                {"token-seconds", required_argument, nullptr, tokens},
                                {"with-parent", no_argument, nullptr, withParent},
                                {"help", no_argument, nullptr, help},
                                {nullptr, 0, nullptr, 0}};
    Arguments arguments;
    auto& options = arguments.options;
    int index = 0;
    for (int which = 0; (which = ::getopt_long(count, words, "", known, &index)) != -1;) {
        const std::string name = known[index].name;
        switch (which) {
        case videos: options.videos = folder(name, optarg); break;
        case httpPort: options.httpPort = number(name, optarg, highestPort); break;
        case httpsPort: options.httpsPort = number(name, optarg, highestPort); break;
        case plain: arguments.plain = true; break;
        case data: arguments.data = optarg; break;
        case expiring:
            options.expiringAfter = std::chrono::milliseconds(number(name, optarg, longest));
            break;
        case tokens: options.tokenLifetime = std::chrono::seconds(number(name, optarg, longest)); break;
        case withParent: arguments.withParent = true; break;
        case help: arguments.help = true; break;
        default: throw Misused("");
        }
    }
    if (optind < count) throw Misused(std::string("\"") + words[optind] + "\" is no option");
    return arguments;
}

void sayHelp() {
    std::cout << kUsage;
    for (const auto& zone : allZones()) {
        std::cout << "  " << zone.name << std::string(22 - zone.name.size(), ' ') << zone.description << "\n";
    }
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
        const auto arguments = parse(count, words);
        if (arguments.help)
            sayHelp();
        else
            serve(arguments);
        return 0;
    } catch (const Misused& error) {
        if (*error.what() != '\0') std::cerr << "velmora-sandbox: " << error.what() << "\n";
        std::cerr << "Try velmora-sandbox --help\n";
        return kMisused;
    } catch (const std::exception& error) {
        std::cerr << "velmora-sandbox: " << error.what() << "\n";
        return 1;
    }
}
