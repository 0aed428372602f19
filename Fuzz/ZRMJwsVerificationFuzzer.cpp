// From the bytes of a JWS object to the verification's result: it completes once, refuses every
// object where the one anchor has signed nothing, and has no error when errors are off.
#include "Fuzz/ZRMFuzz.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsSignatureVerifier.h"
#include "ZRMPlatform/Linux/ZRMLinuxTrust.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestPki.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

constexpr std::size_t kManySignatures = 16;
constexpr double kLongSeconds = 100'000;

// Made anew in each process, so that nothing in the input can be below it.
const ZRMData& ownRoot() {
    static const auto* const pem =
        new ZRMData(ZRMTestPki(ZRMSimulatedDevice().now()).root("own root").pem());
    return *pem;
}

std::optional<ZRMError> verify(const ZRMJwsObject& object, bool pinnedOnly, bool checkCert) {
    ZRMSimulatedDevice device;
    const ZRMScopedPlatform installed(device);
    device.trust().plug([](const ZRMPlatform& platform) {
        return std::make_shared<ZRMLinuxTrust>(platform.executor, platform.clock,
                                               platform.urlSessions);
    });
    device.network().handleEverything([](const ZRMUrlRequest&) {
        return ZRMSimulatedAnswer::withBody(zrm_textFromData(ownRoot()));
    });
    ZRMJwsSignatureVerifier verifier(
        device.platform(),
        ZRMJwsVerifierConfiguration({ownRoot()}).withAnchorsAtPinnedCertificatesOnly(pinnedOnly));
    int completions = 0;
    std::optional<ZRMError> result;
    verifier.verifySignaturesForJwsObject(object, checkCert, [&](std::optional<ZRMError> error) {
        ++completions;
        result = std::move(error);
    });
    device.runUntil([&] { return completions > 0; }, kLongSeconds);
    ZRM_FUZZ_ASSERT(completions == 1);
    return result;
}

}  // namespace

void zrm_fuzz(std::span<const std::uint8_t> input) {
    const auto object = ZRMJwsObject::jwsObjectFromData({input.begin(), input.end()});
    if (!object || object.value().signatures().size() > kManySignatures) {
        return;
    }
    ZRM_FUZZ_ASSERT(verify(object.value(), true, true));
    verify(object.value(), false, true);
    const bool hasSignatures = !object.value().signatures().empty();
    ZRM_FUZZ_ASSERT(verify(object.value(), true, false).has_value() != hasSignatures);
}
