#include "sandbox/Certificates.h"

#include "sandbox/OpenSsl.h"

#include <algorithm>
#include <atomic>
#include <cctype>

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace velmora::sandbox {

namespace {

using Key = Owned<EVP_PKEY, EVP_PKEY_free>;
using Certificate = Owned<X509, X509_free>;

Key makeKey() { return Key(EVP_EC_gen("P-256")); }

void addExtension(X509* certificate, X509* issuer, int kind, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    auto* extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str());
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

/// What the certificate says of itself, and who answers for it.
struct Issue {
    std::string name;
    EVP_PKEY* key = nullptr;
    X509* issuer = nullptr;  ///< null for an authority
    EVP_PKEY* issuerKey = nullptr;
    int validDays = 1;
    std::string alternativeNames = {};
};

Certificate make(const Issue& issue) {
    constexpr long day = 24L * 60 * 60;
    Certificate certificate(X509_new());
    auto* raw = certificate.get();
    X509_set_version(raw, 2);
    static std::atomic<long> serial = 1;
    ASN1_INTEGER_set(X509_get_serialNumber(raw), serial++);
    X509_gmtime_adj(X509_getm_notBefore(raw), -10 * day);
    X509_gmtime_adj(X509_getm_notAfter(raw), issue.validDays * day);
    X509_set_pubkey(raw, issue.key);
    const auto* bytes = reinterpret_cast<const unsigned char*>(issue.name.c_str());
    X509_NAME_add_entry_by_txt(X509_get_subject_name(raw), "CN", MBSTRING_UTF8, bytes, -1, -1, 0);
    X509_set_issuer_name(raw, X509_get_subject_name(issue.issuer != nullptr ? issue.issuer : raw));
    if (issue.issuer == nullptr) addExtension(raw, raw, NID_basic_constraints, "critical,CA:TRUE");
    if (!issue.alternativeNames.empty())
        addExtension(raw, issue.issuer, NID_subject_alt_name, issue.alternativeNames);
    X509_sign(raw, issue.issuerKey, EVP_sha256());
    return certificate;
}

template <class Write>
std::string pem(const Write& write) {
    BIO* memory = BIO_new(BIO_s_mem());
    write(memory);
    char* bytes = nullptr;
    const long size = BIO_get_mem_data(memory, &bytes);
    std::string text(bytes, static_cast<std::size_t>(size));
    BIO_free(memory);
    return text;
}

std::string alternativeNames(const std::vector<std::string>& hosts) {
    std::string names;
    for (const auto& host : hosts) {
        const bool isAddress = std::isdigit(static_cast<unsigned char>(host.front())) != 0;
        names += (names.empty() ? "" : ",") + std::string(isAddress ? "IP:" : "DNS:") + host;
    }
    return names;
}

}  // namespace

Certificates Certificates::makeFor(const std::vector<std::string>& hosts, int validDays) {
    // Authorities of one name would be taken for each other.
    static std::atomic<int> count = 0;
    const auto authorityKey = makeKey();
    const auto authority = make({.name = "Sandbox authority " + std::to_string(count++),
                                 .key = authorityKey.get(),
                                 .issuerKey = authorityKey.get(),
                                 .validDays = std::max(validDays, 1)});
    const auto key = makeKey();
    const auto server = make({.name = hosts.front(),
                              .key = key.get(),
                              .issuer = authority.get(),
                              .issuerKey = authorityKey.get(),
                              .validDays = validDays,
                              .alternativeNames = alternativeNames(hosts)});
    return {.authority = pem([&](BIO* memory) { PEM_write_bio_X509(memory, authority.get()); }),
            .certificate = pem([&](BIO* memory) { PEM_write_bio_X509(memory, server.get()); }),
            .key = pem([&](BIO* memory) {
                PEM_write_bio_PrivateKey(memory, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
            })};
}

}  // namespace velmora::sandbox
