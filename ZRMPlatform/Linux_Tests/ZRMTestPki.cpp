#include "ZRMPlatform/Linux_Tests/ZRMTestPki.h"

#include <map>
#include <stdexcept>

#include <openssl/asn1.h>
#include <openssl/conf.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/ocsp.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>
#include <openssl/x509v3.h>

namespace {

using Extension = std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)>;

void check(bool good) {
    if (!good) {
        throw std::runtime_error("OpenSSL failed");
    }
}

template <class Encode>
ZRMData derFrom(Encode encode) {
    const int length = encode(nullptr);
    check(length > 0);
    ZRMData der(static_cast<std::size_t>(length));
    auto* cursor = der.data();
    encode(&cursor);
    return der;
}

const EVP_MD* digestNamed(const std::string& name) {
    const auto* digest = EVP_get_digestbyname(name.c_str());
    check(digest != nullptr);
    return digest;
}

Extension makeExtension(X509V3_CTX* context, const std::string& name, const std::string& value) {
    Extension extension(X509V3_EXT_conf(nullptr, context, name.c_str(), value.c_str()),
                        &X509_EXTENSION_free);
    check(extension != nullptr);
    return extension;
}

Extension makeCriticalExtension(const std::string& dottedNumber) {
    return makeExtension(nullptr, dottedNumber, "critical,DER:0500");
}

void setTime(ASN1_TIME* time, std::time_t seconds) {
    check(ASN1_TIME_set(time, seconds) != nullptr);
}

std::shared_ptr<X509> makeCertificate(const ZRMTestCertificateOptions& options, EVP_PKEY* key,
                                      std::time_t from, std::time_t until) {
    static long serial = 1000;
    std::shared_ptr<X509> certificate(X509_new(), &X509_free);
    X509_set_version(certificate.get(), options.isVersion1 ? X509_VERSION_1 : X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), ++serial);
    setTime(X509_getm_notBefore(certificate.get()), from);
    setTime(X509_getm_notAfter(certificate.get()), until);
    X509_set_pubkey(certificate.get(), key);
    const auto* name = reinterpret_cast<const unsigned char*>(options.name.c_str());
    check(X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_UTF8,
                                     name, -1, -1, 0) == 1);
    return certificate;
}

void addExtensions(X509* certificate, X509* issuer, const ZRMTestCertificateOptions& options) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    auto extensions = options.extensions;
    if (options.hasKeyIdentifiers) {
        extensions.insert(extensions.begin(), {"subjectKeyIdentifier", "hash"});
        if (issuer != certificate) {
            extensions.emplace_back("authorityKeyIdentifier", "keyid");
        }
    }
    for (const auto& [name, value] : extensions) {
        const auto extension = makeExtension(&context, name, value);
        check(X509_add_ext(certificate, extension.get(), -1) == 1);
    }
}

void sign(X509* certificate, X509* issuer, EVP_PKEY* key,
          const ZRMTestCertificateOptions& options) {
    X509_set_issuer_name(certificate, X509_get_subject_name(issuer));
    if (!options.isVersion1) {
        addExtensions(certificate, issuer, options);
    }
    check(X509_sign(certificate, key, digestNamed(options.digest)) > 0);
}

int numberOf(ZRMTestOcspStatus status) {
    switch (status) {
        case ZRMTestOcspStatus::Good:
            return V_OCSP_CERTSTATUS_GOOD;
        case ZRMTestOcspStatus::Revoked:
            return V_OCSP_CERTSTATUS_REVOKED;
        case ZRMTestOcspStatus::Unknown:
            return V_OCSP_CERTSTATUS_UNKNOWN;
    }
    return V_OCSP_CERTSTATUS_UNKNOWN;
}

using Basic = std::unique_ptr<OCSP_BASICRESP, decltype(&OCSP_BASICRESP_free)>;

void addNonce(OCSP_BASICRESP* basic, const ZRMTestOcspOptions& options) {
    const auto* end = options.question.data();
    const std::unique_ptr<OCSP_REQUEST, decltype(&OCSP_REQUEST_free)> request(
        d2i_OCSP_REQUEST(nullptr, &end, static_cast<long>(options.question.size())),
        &OCSP_REQUEST_free);
    check(request != nullptr);
    if (options.changesNonce) {
        check(OCSP_basic_add1_nonce(basic, nullptr, -1) == 1);
    } else {
        check(OCSP_copy_nonce(basic, request.get()) > 0);
    }
}

