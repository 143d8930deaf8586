// Prints the VAST URL of a zone's pre-roll ad, for a video player of your own.

#include <CommandLine.h>

#include <velmora/velmora.h>

#include <iostream>
#include <string>

using velmora::VLPrerollType;
using velmora::VLVastVersion;

int main(int count, char** words) {
    std::string zone;
    auto type = static_cast<int>(VLPrerollType::notSkippable);
    auto version = static_cast<int>(VLVastVersion::v3);
    std::string key = "demo-key";
    std::string user;
    CLI::App program("Prints the URL from which a video player fetches the pre-roll ad of a zone.",
                     "velmora-vast");
    program.add_option("zone", zone, "The zone.")->required();
    program.add_option("type", type, "1: not to be skipped, 2: may be skipped; another leaves it open.")
        ->capture_default_str();
    program.add_option("version", version, "The version of VAST, 2 or 3; another leaves it open.")
        ->capture_default_str();
    program.add_option("key", key, "The application's key.")->capture_default_str();
    program.add_option("user", user, "The application's own identifier of its user.");
    if (const auto end = readCommandLine(program, count, words)) return *end;

    auto configuration = std::make_shared<velmora::VLConfiguration>();
    if (!user.empty()) configuration->setAppUserId(user);
    velmora::Velmora::initializeWithAppKey(key, configuration);

    const auto url = velmora::VelmoraVAST::getVastUrlForZone(zone, type, version);
    if (!url) return 1;
    std::cout << *url << std::endl;
    return 0;
}
