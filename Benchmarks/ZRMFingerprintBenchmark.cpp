#include "Benchmarks/ZRMFingerprintBenchmark.h"

#include <stdexcept>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMCloudKitDetectors.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventProvider.h"

namespace {

constexpr int kRuns = 101;

}  // namespace

ZRMFigures zrm_measureFingerprint() {
    const auto platform = ZRMPlatform::current();
    const auto source = zrm_makeCloudKitDetectors(platform).fingerprint;
    if (!source) {
        throw std::runtime_error("this device body has no fingerprint");
    }
    const ZRMEventProvider provider(
        platform, std::make_shared<ZRMEnvironmentDataImpl>(),
        std::make_shared<ZRMEventPermissionChecker>(platform->locationAuthorization), nullptr);
    const auto build = [&] {
        if (source->eventWithProvider(provider)->parameters().empty()) {
            throw std::runtime_error("the event is empty");
        }
    };
    build();  // fills the caches
    return {{"fingerprint event built with warm caches", zrm_medianSeconds(kRuns, build) * 1000,
             "ms", 3.0, ZRMFigure::Must::BeAtMost}};
}
