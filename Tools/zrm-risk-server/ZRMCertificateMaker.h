// Keys and X.509 certificates, made with OpenSSL.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <openssl/evp.h>
#include <openssl/x509.h>

struct ZRMOpenSslFree {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(X509* certificate) const { X509_free(certificate); }
};
using ZRMKeyPointer = std::unique_ptr<EVP_PKEY, ZRMOpenSslFree>;
using ZRMCertificatePointer = std::unique_ptr<X509, ZRMOpenSslFree>;

// A certificate with its private key; both present.
struct ZRMIdentity {
    ZRMKeyPointer key;
    ZRMCertificatePointer certificate;
};

// What a certificate shall say. Extension values are in OpenSSL's configuration syntax.
struct ZRMCertificateRequest {
    std::string commonName;
    long validDays = 0;
    std::string basicConstraints;
    std::string keyUsage;
    std::string extendedKeyUsage;  // empty: none
    std::string subjectAltName;    // empty: none
    std::string ocspUrl{};         // where its revocation is asked for; empty: none
    std::string crlUrl{};          // where the list of the revoked lies; empty: none
    long validFromDaysAgo = 0;     // beside an hour
};

enum class ZRMKeyKind { Rsa2048, Rsa3072, EcP256 };

// These throw std::runtime_error with OpenSSL's reason.
ZRMKeyPointer zrm_makeKey(ZRMKeyKind kind);

// Makes a certificate for the key, signed with SHA-256 by `issuer`, or by the key itself where that
// is null, with a random serial number of 127 bits.
ZRMCertificatePointer zrm_makeCertificate(const ZRMCertificateRequest& request, EVP_PKEY* key,
                                          const ZRMIdentity* issuer);

// Makes a key and a certificate for it.
ZRMIdentity zrm_makeIdentity(const ZRMCertificateRequest& request, ZRMKeyKind kind,
                             const ZRMIdentity* issuer);

// PEM texts. Reading throws std::runtime_error where the text holds no such thing; keys are not
// encrypted.
std::string zrm_pemFromKey(EVP_PKEY* key);
std::string zrm_pemFromCertificate(X509* certificate);
std::string zrm_derFromCertificate(X509* certificate);
ZRMKeyPointer zrm_keyFromPem(const std::string& pem);
ZRMCertificatePointer zrm_certificateFromPem(const std::string& pem);