void addExtensions(OCSP_BASICRESP* basic, OCSP_SINGLERESP* single,
                   const ZRMTestOcspOptions& options) {
    if (!options.criticalExtension.empty()) {
        const auto extension = makeCriticalExtension(options.criticalExtension);
        check(OCSP_BASICRESP_add_ext(basic, extension.get(), -1) == 1);
    }
    if (!options.criticalSingleExtension.empty()) {
        const auto extension = makeCriticalExtension(options.criticalSingleExtension);
        check(OCSP_SINGLERESP_add_ext(single, extension.get(), -1) == 1);
    }
}

}  // namespace

ZRMData ZRMTestCertificate::der() const {
    return derFrom([this](unsigned char** out) { return i2d_X509(certificate.get(), out); });
}

ZRMData ZRMTestCertificate::pem() const {
    const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), &BIO_free);
    check(PEM_write_bio_X509(memory.get(), certificate.get()) == 1);
    char* bytes = nullptr;
    const auto length = BIO_get_mem_data(memory.get(), &bytes);
    return {bytes, bytes + length};
}

ZRMData ZRMTestCertificate::sign(const ZRMData& data) const {
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                          &EVP_MD_CTX_free);
    check(EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, key.get()) == 1);
    std::size_t length = 0;
    check(EVP_DigestSign(context.get(), nullptr, &length, data.data(), data.size()) == 1);
    ZRMData signature(length);
    check(EVP_DigestSign(context.get(), signature.data(), &length, data.data(), data.size()) == 1);
    signature.resize(length);
    return signature;
}

std::time_t ZRMTestPki::at(double seconds) const {
    return static_cast<std::time_t>(now_.secondsSince1970 + seconds);
}

std::shared_ptr<EVP_PKEY> ZRMTestPki::key(const std::string& name, unsigned bits) {
    static auto* const keys =
        new std::map<std::pair<std::string, unsigned>, std::shared_ptr<EVP_PKEY>>;
    auto& key = (*keys)[{name, bits}];
    if (!key) {
        key.reset(bits == 0 ? EVP_EC_gen("P-256") : EVP_RSA_gen(bits), &EVP_PKEY_free);
        check(key != nullptr);
    }
    return key;
}

ZRMTestCertificateOptions ZRMTestPki::authorityOptions(const std::string& name) {
    ZRMTestCertificateOptions options;
    options.name = name;
    options.extensions = {{"basicConstraints", "critical,CA:TRUE"},
                          {"keyUsage", "critical,keyCertSign,cRLSign"}};
    return options;
}

ZRMTestCertificateOptions ZRMTestPki::leafOptions() {
    ZRMTestCertificateOptions options;
    options.extensions = {{"basicConstraints", "CA:FALSE"},
                          {"keyUsage", "critical,digitalSignature"}};
    return options;
}

ZRMTestCertificate ZRMTestPki::selfSigned(const ZRMTestCertificateOptions& options) const {
    auto key =
        ZRMTestPki::key(options.keyName.empty() ? options.name : options.keyName, options.keyBits);
    auto certificate =
        makeCertificate(options, key.get(), at(options.fromSeconds), at(options.untilSeconds));
    ::sign(certificate.get(), certificate.get(), key.get(), options);
    return {std::move(certificate), std::move(key)};
}

ZRMTestCertificate ZRMTestPki::issue(const ZRMTestCertificate& issuer,
                                     const ZRMTestCertificateOptions& options) const {
    auto key =
        ZRMTestPki::key(options.keyName.empty() ? options.name : options.keyName, options.keyBits);
    auto certificate =
        makeCertificate(options, key.get(), at(options.fromSeconds), at(options.untilSeconds));
    ::sign(certificate.get(), issuer.certificate.get(), issuer.key.get(), options);
    return {std::move(certificate), std::move(key)};
}

ZRMTestCertificate ZRMTestPki::root(const std::string& name) const {
    return selfSigned(authorityOptions(name));
}

ZRMTestCertificate ZRMTestPki::authority(const ZRMTestCertificate& issuer,
                                         const std::string& name) const {
    return issue(issuer, authorityOptions(name));
}

ZRMTestCertificate ZRMTestPki::leaf(const ZRMTestCertificate& issuer) const {
    return issue(issuer, leafOptions());
}

