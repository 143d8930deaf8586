// A console program: asks for an ad, hears that its time is up, and shuts down. Ends with status 0 when that
// came as it should, without anything of a toolkit in the process.

#include "harness/Await.h"

#include <fstream>
#include <iostream>
#include <string>

#include <velmora/velmora.h>

namespace {

using velmora::Velmora;
using velmora::test::Await;

/// Parts of names of libraries that belong to what shows.
bool hasToolkit() {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        for (const char* name : {"/libQt", "/libX11", "/libwayland", "/libGL", "/libgst", "/libgtk"}) {
            if (line.find(name) == std::string::npos) continue;
            std::cerr << line << std::endl;
            return true;
        }
    }
    return false;
}

}  // namespace

int main() {
    static auto* const heard = new Await<std::string>;
    Velmora::initializeWithAppKey("console");
    Velmora::requestAdForZone(
        "expiring", [](const auto&) { heard->add("available"); }, [] { heard->add("none"); },
        [](const std::string& message) { heard->add(message); }, [](const auto&) { heard->add("expiring"); });
    static_cast<void>(heard->count(2));
    Velmora::shutDown();
    for (const auto& one : heard->values()) std::cout << one << std::endl;
    return hasToolkit() ? 2 : 0;
}
