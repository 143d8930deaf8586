#include "platform/desktop/system/Origin.h"

#include "platform/Log.h"

#include <filesystem>
#include <string>

#include <dlfcn.h>

namespace velmora::platform {

namespace {

std::string fileOf(const void* code) {
    Dl_info info{};
    return ::dladdr(code, &info) != 0 && info.dli_fname != nullptr ? info.dli_fname : "";
}

}  // namespace

void warnOfForeign(const char* library, const void* function) {
    const auto file = fileOf(function);
    const auto own = fileOf(reinterpret_cast<const void*>(&warnOfForeign));
    if (file == own || std::filesystem::path(file).filename().string().starts_with(library)) return;
    log(std::string(library) + " is not the shared library's: its calls go to " + file);
}

}  // namespace velmora::platform
