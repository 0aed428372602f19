// Downloads the settings document when it is due.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperationQueue.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMUrlRequestOperation.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsSignatureVerification.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Categories/NSUserDefaults/NSUserDefaults+ZRMMobileKit.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMDeviceTagProvider.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Storage/ZRMSettingsStorage.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMMobileServiceSettings.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// What an updater works with.
struct ZRMSettingsUpdaterParameters {
    ZRMMobileServiceSettings settings;  // in force
    std::shared_ptr<ZRMSettingsUpdateTimestampProvider> updateTimestampProvider;
    std::shared_ptr<const ZRMDeviceTagProvider> deviceTagProvider;
    std::string serviceVersion;
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider;  // may be absent
    std::shared_ptr<ZRMSettingsStorage> settingsStorage;
    ZRMJwsSignatureVerification verification;
};

// A document that was downloaded, verified and stored takes effect at the next activation; nothing
// that fails on the way changes the stored document or its time. May be used from any thread; an
// update under way keeps the updater alive.
class ZRMSettingsUpdater : public std::enable_shared_from_this<ZRMSettingsUpdater> {
  public:
    using CompletionHandler = std::function<void(std::optional<ZRMError> error)>;

    ZRMSettingsUpdater(std::shared_ptr<const ZRMPlatform> platform,
                       ZRMSettingsUpdaterParameters parameters);

    // The handler is called exactly once: at once, on the caller's thread, when no update is needed
    // or no request can be made, else on a queue, when the download was dealt with.
    void updateWithCompletionHandler(CompletionHandler completionHandler);

    // Whether the time since the last stored download is longer than the settings' interval.
    [[nodiscard]] bool isUpdateNeeded() const;

    // What the update sends. Fails where the parameters cannot be written as JSON.
    [[nodiscard]] ZRMResult<ZRMUrlRequest> makeRequestForSettings() const;
    [[nodiscard]] ZRMResult<ZRMData> paramsForRequest() const;

  private:
    void requestEnded(const ZRMUrlRequestOperation& operation,
                      const CompletionHandler& completionHandler);
    void settingsVerified(const ZRMData& data, const std::optional<ZRMError>& error,
                          const CompletionHandler& completionHandler);

    const std::shared_ptr<const ZRMPlatform> platform_;
    const ZRMSettingsUpdaterParameters parameters_;
    ZRMOperationQueue queue_;  // one operation at a time
};
