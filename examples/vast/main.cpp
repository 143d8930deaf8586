// Prints the VAST URL of a zone's pre-roll ad, for a video player of your own.

#include <velmora/velmora.h>

#include <iostream>
#include <string>

namespace {

int usage() {
    std::cerr << "velmora-vast ZONE [TYPE] [VERSION] [KEY] [USER]: the pre-roll's type is 1 or 2, VAST's "
                 "version 2 or 3; "
                 "1 and 3 when not given\n";
    return 2;
}

}  // namespace

int main(int count, char** words) {
    if (count < 2 || count > 6) return usage();
    const auto word = [&](int index, const char* otherwise) {
        return std::string(index < count ? words[index] : otherwise);
    };
    auto configuration = std::make_shared<velmora::VLConfiguration>();
    configuration->setDebugMode(false);
    if (count > 5) configuration->setAppUserId(words[5]);
    velmora::Velmora::initializeWithAppKey(word(4, "demo-key"), configuration);

    const auto url = velmora::VelmoraVAST::getVastUrlForZone(word(1, ""), std::atoi(word(2, "1").c_str()),
                                                             std::atoi(word(3, "3").c_str()));
    if (!url) return 1;
    std::cout << *url << std::endl;
    return 0;
}
