// What an application's start looks like: it initialises the library, and the library remembers.

#include <CommandLine.h>

#include <velmora/velmora.h>

#include <iostream>
#include <memory>
#include <string>

using velmora::Velmora;

namespace {

const char* yesOrNo(bool flag) { return flag ? "yes" : "no"; }

void initialise(const std::string& key, const std::string& user) {
    auto configuration = std::make_shared<velmora::VLConfiguration>();
    configuration->setDebugMode(true);
    configuration->setAppUserId(user);
    Velmora::initializeWithAppKey(key, configuration);
}

void printState() {
    const velmora::VelmoraAd handle;
    std::cout << "library version:        " << Velmora::getVersion() << "\n"
              << "debug mode, as stored:  " << yesOrNo(Velmora::isDebugMode()) << "\n"
              << "id of an empty handle:  " << handle.getId().value_or("none") << "\n"
              << "an empty handle valid:  " << yesOrNo(handle.isValid()) << "\n";
}

}  // namespace

int main(int count, char** words) {
    std::string key;
    std::string user;
    CLI::App program("Prints what the library remembers of an earlier run, or of a key and a user given now.",
                     "velmora-state");
    auto* keyOption = program.add_option("key", key, "The application's key, to be stored first.");
    keyOption->needs(program.add_option("user", user, "The application's own identifier of its user."));
    if (const auto end = readCommandLine(program, count, words)) return *end;

    if (keyOption->count() > 0) initialise(key, user);
    printState();
    return 0;
}
