// Another application's process at a store. Says "ready", and does what its words say at the first line of
// its input:
//
//     keeper FILE range FIRST COUNT    stores each of these numbers, reads it back, and says how often it
//     logged keeper FILE count FIRST          stores one number after the other, and says each when it is
//     stored keeper FILE transaction          says when it has changed "first" and removed "second", and
//     never ends it
//
// Ends with status 1 when a number is not there.

#include "platform/Log.h"
#include "platform/UserDefaults.h"

#include <cstdlib>
#include <iostream>
#include <string>

namespace {

using velmora::platform::UserDefaults;
using velmora::platform::Value;

void say(const std::string& text) { std::cout << text << std::endl; }

void waitForALine() {
    std::string line;
    // Nobody is there any more.
    if (!std::getline(std::cin, line)) std::_Exit(2);
}

int storeRange(const std::string& file, int first, int count) {
    int logged = 0;
    velmora::platform::setLogSink([&](std::string_view) { ++logged; });
    UserDefaults defaults(file);
    for (int number = first; number < first + count; ++number) {
        const auto key = "key" + std::to_string(1000 + number);
        defaults.setObject(number, key);
        if (defaults.objectForKey(key) != Value(number)) return 1;
        defaults.setObject(number, "shared");
    }
    say(std::to_string(logged));
    return 0;
}

[[noreturn]] void countOn(const std::string& file, int first) {
    UserDefaults defaults(file);
    for (int number = first;; ++number) {
        defaults.setObject(number, "number");
        say(std::to_string(number));
    }
}

void changeAndWait(const std::string& file) {
    UserDefaults defaults(file);
    defaults.inOneTransaction([&] {
        defaults.setObject("new", "first");
        defaults.removeObjectForKey("second");
        say("changed");
        waitForALine();
    });
}

}  // namespace

int main(int count, char** words) {
    const std::string file = words[1];
    const std::string task = words[2];
    say("ready");
    waitForALine();
    if (task == "range" && count == 5) return storeRange(file, std::atoi(words[3]), std::atoi(words[4]));
    if (task == "count" && count == 4) countOn(file, std::atoi(words[3]));
    if (task == "transaction") changeAndWait(file);
    return 2;
}
