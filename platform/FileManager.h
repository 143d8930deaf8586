#pragma once

#include <filesystem>
#include <string_view>

namespace velmora::platform {

/// The files of the application. Any thread; what fails is a log line.
class FileManager {
public:
    FileManager() = delete;

    /// Where downloaded media lie. Created, for its owner only, when it is missing and can be.
    [[nodiscard]] static std::filesystem::path documentsDirectory();

    /// Whether there is anything at `path`, a directory included.
    [[nodiscard]] static bool fileExists(const std::filesystem::path& path) noexcept;

    /// Whether a regular file is there, or a link to one.
    [[nodiscard]] static bool isRegularFile(const std::filesystem::path& path) noexcept;

    /// Writes a whole file, for its owner only, and flushes it before it takes its place at once: a reader
    /// sees the old file or the new one. False when it failed; nothing is left behind then.
    [[nodiscard]] static bool write(const std::filesystem::path& path, std::string_view content) noexcept;
};

}  // namespace velmora::platform
