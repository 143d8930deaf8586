#pragma once

#include "platform/Value.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace velmora::platform {

/// What the host application says of itself, in `<executable>.velmora.json` beside its executable:
/// `{"identifier": "com.example.game", "version": "1.4", "info": {"any key": "any value"}}`.
///
/// Every entry may be missing; without the file, or with one that cannot be read, the identifier is the
/// executable's name. It is read once: it settles where the application's state lies, and never changes while
/// it runs.
class Bundle {
public:
    [[nodiscard]] static const Bundle& main();

    /// Reads what belongs to one executable.
    explicit Bundle(const std::filesystem::path& executable);

    [[nodiscard]] const std::optional<std::string>& identifier() const noexcept { return identifier_; }

    [[nodiscard]] const std::optional<std::string>& version() const noexcept { return version_; }

    [[nodiscard]] Property infoValue(std::string_view key) const;

    /// Where a resource file of the library lies, whether or not it exists: in the folder that
    /// `VELMORA_RESOURCES` names, else in `share/velmora` beside this library file if that is a folder (so it
    /// is in a build tree), else in `velmora` under the data folder of the installation it belongs to.
    [[nodiscard]] static std::filesystem::path resourcePath(std::string_view name);

private:
    std::optional<std::string> identifier_;
    std::optional<std::string> version_;
    Dictionary info_;
};

}  // namespace velmora::platform
