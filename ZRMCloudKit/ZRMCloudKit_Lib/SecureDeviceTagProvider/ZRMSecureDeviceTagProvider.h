// Gets the device's tag from the server, keeps it and renews it.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMSecureDeviceTagProviding.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/SecureDeviceTagProvider/ZRMSecureDeviceTagPayload.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperationQueue.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMUrlRequestOperation.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsSignatureVerification.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// Until the server gave one the tag is "L!" and a UUID of this installation's own. A refresh that
// fails logs why and leaves tag, date and interval as they are; it is not repeated before the next
// start. A refresh under way keeps the provider alive, one that is arranged does not.
class ZRMSecureDeviceTagProvider final
    : public ZRMSecureDeviceTagProviding,
      public std::enable_shared_from_this<ZRMSecureDeviceTagProvider> {
  public:
    // Seconds that pass at least between a refresh and the next one it arranges.
    static constexpr double kShortestDelay = 1;

    // Verifies against the parameters' root certificate.
    static std::shared_ptr<ZRMSecureDeviceTagProvider> initWithUrl(
        std::shared_ptr<const ZRMPlatform> platform, ZRMSecureDeviceTagParameters parameters);

    // Puts the placeholder into the storage where that holds no tag; the next save keeps it.
    ZRMSecureDeviceTagProvider(std::shared_ptr<const ZRMPlatform> platform,
                               ZRMSecureDeviceTagParameters parameters,
                               ZRMJwsSignatureVerification verification);

    [[nodiscard]] std::string secureDeviceTag() const override;
    void refreshIfNeeded() override;

    // Whether the stored refresh date has come.
    [[nodiscard]] bool isRefreshNeeded() const;
    // Asks the server, whatever the date. Returns at once.
    void refresh();
    // Arranges one refresh for the stored date.
    void scheduleRefresh();

    // Absent, with the reason in the log, where the environment data cannot be written as JSON.
    [[nodiscard]] std::optional<ZRMUrlRequest> makeRequestForSecureDeviceTag() const;

  private:
    void requestEnded(const ZRMUrlRequestOperation& operation);
    void responseVerified(const ZRMJwsObject& object, const std::optional<ZRMError>& error);
    void takeOver(const ZRMSecureDeviceTagPayload& payload);

    const std::shared_ptr<const ZRMPlatform> platform_;
    const ZRMSecureDeviceTagParameters parameters_;
    const ZRMJwsSignatureVerification verification_;
    ZRMOperationQueue queue_;  // one operation at a time

    mutable ZRMMutex mutex_;  // guards what follows; never held while calling out
    std::string secureDeviceTag_ ZRM_GUARDED_BY(mutex_);
};
