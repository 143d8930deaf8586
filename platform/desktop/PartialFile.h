#pragma once

#include <filesystem>

#include <sys/types.h>

namespace velmora::platform {

/// A file that is being downloaded: written under a temporary name beside its place, and moved there in the
/// end. What fails is logged once, and from then on the rest is dropped.
class PartialFile {
public:
    explicit PartialFile(std::filesystem::path place);
    /// Removes what was not published.
    ~PartialFile();
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;

    void append(const char* bytes, std::size_t size);
    void publish();

private:
    void fail(const char* what);

    const std::filesystem::path place_;
    std::filesystem::path temporary_;
    int descriptor_ = -1;
    off_t written_ = 0;
    /// How much of it the kernel was asked to write to the disk already.
    off_t handedOver_ = 0;
};

}  // namespace velmora::platform
