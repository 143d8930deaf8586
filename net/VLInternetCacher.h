#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace velmora {

/// The lock of one path. Unlike a mutex it may be released by another thread than took it, and more often.
class VLFileLock {
public:
    /// Whether it was free. Never waits.
    bool tryLock() noexcept;
    void unlock() noexcept;

private:
    std::atomic<bool> locked_ = false;
};

/// Keeps downloaded media in the Documents directory, under the name that the caller gives: no folder, no
/// index, no limit, and nothing is ever removed. Any thread.
class VLInternetCacher {
public:
    /// Receives the URL that was asked for and the file's path.
    using Success = std::function<void(const std::string& url, const std::string& localPath)>;
    /// Receives the URL that was asked for, absent if it was, and a message.
    using Failure = std::function<void(const std::optional<std::string>& url, const std::string& message)>;

    /// The one of the process.
    [[nodiscard]] static VLInternetCacher& sharedCacher();

    VLInternetCacher() = default;

    /// The lock of a full path; always the same one.
    [[nodiscard]] std::shared_ptr<VLFileLock> getLockForFileName(const std::string& path);

    /// Sees to it that a file of that name is there, and says where. Either callback may be empty.
    ///
    /// A file that is there is not fetched again, whatever the URL, and `success` runs before this returns;
    /// so does `failure` for an absent argument and for a name that could leave the directory. Otherwise one
    /// of them runs on the session's delegate queue. Whatever the service answers becomes the file, an error
    /// page included; only an exchange that broke off is a failure. A file that could not be written is
    /// reported as a success all the same.
    void getFileAsyncFromUrl(const std::optional<std::string>& url,
                             const std::optional<std::string>& withFileName, const Success& success,
                             const Failure& failure);
};

}  // namespace velmora
