// The keys and certificates that the server lives on, kept in one directory.
#pragma once

#include <filesystem>
#include <string>

#include "Tools/zrm-risk-server/ZRMCertificateMaker.h"

// Two trees without a common root:
//
//   VelorinRootCA.crt  ->  signing-intermediate.crt  ->  signing.crt     for the documents it signs
//   tls-ca.pem         ->  tls-server.crt                                for its connections
//
// The first two of each line sign certificates only. Keys lie beside their certificates as `.key`,
// in PKCS #8, with mode 0600. All certificates are PEM. Signing keys are RSA, for RS256; the
// connection's are P-256.
class ZRMPki {
  public:
    // Uses what the directory holds, or makes everything where it holds none of it; the directory
    // is made with mode 0700 where it is missing. Several processes may do so at once. Throws
    // std::runtime_error where part of it is missing, a key does not fit its certificate, or a
    // certificate's time is over.
    static ZRMPki openOrMake(const std::filesystem::path& directory);

    [[nodiscard]] std::filesystem::path rootCertificateFile() const;
    [[nodiscard]] std::filesystem::path intermediateCertificateFile() const;
    [[nodiscard]] std::filesystem::path signingCertificateFile() const;
    // Root and intermediate with their keys, and the signing key.
    [[nodiscard]] ZRMIdentity root() const;
    [[nodiscard]] ZRMIdentity intermediate() const;
    [[nodiscard]] ZRMKeyPointer signingKey() const;
    [[nodiscard]] std::filesystem::path tlsAuthorityFile() const;
    [[nodiscard]] std::filesystem::path tlsCertificateFile() const;
    [[nodiscard]] std::filesystem::path tlsKeyFile() const;

  private:
    explicit ZRMPki(std::filesystem::path directory) : directory_(std::move(directory)) {}

    std::filesystem::path directory_;
};
