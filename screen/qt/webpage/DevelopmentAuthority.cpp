#include "screen/qt/webpage/DevelopmentAuthority.h"

#include <cstdlib>

#include <openssl/err.h>
#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

#include <QHostAddress>
#include <QSslCertificate>
#include <QString>

namespace velmora::webpage {

namespace {

/// Frees what OpenSSL has made.
template <auto free>
struct Free {
    template <class T>
    void operator()(T* object) const {
        free(object);
    }
};

void freeStack(STACK_OF(X509) * stack) { sk_X509_pop_free(stack, X509_free); }

using Certificate = std::unique_ptr<X509, Free<X509_free>>;
using Stack = std::unique_ptr<STACK_OF(X509), Free<freeStack>>;
using Context = std::unique_ptr<X509_STORE_CTX, Free<X509_STORE_CTX_free>>;

Certificate parsed(const QSslCertificate& certificate) {
    const auto der = certificate.toDer();
    const auto* bytes = reinterpret_cast<const unsigned char*>(der.constData());
    return Certificate(d2i_X509(nullptr, &bytes, static_cast<long>(der.size())));
}

bool setHost(X509_STORE_CTX& context, const QString& host) {
    auto* parameters = X509_STORE_CTX_get0_param(&context);
    const auto name = host.toStdString();
    if (!QHostAddress(host).isNull()) return X509_VERIFY_PARAM_set1_ip_asc(parameters, name.c_str()) == 1;
    return X509_VERIFY_PARAM_set1_host(parameters, name.data(), name.size()) == 1;
}

}  // namespace

/// Qt verifies against the process-wide list of authorities only, which belongs to the host: hence OpenSSL.
struct DevelopmentAuthority::Store {
    std::unique_ptr<X509_STORE, Free<X509_STORE_free>> certificates{X509_STORE_new()};
};

DevelopmentAuthority::DevelopmentAuthority() {
    const char* file = std::getenv("VELMORA_CA_FILE");
    if (file == nullptr) return;
    auto store = std::make_unique<Store>();
    if (store->certificates && X509_STORE_load_file(store->certificates.get(), file) == 1) {
        store_ = std::move(store);
    }
    ERR_clear_error();
}

DevelopmentAuthority::~DevelopmentAuthority() = default;

bool DevelopmentAuthority::verifies(const QList<QSslCertificate>& chain, const QString& host) const {
    if (!store_ || chain.isEmpty()) return false;
    const auto server = parsed(chain.front());
    const Stack others(sk_X509_new_null());
    for (const auto& certificate : chain.mid(1)) {
        if (auto other = parsed(certificate); other && sk_X509_push(others.get(), other.get()) > 0) {
            static_cast<void>(other.release());
        }
    }
    const Context context(X509_STORE_CTX_new());
    const bool verified =
        server && context &&
        X509_STORE_CTX_init(context.get(), store_->certificates.get(), server.get(), others.get()) == 1 &&
        X509_STORE_CTX_set_default(context.get(), "ssl_server") == 1 && setHost(*context, host) &&
        X509_verify_cert(context.get()) == 1;
    ERR_clear_error();
    return verified;
}

}  // namespace velmora::webpage
