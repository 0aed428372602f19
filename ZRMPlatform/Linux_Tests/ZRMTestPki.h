// Certificates, OCSP answers and lists of revoked certificates, made by OpenSSL while a test runs.
#pragma once

#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <openssl/ossl_typ.h>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMDate.h"

inline constexpr double kZRMTestDay = 86400;

// What a certificate is to say. Times are seconds from the moment of its PKI.
struct ZRMTestCertificateOptions {
    std::string name = "leaf";
    // Certificates of one name share a key unless told otherwise here.
    std::string keyName;
    unsigned keyBits = 2048;  // 0: an elliptic-curve key
    std::string digest = "SHA256";
    double fromSeconds = -kZRMTestDay;
    double untilSeconds = 365 * kZRMTestDay;
    // OpenSSL's names and values, such as {"basicConstraints", "critical,CA:TRUE"}; dotted numbers
    // name others, with values such as "critical,DER:0500".
    std::vector<std::pair<std::string, std::string>> extensions;
    bool hasKeyIdentifiers = true;
    bool isVersion1 = false;  // which has no extensions
};

struct ZRMTestCertificate {
    std::shared_ptr<X509> certificate;
    std::shared_ptr<EVP_PKEY> key;

    [[nodiscard]] ZRMData der() const;
    [[nodiscard]] ZRMData pem() const;
    // Of its key, PKCS#1 v1.5 over SHA-256.
    [[nodiscard]] ZRMData sign(const ZRMData& data) const;
};

enum class ZRMTestOcspStatus { Good, Revoked, Unknown };

struct ZRMTestOcspOptions {
    ZRMTestOcspStatus status = ZRMTestOcspStatus::Good;
    double producedSeconds = 0;
    double thisUpdateSeconds = -3600;
    std::optional<double> nextUpdateSeconds = kZRMTestDay;
    std::string digest = "SHA256";
    std::string idDigest = "SHA1";
    // The question's nonce is repeated; without a question there is none.
    ZRMData question;
    bool repeatsNonce = true;
    bool changesNonce = false;
    // Dotted number of a critical extension of the whole answer, or of the single one.
    std::string criticalExtension;
    std::string criticalSingleExtension;
    // Who signs, with its certificate in the answer; otherwise the issuer itself.
    std::optional<ZRMTestCertificate> signer;
};

struct ZRMTestCrlOptions {
    std::vector<ZRMTestCertificate> revoked;
    double thisUpdateSeconds = -3600;
    std::optional<double> nextUpdateSeconds = kZRMTestDay;
    std::string digest = "SHA256";
    std::vector<std::pair<std::string, std::string>> extensions;
    // Whose key signs; otherwise the issuer's.
    std::shared_ptr<EVP_PKEY> key;
};

// Throws where OpenSSL fails. Keys are made once a process and kept in memory alone.
class ZRMTestPki {
  public:
    explicit ZRMTestPki(ZRMDate now) : now_(now) {}

    // Its own issuer.
    [[nodiscard]] ZRMTestCertificate selfSigned(const ZRMTestCertificateOptions& options) const;
    [[nodiscard]] ZRMTestCertificate issue(const ZRMTestCertificate& issuer,
                                           const ZRMTestCertificateOptions& options) const;
    // A self-signed authority, and one below another.
    [[nodiscard]] ZRMTestCertificate root(const std::string& name = "root") const;
    [[nodiscard]] ZRMTestCertificate authority(const ZRMTestCertificate& issuer,
                                               const std::string& name = "intermediate") const;
    // A certificate to sign documents with.
    [[nodiscard]] ZRMTestCertificate leaf(const ZRMTestCertificate& issuer) const;

    [[nodiscard]] ZRMData ocspAnswer(const ZRMTestCertificate& subject,
                                     const ZRMTestCertificate& issuer,
                                     const ZRMTestOcspOptions& options = {}) const;
    [[nodiscard]] ZRMData crl(const ZRMTestCertificate& issuer,
                              const ZRMTestCrlOptions& options = {}) const;

    static ZRMTestCertificateOptions authorityOptions(const std::string& name);
    static ZRMTestCertificateOptions leafOptions();
    // With the bits rounded by OpenSSL; 0 for an elliptic curve.
    static std::shared_ptr<EVP_PKEY> key(const std::string& name, unsigned bits = 2048);

  private:
    [[nodiscard]] std::time_t at(double seconds) const;

    ZRMDate now_;
};
