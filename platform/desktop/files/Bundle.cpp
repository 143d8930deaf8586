#include "platform/Bundle.h"

#include "platform/Immortal.h"
#include "platform/Json.h"
#include "platform/Log.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

#include <dlfcn.h>

namespace velmora::platform {

namespace {

/// What the file says; empty without one.
Dictionary description(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) return {};
    std::ostringstream text;
    text << stream.rdbuf();
    if (auto value = parseJson(text.str()); value && value->is_object())
        return std::move(value->get_object());
    log("The application's description is not a JSON object, and is ignored: " + file.string());
    return {};
}

Property entry(const Dictionary& dictionary, std::string_view key) {
    const auto* value = dictionary.if_contains({key.data(), key.size()});
    return isValid(value) ? Property(*value) : std::nullopt;
}

std::filesystem::path thisExecutable() {
    std::error_code error;
    const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) return {};
    // The kernel says so of an executable that was replaced while it runs.
    static constexpr std::string_view kReplaced = " (deleted)";
    auto name = path.string();
    if (name.ends_with(kReplaced)) name.resize(name.size() - kReplaced.size());
    return name;
}

}  // namespace

const Bundle& Bundle::main() {
    static Immortal<Bundle> instance(thisExecutable());
    return *instance;
}

Bundle::Bundle(const std::filesystem::path& executable) {
    if (executable.empty()) return;
    const auto said = description(std::filesystem::path(executable) += ".velmora.json");
    identifier_ = asString(entry(said, "identifier"));
    version_ = asString(entry(said, "version"));
    if (const auto info = entry(said, "info"); info && info->is_object()) info_ = info->get_object();

    if (identifier_ && identifier_->empty()) identifier_.reset();
    if (!identifier_ && executable.has_filename()) identifier_ = executable.filename().string();
}

Property Bundle::infoValue(std::string_view key) const { return entry(info_, key); }

std::filesystem::path Bundle::resourcePath(std::string_view name) {
    if (const char* folder = std::getenv("VELMORA_RESOURCES"); folder != nullptr) {
        return std::filesystem::path(folder) / name;
    }
    Dl_info library{};
    if (dladdr(reinterpret_cast<const void*>(&Bundle::resourcePath), &library) == 0) return name;
    const auto folder = std::filesystem::path(library.dli_fname).parent_path();
    std::error_code error;
    if (const auto built = folder / "share" / "velmora"; std::filesystem::is_directory(built, error))
        return built / name;
    return folder / VELMORA_DATA_FROM_LIBRARY / "velmora" / name;
}

}  // namespace velmora::platform
