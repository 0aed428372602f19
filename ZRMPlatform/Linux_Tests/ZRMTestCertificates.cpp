#include "ZRMPlatform/Linux_Tests/ZRMTestCertificates.h"

#include <atomic>

#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace {

std::shared_ptr<EVP_PKEY> makeKey() {
    return {EVP_EC_gen("P-256"), &EVP_PKEY_free};
}

void addExtension(X509* certificate, int kind, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    auto* const extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str());
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

std::shared_ptr<X509> makeCertificate(const std::string& name, EVP_PKEY* key, long lifeSeconds) {
    static std::atomic<long> serial = 1;
    std::shared_ptr<X509> certificate(X509_new(), &X509_free);
    X509_set_version(certificate.get(), X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), ++serial);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), lifeSeconds);
    X509_set_pubkey(certificate.get(), key);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
    return certificate;
}

}  // namespace

std::string ZRMTestIdentity::certificatePem() const {
    const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), &BIO_free);
    PEM_write_bio_X509(memory.get(), certificate.get());
    char* bytes = nullptr;
    const auto length = BIO_get_mem_data(memory.get(), &bytes);
    return {bytes, static_cast<std::size_t>(length)};
}

ZRMTestIdentity zrm_makeTestAuthority(const std::string& name) {
    const auto key = makeKey();
    auto certificate = makeCertificate(name, key.get(), 86400);
    X509_set_issuer_name(certificate.get(), X509_get_subject_name(certificate.get()));
    addExtension(certificate.get(), NID_basic_constraints, "critical,CA:TRUE");
    addExtension(certificate.get(), NID_key_usage, "critical,keyCertSign,cRLSign");
    X509_sign(certificate.get(), key.get(), EVP_sha256());
    return {std::move(certificate), key};
}

ZRMTestIdentity zrm_makeTestServerIdentity(const ZRMTestIdentity& authority,
                                           const std::vector<std::string>& names,
                                           long lifeSeconds) {
    const auto key = makeKey();
    auto certificate = makeCertificate("server", key.get(), lifeSeconds);
    X509_set_issuer_name(certificate.get(), X509_get_subject_name(authority.certificate.get()));
    std::string alternatives;
    for (const auto& name : names) {
        alternatives += (alternatives.empty() ? "" : ",") + name;
    }
    addExtension(certificate.get(), NID_subject_alt_name, alternatives);
    addExtension(certificate.get(), NID_ext_key_usage, "serverAuth");
    X509_sign(certificate.get(), authority.key.get(), EVP_sha256());
    return {std::move(certificate), key};
}
