#pragma once

#include <CommandLine.h>

#include <optional>
#include <string>

#include <velmora/enumerations.h>

namespace request {

/// What the command line asks for.
struct Options {
    std::string appKey = "demo-key";
    std::optional<std::string> zone;
    velmora::VLCacheType cacheType = velmora::VLCacheType::streamed;
    int count = 1;
    int parallel = 1;
    bool waitForExpiry = false;
    bool debug = false;
};

/// Lets the command line fill the options in, which must outlive it.
void addTo(CLI::App& program, Options& options);

}  // namespace request
