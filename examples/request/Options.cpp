#include "Options.h"

#include <iostream>

#include <QCommandLineParser>
#include <QCoreApplication>

namespace request {

namespace {

std::optional<int> positive(const QString& text) {
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber && number > 0 ? std::optional(number) : std::nullopt;
}

}  // namespace

std::optional<Options> parse(const QCoreApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Asks the ad service for ads and prints a line of JSON for every callback.\n"
        "VELMORA_API_BASE_URL names the service, VELMORA_CA_FILE the certificates "
        "to trust.\nEnds with status 0 when every request had its answer, whichever "
        "it was.");
    parser.addHelpOption();
    parser.addOptions({
        {"app-key", "The application's key.", "key", "demo-key"},
        {"zone", "The zone to ask for; without it, any.", "zone"},
        {"cache", "'cached' downloads the video first, 'streamed' plays it from its URL.", "type",
         "streamed"},
        {"count", "How many ads to ask for.", "number", "1"},
        {"parallel", "How many requests at a time.", "number", "1"},
        {"wait-expiring", "Wait until each ad has expired, for a minute at most."},
        {"debug", "Print what the library logs, on standard error."},
    });
    parser.process(application);

    Options options;
    const auto cache = parser.value("cache");
    const auto count = positive(parser.value("count"));
    const auto parallel = positive(parser.value("parallel"));
    if ((cache != "cached" && cache != "streamed") || !count || !parallel ||
        !parser.positionalArguments().isEmpty()) {
        std::cerr
            << "velmora-request: --cache is 'cached' or 'streamed', --count and --parallel are positive "
               "numbers, and nothing stands without an option; see --help\n";
        return std::nullopt;
    }
    options.appKey = parser.value("app-key").toStdString();
    if (parser.isSet("zone")) options.zone = parser.value("zone").toStdString();
    options.cacheType = cache == "cached" ? 1 : 2;
    options.count = *count;
    options.parallel = *parallel;
    options.waitForExpiry = parser.isSet("wait-expiring");
    options.debug = parser.isSet("debug");
    return options;
}

}  // namespace request
