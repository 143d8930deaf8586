// An application with a SQLite and a libcurl of its own in it, of other options: they open nothing, and they
// are exported. Stores something with the library, asks for an ad, and prints what is stored.

#include <cstdlib>
#include <iostream>
#include <memory>

#include <velmora/velmora.h>

extern "C" {
int sqlite3_open_v2(const char*, void** database, int, const char*);
void* curl_multi_init();
}

int sqlite3_open_v2(const char*, void** database, int, const char*) {
    *database = nullptr;
    return 1;
}

void* curl_multi_init() { return nullptr; }

int main() {
    using velmora::Velmora;
    Velmora::initializeWithAppKey("impostor");
    Velmora::setDebugMode(true);
    std::cout << Velmora::isDebugMode() << std::endl;
    Velmora::requestAdForZone(
        "zone", [](const auto&) {}, [] {}, [](const auto&) {}, [](const auto&) {});
    std::_Exit(0);
}
