// Loads a plugin that uses the library, lets it start and stop, and closes it. Ends with status 0 when
// nothing of it is called afterwards.

#include <chrono>
#include <iostream>
#include <thread>

#include <dlfcn.h>

int main(int, char** words) {
    void* plugin = ::dlopen(words[1], RTLD_NOW | RTLD_LOCAL);
    if (plugin == nullptr) {
        std::cerr << ::dlerror() << std::endl;
        return 2;
    }
    using Function = int (*)();
    const auto start = reinterpret_cast<Function>(::dlsym(plugin, "startPlugin"));
    const auto stop = reinterpret_cast<Function>(::dlsym(plugin, "stopPlugin"));
    if (start() != 0) return 3;
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    // What the callbacks held has gone, and none was called.
    if (stop() != 1) return 4;
    ::dlclose(plugin);
    if (::dlopen(words[1], RTLD_NOW | RTLD_NOLOAD) != nullptr) return 5;
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    return 0;
}
