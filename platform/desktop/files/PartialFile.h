#pragma once

#include <filesystem>
#include <string_view>

#include <sys/types.h>

namespace velmora::platform {

/// A file in the making: it has no name, so that a process that is killed leaves nothing behind, until it is
/// whole and takes its place at once. Where the file system knows no files without a name, it has a temporary
/// one beside its place.
///
/// Of what fails the first is logged, and from then on everything else fails too.
class PartialFile {
public:
    explicit PartialFile(std::filesystem::path place);
    /// Removes what was not published.
    ~PartialFile();
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;

    /// False when this or anything before it failed.
    bool append(std::string_view bytes);
    /// Flushes it and puts it into its place, over a file that is there.
    bool publish();

private:
    void open();
    [[nodiscard]] bool moveIntoPlace();
    bool fail(const char* what);

    const std::filesystem::path place_;
    /// Empty while it has no name.
    std::filesystem::path temporary_;
    int descriptor_ = -1;
    off_t written_ = 0;
    /// How much of it the kernel was asked to write to the disk already.
    off_t handedOver_ = 0;
};

}  // namespace velmora::platform
