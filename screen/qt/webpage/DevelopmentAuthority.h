#pragma once

#include <memory>

#include <QList>

class QSslCertificate;
class QString;

namespace velmora::webpage {

/// The certificates in the file that VELMORA_CA_FILE names: a developer's own authority, which the engine
/// does not know.
class DevelopmentAuthority {
public:
    /// Reads the file.
    DevelopmentAuthority();
    ~DevelopmentAuthority();
    DevelopmentAuthority(const DevelopmentAuthority&) = delete;
    DevelopmentAuthority& operator=(const DevelopmentAuthority&) = delete;

    /// Whether the chain, server's certificate first, is valid for the host today and leads to one of them.
    /// False without a file.
    [[nodiscard]] bool verifies(const QList<QSslCertificate>& chain, const QString& host) const;

private:
    struct Store;
    std::unique_ptr<Store> store_;
};

}  // namespace velmora::webpage
