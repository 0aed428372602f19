// Lists of revoked certificates: nothing that the issuer has not signed is relied on, and what it
// signed is read without harm and holds when it is said to.
#include <memory>

#include <openssl/x509.h>

#include "Fuzz/ZRMFuzz.h"
#include "ZRMPlatform/Linux/ZRMLinuxCrl.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestPki.h"

namespace {

constexpr ZRMDate kNow{1'700'000'000};

struct Setting {
    ZRMTestPki pki{kNow};
    ZRMTestCertificate issuer = pki.root("issuer");
    ZRMTestCertificate leaf = pki.leaf(issuer);

    [[nodiscard]] ZRMLinuxRevocationAnswer read(std::span<const std::uint8_t> crl) const {
        return zrm_readCrl(crl, leaf.certificate, issuer.certificate, kNow);
    }
};

// The list with the issuer's signature in place of its own; empty when it is none.
ZRMData signedAnew(std::span<const std::uint8_t> input, const ZRMTestCertificate& issuer) {
    const auto* end = input.data();
    const std::unique_ptr<X509_CRL, decltype(&X509_CRL_free)> crl(
        d2i_X509_CRL(nullptr, &end, static_cast<long>(input.size())), &X509_CRL_free);
    if (!crl || X509_CRL_sign(crl.get(), issuer.key.get(), EVP_sha256()) <= 0) {
        return {};
    }
    ZRMData der(static_cast<std::size_t>(std::max(i2d_X509_CRL(crl.get(), nullptr), 0)));
    auto* cursor = der.data();
    if (!der.empty()) {
        i2d_X509_CRL(crl.get(), &cursor);
    }
    return der;
}

}  // namespace

void zrm_fuzz(std::span<const std::uint8_t> input) {
    static const auto* const setting = new Setting;
    ZRM_FUZZ_ASSERT(setting->read(input).status == ZRMLinuxRevocationStatus::NoAnswer);
    const auto answer = setting->read(signedAnew(input, setting->issuer));
    ZRM_FUZZ_ASSERT(answer.status == ZRMLinuxRevocationStatus::NoAnswer ||
                    (answer.from <= kNow && kNow <= answer.until));
}
