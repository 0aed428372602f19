#include "Tools/zrm-risk-server/ZRMCertificateMaker.h"

#include <array>
#include <stdexcept>

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace {

constexpr int kSerialBits = 127;
constexpr long kSecondsPerDay = 86400;
constexpr long kBackdatingSeconds = 3600;

[[noreturn]] void fail(const std::string& what) {
    std::array<char, 256> reason{};
    ERR_error_string_n(ERR_get_error(), reason.data(), reason.size());
    throw std::runtime_error(what + ": " + reason.data());
}

void expect(bool succeeded, const std::string& what) {
    if (!succeeded) {
        fail(what);
    }
}

void setSerial(X509* certificate) {
    const std::unique_ptr<BIGNUM, void (*)(BIGNUM*)> number(BN_new(), BN_free);
    expect(number && BN_rand(number.get(), kSerialBits, BN_RAND_TOP_ONE, BN_RAND_BOTTOM_ANY) == 1 &&
               BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate)) != nullptr,
           "setting the serial number");
}

void setSubject(X509* certificate, const std::string& commonName) {
    auto* name = X509_get_subject_name(certificate);
    const auto add = [name](const char* field, const std::string& value) {
        expect(X509_NAME_add_entry_by_txt(name, field, MBSTRING_UTF8,
                                          reinterpret_cast<const unsigned char*>(value.data()),
                                          static_cast<int>(value.size()), -1, 0) == 1,
               "setting the subject");
    };
    add("O", "Velorin");
    add("CN", commonName);
}

void addExtension(X509* certificate, X509* issuer, int kind, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const std::unique_ptr<X509_EXTENSION, void (*)(X509_EXTENSION*)> extension(
        X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str()), X509_EXTENSION_free);
    expect(extension && X509_add_ext(certificate, extension.get(), -1) == 1,
           "adding the extension " + value);
}

std::string pemText(const std::unique_ptr<BIO, int (*)(BIO*)>& bio) {
    char* start = nullptr;
    const long length = BIO_get_mem_data(bio.get(), &start);
    return {start, static_cast<std::size_t>(length)};
}

std::unique_ptr<BIO, int (*)(BIO*)> memoryBio() {
    std::unique_ptr<BIO, int (*)(BIO*)> bio(BIO_new(BIO_s_mem()), BIO_free);
    expect(bio != nullptr, "allocating memory");
    return bio;
}

std::unique_ptr<BIO, int (*)(BIO*)> readingBio(const std::string& text) {
    std::unique_ptr<BIO, int (*)(BIO*)> bio(
        BIO_new_mem_buf(text.data(), static_cast<int>(text.size())), BIO_free);
    expect(bio != nullptr, "allocating memory");
    return bio;
}

}  // namespace

ZRMKeyPointer zrm_makeKey(ZRMKeyKind kind) {
    EVP_PKEY* key = nullptr;
    switch (kind) {
        case ZRMKeyKind::Rsa2048:
            key = EVP_RSA_gen(2048);
            break;
        case ZRMKeyKind::Rsa3072:
            key = EVP_RSA_gen(3072);
            break;
        case ZRMKeyKind::EcP256:
            key = EVP_EC_gen("P-256");
            break;
    }
    expect(key != nullptr, "making a key");
    return ZRMKeyPointer(key);
}

ZRMCertificatePointer zrm_makeCertificate(const ZRMCertificateRequest& request, EVP_PKEY* key,
                                          const ZRMIdentity* issuer) {
    ZRMCertificatePointer made(X509_new());
    auto* certificate = made.get();
    expect(certificate != nullptr && X509_set_version(certificate, X509_VERSION_3) == 1,
           "making a certificate");
    setSerial(certificate);
    setSubject(certificate, request.commonName);
    auto* issuerCertificate = issuer != nullptr ? issuer->certificate.get() : certificate;
    const long from = -kBackdatingSeconds - request.validFromDaysAgo * kSecondsPerDay;
    expect(X509_set_issuer_name(certificate, X509_get_subject_name(issuerCertificate)) == 1 &&
               X509_gmtime_adj(X509_getm_notBefore(certificate), from) != nullptr &&
               X509_gmtime_adj(X509_getm_notAfter(certificate),
                               request.validDays * kSecondsPerDay) != nullptr &&
               X509_set_pubkey(certificate, key) == 1,
           "filling in the certificate");
    const auto add = [&](int kind, const std::string& prefix, const std::string& value) {
        if (!value.empty()) {
            addExtension(certificate, issuerCertificate, kind, prefix + value);
        }
    };
    add(NID_basic_constraints, "", request.basicConstraints);
    add(NID_key_usage, "", request.keyUsage);
    add(NID_ext_key_usage, "", request.extendedKeyUsage);
    add(NID_subject_key_identifier, "", "hash");
    add(NID_authority_key_identifier, "", "keyid:always");
    add(NID_subject_alt_name, "", request.subjectAltName);
    add(NID_info_access, "OCSP;URI:", request.ocspUrl);
    add(NID_crl_distribution_points, "URI:", request.crlUrl);
    auto* signingKey = issuer != nullptr ? issuer->key.get() : key;
    expect(X509_sign(certificate, signingKey, EVP_sha256()) > 0, "signing the certificate");
    return made;
}

ZRMIdentity zrm_makeIdentity(const ZRMCertificateRequest& request, ZRMKeyKind kind,
                             const ZRMIdentity* issuer) {
    auto key = zrm_makeKey(kind);
    auto certificate = zrm_makeCertificate(request, key.get(), issuer);
    return {std::move(key), std::move(certificate)};
}

std::string zrm_pemFromKey(EVP_PKEY* key) {
    const auto bio = memoryBio();
    expect(PEM_write_bio_PrivateKey(bio.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1,
           "writing a key");
    return pemText(bio);
}

std::string zrm_pemFromCertificate(X509* certificate) {
    const auto bio = memoryBio();
    expect(PEM_write_bio_X509(bio.get(), certificate) == 1, "writing a certificate");
    return pemText(bio);
}

std::string zrm_derFromCertificate(X509* certificate) {
    unsigned char* start = nullptr;
    const int length = i2d_X509(certificate, &start);
    expect(length > 0, "writing a certificate");
    std::string der(reinterpret_cast<const char*>(start), static_cast<std::size_t>(length));
    OPENSSL_free(start);
    return der;
}

ZRMKeyPointer zrm_keyFromPem(const std::string& pem) {
    ZRMKeyPointer key(PEM_read_bio_PrivateKey(readingBio(pem).get(), nullptr, nullptr, nullptr));
    expect(key != nullptr, "reading a key");
    return key;
}

ZRMCertificatePointer zrm_certificateFromPem(const std::string& pem) {
    ZRMCertificatePointer certificate(
        PEM_read_bio_X509(readingBio(pem).get(), nullptr, nullptr, nullptr));
    expect(certificate != nullptr, "reading a certificate");
    return certificate;
}