ZRMData ZRMTestPki::ocspAnswer(const ZRMTestCertificate& subject, const ZRMTestCertificate& issuer,
                               const ZRMTestOcspOptions& options) const {
    const Basic basic(OCSP_BASICRESP_new(), &OCSP_BASICRESP_free);
    const std::unique_ptr<OCSP_CERTID, decltype(&OCSP_CERTID_free)> id(
        OCSP_cert_to_id(digestNamed(options.idDigest), subject.certificate.get(),
                        issuer.certificate.get()),
        &OCSP_CERTID_free);
    using Time = std::unique_ptr<ASN1_TIME, decltype(&ASN1_TIME_free)>;
    const auto time = [this](double seconds) {
        return Time(ASN1_GENERALIZEDTIME_set(nullptr, at(seconds)), &ASN1_TIME_free);
    };
    const auto thisUpdate = time(options.thisUpdateSeconds);
    const auto nextUpdate = time(options.nextUpdateSeconds.value_or(0));
    auto* const single = OCSP_basic_add1_status(
        basic.get(), id.get(), numberOf(options.status), OCSP_REVOKED_STATUS_KEYCOMPROMISE,
        thisUpdate.get(), thisUpdate.get(), options.nextUpdateSeconds ? nextUpdate.get() : nullptr);
    check(single != nullptr);
    if (!options.question.empty() && options.repeatsNonce) {
        addNonce(basic.get(), options);
    }
    addExtensions(basic.get(), single, options);
    // The library would stamp its own time.
    auto* const produced =
        const_cast<ASN1_GENERALIZEDTIME*>(OCSP_resp_get0_produced_at(basic.get()));
    check(ASN1_GENERALIZEDTIME_set(produced, at(options.producedSeconds)) != nullptr);
    const auto& signer = options.signer ? *options.signer : issuer;
    check(OCSP_basic_sign(basic.get(), signer.certificate.get(), signer.key.get(),
                          digestNamed(options.digest), nullptr, OCSP_NOTIME) == 1);
    const std::unique_ptr<OCSP_RESPONSE, decltype(&OCSP_RESPONSE_free)> response(
        OCSP_response_create(OCSP_RESPONSE_STATUS_SUCCESSFUL, basic.get()), &OCSP_RESPONSE_free);
    return derFrom([&](unsigned char** out) { return i2d_OCSP_RESPONSE(response.get(), out); });
}

ZRMData ZRMTestPki::crl(const ZRMTestCertificate& issuer, const ZRMTestCrlOptions& options) const {
    const std::unique_ptr<X509_CRL, decltype(&X509_CRL_free)> crl(X509_CRL_new(), &X509_CRL_free);
    X509_CRL_set_version(crl.get(), X509_CRL_VERSION_2);
    X509_CRL_set_issuer_name(crl.get(), X509_get_subject_name(issuer.certificate.get()));
    const std::unique_ptr<ASN1_TIME, decltype(&ASN1_TIME_free)> time(ASN1_TIME_new(),
                                                                     &ASN1_TIME_free);
    setTime(time.get(), at(options.thisUpdateSeconds));
    X509_CRL_set1_lastUpdate(crl.get(), time.get());
    for (const auto& revoked : options.revoked) {
        auto* const entry = X509_REVOKED_new();
        X509_REVOKED_set_serialNumber(entry, X509_get_serialNumber(revoked.certificate.get()));
        X509_REVOKED_set_revocationDate(entry, time.get());
        X509_CRL_add0_revoked(crl.get(), entry);
    }
    if (options.nextUpdateSeconds) {
        setTime(time.get(), at(*options.nextUpdateSeconds));
        X509_CRL_set1_nextUpdate(crl.get(), time.get());
    }
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer.certificate.get(), nullptr, nullptr, crl.get(), 0);
    for (const auto& [name, value] : options.extensions) {
        const auto extension = makeExtension(&context, name, value);
        check(X509_CRL_add_ext(crl.get(), extension.get(), -1) == 1);
    }
    X509_CRL_sort(crl.get());
    const auto& key = options.key ? options.key : issuer.key;
    check(X509_CRL_sign(crl.get(), key.get(), digestNamed(options.digest)) > 0);
    return derFrom([&](unsigned char** out) { return i2d_X509_CRL(crl.get(), out); });
}
