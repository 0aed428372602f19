// Makes settings of the document that lies on the device.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsSignatureVerification.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Provider/ZRMSettingsProviding.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Storage/ZRMSettingsStorage.h"
#include "ZRMPlatform/Ports/Values/ZRMResult.h"

// What a document costs that is not in order differs on purpose. No file, and bytes that are no JWS
// object: the defaults, without an error. A signature that is missing, a payload that cannot be
// read, "config" that is none: an error. A rejected entry: its default.
class ZRMSettingsProvider final : public ZRMSettingsProviding {
  public:
    using JsonCallback =
        std::function<void(std::optional<ZRMDictionary> json, std::optional<ZRMError> error)>;

    ZRMSettingsProvider(std::shared_ptr<const ZRMSettingsStorage> settingsStorage,
                        ZRMJwsSignatureVerification verification);

    // At once, on the caller's thread, where there is no document; otherwise on the verifier's.
    void provideSettings(const Callback& callback) override;

    // The cleaned "config" of the stored document; neither value where there is no document.
    void fetchSettingsJsonFromStorageWithCompletionHandler(JsonCallback completionHandler);

    // Error 1 where the bytes are no JSON object.
    static ZRMResult<ZRMDictionary> jsonObjectFromData(const ZRMData& data);

    // The "config" in an envelope's payload, as it is. Error 1 where there is none.
    static ZRMResult<ZRMDictionary> configFromJwsObject(const ZRMJwsObject& jwsObject);

    // The document over the defaults. Error 1 where a text that passed for a URL is none.
    static ZRMResult<ZRMMobileServiceSettings> settingsFromValidJson(const ZRMDictionary& json);

  private:
    const std::shared_ptr<const ZRMSettingsStorage> settingsStorage_;
    const ZRMJwsSignatureVerification verification_;
};
