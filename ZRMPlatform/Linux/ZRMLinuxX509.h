// Certificates as OpenSSL holds them, and what the trust body reads off them.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <openssl/ossl_typ.h>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMDate.h"

using ZRMLinuxX509 = std::shared_ptr<X509>;

// A longer certificate is none.
inline constexpr std::size_t kZRMMaximumCertificateBytes = std::size_t{128} * 1024;

// Null unless the bytes are one certificate and nothing after it.
[[nodiscard]] ZRMLinuxX509 zrm_x509FromDer(std::span<const std::uint8_t> der);

// A stack that refers to the certificates without owning them; the stack itself is owned.
using ZRMLinuxX509Stack = std::unique_ptr<STACK_OF(X509), void (*)(STACK_OF(X509)*)>;
[[nodiscard]] ZRMLinuxX509Stack zrm_x509Stack(std::span<const ZRMLinuxX509> certificates);

// Absent for a missing time and for one that is malformed.
[[nodiscard]] std::optional<ZRMDate> zrm_dateOfAsn1Time(const ASN1_TIME* time);
// Whole seconds, cut down; the ends of the type's range for what is beyond them.
[[nodiscard]] std::int64_t zrm_secondsForOpenSSL(ZRMDate date);

// Whether a signature algorithm (an OpenSSL NID) rests on a digest for which collisions are within
// reach, SHA-1 included.
[[nodiscard]] bool zrm_hasWeakDigest(int signatureNid);

// The first few HTTP and HTTPS addresses of the certificate's OCSP responders, and of the complete,
// direct lists of revoked certificates that it names.
[[nodiscard]] std::vector<std::string> zrm_ocspUrls(X509* certificate);
[[nodiscard]] std::vector<std::string> zrm_crlUrls(const X509* certificate);
