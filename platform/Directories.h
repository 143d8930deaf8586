#pragma once

#include <filesystem>
#include <string_view>

namespace velmora::platform {

/// The folder that holds what this application's library keeps: `<data home>/<application
/// identifier>/velmora`, where the data home is XDG_DATA_HOME when that is an absolute path, else
/// ~/.local/share (XDG Base Directory, 0.8). It is not created here. Read anew at every call.
[[nodiscard]] std::filesystem::path applicationDataDirectory();

/// The same for any identifier; one that could leave the data home is changed so that it cannot.
[[nodiscard]] std::filesystem::path applicationDataDirectory(std::string_view identifier);

/// The folder of settings that all applications of this user share: `<configuration home>/velmora`, where the
/// home is XDG_CONFIG_HOME when that is an absolute path, else ~/.config. It is not created here.
[[nodiscard]] std::filesystem::path configurationDirectory();

}  // namespace velmora::platform
