// Certificate chains: whatever the bytes are, an evaluation completes once, yields a key only with
// trust, and trusts nothing where the one anchor has not signed.
//
// The input is a list of certificates, each behind its length in two bytes.
#include <memory>
#include <vector>

#include "Fuzz/ZRMFuzz.h"
#include "ZRMPlatform/Linux/ZRMLinuxTrust.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestPki.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

std::vector<ZRMData> certificatesOf(std::span<const std::uint8_t> input) {
    std::vector<ZRMData> certificates;
    while (input.size() > 2) {
        const auto claimed = static_cast<std::size_t>(input[0]) << 8U | input[1];
        input = input.subspan(2);
        const auto length = std::min(claimed, input.size());
        certificates.emplace_back(input.begin(),
                                  input.begin() + static_cast<std::ptrdiff_t>(length));
        input = input.subspan(length);
    }
    return certificates;
}

// Made anew in each process, so that nothing in the input can be below it.
const ZRMData& ownRoot() {
    static const auto* const der =
        new ZRMData(ZRMTestPki(ZRMSimulatedDevice().now()).root("own root").der());
    return *der;
}

ZRMTrustEvaluation evaluate(const std::vector<ZRMData>& certificates,
                            const std::vector<ZRMData>& anchors) {
    static auto& device = *new ZRMSimulatedDevice;
    device.network().forgetRequests();
    device.network().handleEverything([&](const ZRMUrlRequest&) {
        ZRMSimulatedAnswer answer;
        answer.body = certificates.front();
        return answer;
    });
    ZRMLinuxTrust trust(device.platform()->executor, device.platform()->clock,
                        device.platform()->urlSessions);
    int completions = 0;
    ZRMTrustEvaluation result;
    trust.evaluate({certificates, anchors}, [&](ZRMTrustEvaluation evaluation) {
        ++completions;
        result = std::move(evaluation);
    });
    device.runUntil([&] { return completions > 0; }, 60);
    ZRM_FUZZ_ASSERT(completions == 1);
    ZRM_FUZZ_ASSERT(result.isTrusted() == result.reason.empty());
    ZRM_FUZZ_ASSERT(result.isTrusted() || !result.publicKey);
    return result;
}

}  // namespace

void zrm_fuzz(std::span<const std::uint8_t> input) {
    const auto certificates = certificatesOf(input);
    if (certificates.empty()) {
        return;
    }
    const std::vector<ZRMData> behindLeaf(certificates.begin() + 1, certificates.end());
    const auto delivered = evaluate(certificates, behindLeaf);
    ZRM_FUZZ_ASSERT(!delivered.isTrusted() || !behindLeaf.empty());
    ZRM_FUZZ_ASSERT(!evaluate(certificates, {ownRoot()}).isTrusted());
}
