#pragma once

#include "harness/Files.h"
#include "harness/TemporaryDirectory.h"
#include "sandbox/Certificates.h"

#include <atomic>
#include <memory>
#include <string>

namespace velmora::test {

/// A certificate authority and a server certificate, made for this process, with the authority in a file.
class Certificates : public sandbox::Certificates {
public:
    /// For a host name or an IPv4 address; `validDays` may be negative.
    static std::shared_ptr<Certificates> makeFor(const std::string& host, int validDays = 1) {
        return std::make_shared<Certificates>(sandbox::Certificates::makeFor({host}, validDays));
    }

    explicit Certificates(sandbox::Certificates made) : sandbox::Certificates(std::move(made)) {
        static const TemporaryDirectory folder;
        static std::atomic<int> count = 0;
        authorityFile_ = (folder / ("authority-" + std::to_string(count++) + ".pem")).string();
        writeContent(authorityFile_, authority);
    }

    /// The file of the authority, for the client to trust.
    [[nodiscard]] const std::string& authorityFile() const { return authorityFile_; }

private:
    std::string authorityFile_;
};

}  // namespace velmora::test
