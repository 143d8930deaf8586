// What an application's start looks like: it initialises the library, and the library remembers.

#include <velmora/velmora.h>

#include <iostream>
#include <memory>
#include <string>

using velmora::Velmora;

namespace {

const char* yesOrNo(bool flag) { return flag ? "yes" : "no"; }

void initialise(const char* key, const char* user) {
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

// Without arguments: prints what an earlier run stored. With a key and a user: stores them first.
int main(int count, char** arguments) {
    if (count == 3) initialise(arguments[1], arguments[2]);
    printState();
    return 0;
}
