#include "Tools/zrm-inspect/ZRMJwsInspection.h"

#include <memory>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Helpers/ZRMManualResetEvent.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsObject.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsSignatureVerifier.h"
#include "ZRMPlatform/Linux/ZRMLinuxTrust.h"

namespace {

// The wall clock stands at a moment; everything else goes on.
class StandingClock final : public ZRMClock {
  public:
    StandingClock(ZRMDate date, std::shared_ptr<ZRMClock> running)
        : date_(date), running_(std::move(running)) {}

    [[nodiscard]] ZRMDate now() const override { return date_; }
    [[nodiscard]] std::optional<ZRMBootTime> bootTime() const override {
        return running_->bootTime();
    }
    [[nodiscard]] double uptimeSeconds() const override { return running_->uptimeSeconds(); }

  private:
    ZRMDate date_;
    std::shared_ptr<ZRMClock> running_;
};

std::shared_ptr<const ZRMPlatform> platformFor(const ZRMJwsInspectionOptions& options) {
    auto current = ZRMPlatform::current();
    if (!options.atSecondsSince1970) {
        return current;
    }
    auto platform = std::make_shared<ZRMPlatform>(*current);
    platform->trust = std::make_shared<ZRMLinuxTrust>(
        current->executor,
        std::make_shared<StandingClock>(ZRMDate{*options.atSecondsSince1970}, current->clock),
        current->urlSessions);
    return platform;
}

struct Verdict {
    std::optional<ZRMError> error;
    std::vector<ZRMJwsVerifyResult> results;
};

Verdict verify(const ZRMJwsObject& object, const std::vector<ZRMData>& pinned,
               const ZRMJwsInspectionOptions& options) {
    const auto platform = platformFor(options);
    ZRMJwsSignatureVerifier verifier(
        platform, ZRMJwsVerifierConfiguration(pinned)
                      .withAnchorsAtPinnedCertificatesOnly(options.pinnedAnchorsOnly)
                      .withRevocationChecks(!options.withoutRevocation));
    const auto verdict = std::make_shared<Verdict>();
    const auto done = ZRMManualResetEvent::manualResetEvent(*platform->executor, platform->clock);
    verifier.verifyEachSignatureForJwsObject(
        object, true,
        [verdict, done](std::optional<ZRMError> error, std::vector<ZRMJwsVerifyResult> results) {
            *verdict = {std::move(error), std::move(results)};
            done->signal();
        });
    done->wait();
    return *verdict;
}

ZRMJsonArray reportOf(const std::vector<ZRMJwsVerifyResult>& results) {
    ZRMJsonArray report;
    for (const auto result : results) {
        report.push_back(result == ZRMJwsVerifyResultNone ? ZRMJsonValue(nullptr)
                                                          : ZRMJsonValue(static_cast<int>(result)));
    }
    return report;
}

}  // namespace

ZRMInspection zrm_inspectJws(const std::string& path, const ZRMJwsInspectionOptions& options) {
    ZRMDictionary report{{"validity", nullptr}, {"results", ZRMJsonArray()}, {"error", nullptr}};
    const auto failed = [&report](const ZRMError& error) {
        report["error"] = zrm_reportOfError(error);
        return ZRMInspection{report, false};
    };
    const auto bytes = zrm_readInspectedFile(path);
    if (!bytes) {
        return failed(bytes.error());
    }
    std::vector<ZRMData> pinned;
    if (!options.rootPath.empty()) {
        auto root = zrm_readInspectedFile(options.rootPath);
        if (!root) {
            return failed(root.error());
        }
        pinned.push_back(std::move(root).value());
    }
    const auto object = ZRMJwsObject::jwsObjectFromData(bytes.value());
    if (!object) {
        if (object.error().domain() == kZRMJwsObjectErrorDomain) {
            report["validity"] = object.error().code();
        }
        return failed(object.error());
    }
    report["validity"] = static_cast<int>(ZRMJwsObjectJsonValid);
    const auto verdict = verify(object.value(), pinned, options);
    report["results"] = reportOf(verdict.results);
    return verdict.error ? failed(*verdict.error) : ZRMInspection{report, true};
}
