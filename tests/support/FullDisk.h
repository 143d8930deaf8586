#pragma once

#include <csignal>
#include <cstdint>

#include <sys/resource.h>

namespace velmora::test {

/// While this lives no file may grow beyond `size`, and a write that tries fails, as on a full disk.
class FullDisk {
public:
    explicit FullDisk(std::uintmax_t size) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{size, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }

    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signal_);
    }

    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*signal_)(int);
    rlimit before_{};
};

}  // namespace velmora::test
