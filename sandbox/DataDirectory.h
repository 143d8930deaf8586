#pragma once

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace velmora::sandbox {

/// The folder of that name, made when it is not there; for an empty name a new one, which goes with the
/// object.
class DataDirectory {
public:
    explicit DataDirectory(const std::filesystem::path& wanted) : isOurs_(wanted.empty()) {
        if (!isOurs_) {
            path_ = std::filesystem::absolute(wanted);
            std::filesystem::create_directories(path_);
            return;
        }
        auto name = (std::filesystem::temp_directory_path() / "velmora-sandbox-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            throw std::system_error(errno, std::generic_category(), "No folder can be made for ca.pem");
        path_ = name;
    }

    ~DataDirectory() {
        std::error_code error;
        if (isOurs_) std::filesystem::remove_all(path_, error);
    }

    DataDirectory(const DataDirectory&) = delete;
    DataDirectory& operator=(const DataDirectory&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    const bool isOurs_;
    std::filesystem::path path_;
};

}  // namespace velmora::sandbox
