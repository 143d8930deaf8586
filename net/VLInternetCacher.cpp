#include "net/VLInternetCacher.h"

#include "log/VLLog.h"
#include "platform/FileManager.h"
#include "platform/Immortal.h"
#include "platform/Mutex.h"
#include "platform/UrlSession.h"

#include <map>

namespace velmora {

namespace {

struct FileLocks {
    platform::Mutex mutex;
    std::map<std::string, std::shared_ptr<VLFileLock>> byPath VELMORA_GUARDED_BY(mutex);
};

FileLocks& fileLocks() {
    static platform::Immortal<FileLocks> instance;
    return *instance;
}

/// Whether a file of this name lies in the directory that it is put into.
bool staysInside(const std::string& fileName) {
    return fileName != ".." && fileName.find_first_of(std::string("/\0", 2)) == std::string::npos;
}

std::string pathOf(const std::string& fileName) {
    const auto directory = platform::FileManager::documentsDirectory();
    return fileName.empty() ? directory.string() : (directory / fileName).string();
}

}  // namespace

bool VLFileLock::tryLock() noexcept { return !locked_.exchange(true); }

void VLFileLock::unlock() noexcept { locked_ = false; }

VLInternetCacher& VLInternetCacher::sharedCacher() {
    static platform::Immortal<VLInternetCacher> instance;
    return *instance;
}

std::shared_ptr<VLFileLock> VLInternetCacher::getLockForFileName(const std::string& path) {
    const platform::MutexLock lock(fileLocks().mutex);
    auto& found = fileLocks().byPath[path];
    if (!found) found = std::make_shared<VLFileLock>();
    return found;
}

void VLInternetCacher::getFileAsyncFromUrl(const std::optional<std::string>& url,
                                           const std::optional<std::string>& withFileName,
                                           const Success& success, const Failure& failure) {
    if (!url || !withFileName || !staysInside(*withFileName)) {
        if (failure) failure(url, "Invalid file name");
        return;
    }
    const auto path = pathOf(*withFileName);
    const auto lock = getLockForFileName(path);
    // Its result does not matter: the lock never makes a caller wait, and two downloads of one file may run.
    lock->tryLock();
    if (platform::FileManager::fileExists(path)) {
        if (success) success(*url, path);
        return lock->unlock();
    }

    // The directory itself, which is missing and cannot be made: there is no file to fetch.
    if (withFileName->empty() || *withFileName == ".") {
        if (failure) failure(*url, "Video file download failed");
        return lock->unlock();
    }

    platform::UrlRequest request;
    request.url = *url;
    const auto onEnd = [url = *url, path, lock, success, failure](const platform::UrlOutcome& outcome) {
        if (outcome.error) {
            VLLog("Download Failed");
            if (failure) failure(url, "Video file download failed");
        } else {
            VLLog("Video file downloaded to path:%@", path);
            if (success) success(url, path);
        }
        lock->unlock();
    };
    platform::UrlSession::shared().downloadTask(std::move(request), path, onEnd)->resume();
}

}  // namespace velmora
