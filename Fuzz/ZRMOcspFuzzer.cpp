// OCSP answers: nothing that the issuer has not signed is relied on, and what it signed is read
// without harm, whatever it holds.
#include <memory>

#include <openssl/ocsp.h>

#include "Fuzz/ZRMFuzz.h"
#include "ZRMPlatform/Linux/ZRMLinuxOcsp.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestPki.h"

namespace {

constexpr ZRMDate kNow{1'700'000'000};

struct Setting {
    ZRMTestPki pki{kNow};
    ZRMTestCertificate issuer = pki.root("issuer");
    ZRMTestCertificate leaf = pki.leaf(issuer);
    ZRMLinuxOcspQuestion question{leaf.certificate, issuer.certificate};
};

// The answer with the issuer's signature in place of its own; empty when it is none.
ZRMData signedAnew(std::span<const std::uint8_t> input, const ZRMTestCertificate& issuer) {
    using Response = std::unique_ptr<OCSP_RESPONSE, decltype(&OCSP_RESPONSE_free)>;
    const auto* end = input.data();
    const Response response(d2i_OCSP_RESPONSE(nullptr, &end, static_cast<long>(input.size())),
                            &OCSP_RESPONSE_free);
    const std::unique_ptr<OCSP_BASICRESP, decltype(&OCSP_BASICRESP_free)> basic(
        response ? OCSP_response_get1_basic(response.get()) : nullptr, &OCSP_BASICRESP_free);
    if (!basic || OCSP_basic_sign(basic.get(), issuer.certificate.get(), issuer.key.get(),
                                  EVP_sha256(), nullptr, OCSP_NOTIME) != 1) {
        return {};
    }
    const Response anew(OCSP_response_create(OCSP_RESPONSE_STATUS_SUCCESSFUL, basic.get()),
                        &OCSP_RESPONSE_free);
    const int length = anew ? i2d_OCSP_RESPONSE(anew.get(), nullptr) : 0;
    ZRMData der(static_cast<std::size_t>(std::max(length, 0)));
    auto* cursor = der.data();
    if (!der.empty()) {
        i2d_OCSP_RESPONSE(anew.get(), &cursor);
    }
    return der;
}

}  // namespace

void zrm_fuzz(std::span<const std::uint8_t> input) {
    static const auto* const setting = new Setting;
    ZRM_FUZZ_ASSERT(setting->question.read(input, kNow).status ==
                    ZRMLinuxRevocationStatus::NoAnswer);
    const auto answer = setting->question.read(signedAnew(input, setting->issuer), kNow);
    ZRM_FUZZ_ASSERT(answer.status == ZRMLinuxRevocationStatus::NoAnswer ||
                    (answer.from <= kNow && kNow <= answer.until));
}
