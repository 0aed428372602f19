// The bytes in which an event is stored and uploaded.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMResult.h"

// Makes the bodies: {"array": [parameters]} as the payload of an unsigned JWS object, gzipped. Has
// no state; may be used from any thread. What cannot be made is absent and in the log.
class ZRMStatisticsBodyMaker {
  public:
    // What each step is made with.
    struct Steps {
        std::function<bool(const ZRMDictionary&)> isValidJsonObject;
        std::function<ZRMResult<ZRMData>(const ZRMDictionary&)> compactJson;
        std::function<std::optional<std::string>(const ZRMData&)> utf8Text;
        std::function<std::optional<ZRMDictionary>(const std::string& payload)> signedJson;
        std::function<ZRMData(std::span<const std::uint8_t>)> gzip;  // empty on failure

        static Steps standard();
    };

    explicit ZRMStatisticsBodyMaker(Steps steps = Steps::standard()) : steps_(std::move(steps)) {}

    // The compressed body.
    [[nodiscard]] ZRMSharedData bodyWithParameters(ZRMDictionary parameters) const;
    // The JWS object's JSON, before compression.
    [[nodiscard]] std::optional<ZRMData> jwsDataWithParameters(ZRMDictionary parameters) const;

  private:
    Steps steps_;
};
