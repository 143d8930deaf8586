#include "Options.h"

#include <map>

namespace request {

void addTo(CLI::App& program, Options& options) {
    using velmora::VLCacheType;
    const std::map<std::string, VLCacheType> cacheTypes{{"cached", VLCacheType::cached},
                                                        {"streamed", VLCacheType::streamed}};

    program.add_option("--app-key", options.appKey, "The application's key.")->capture_default_str();
    program.add_option("--zone", options.zone, "The zone to ask for; without it, any.");
    program
        .add_option("--cache", options.cacheType,
                    "'cached' downloads the video first, 'streamed' (the default) plays it from its URL.")
        ->transform(CLI::CheckedTransformer(cacheTypes).description("TYPE"));
    program.add_option("--count", options.count, "How many ads to ask for.")
        ->capture_default_str()
        ->check(CLI::Range(1, 1'000'000));
    program.add_option("--parallel", options.parallel, "How many requests at a time.")
        ->capture_default_str()
        ->check(CLI::Range(1, 1'000'000));
    program.add_flag("--wait-expiring", options.waitForExpiry,
                     "Wait until each ad has expired, for a minute at most.");
    program.add_flag("--debug", options.debug, "Print what the library logs, on standard error.");
}

}  // namespace request
