#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsBodyMaker.h"

#include <memory>
#include <utility>

#include <boost/json/serialize.hpp>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmFactory.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsObject.h"
#include "ZRMJWS/ZRMJWS_Lib/Signer/ZRMJwsSigner.h"

namespace {

constexpr const char* kArrayKey = "array";

ZRMResult<ZRMData> compactJsonData(const ZRMDictionary& dictionary) {
    const auto text = zrm_compactJsonText(dictionary);
    if (!text) {
        return text.error();
    }
    return zrm_dataFromText(text.value());
}

std::optional<std::string> textFromUtf8(const ZRMData& data) {
    auto text = zrm_textFromData(data);
    return zrm_isValidUtf8(text) ? std::optional(std::move(text)) : std::nullopt;
}

std::optional<ZRMDictionary> jsonSignedWithNone(const std::string& payload) {
    const auto algorithm = ZRMJwsAlgorithmFactory::algorithmNone();
    const auto object = ZRMJwsSigner().signPayload(payload, algorithm.get());
    return ZRMJwsObject::jsonFromJwsObject(object);
}

// For people: text that JSON refuses is shown all the same.
std::string description(const ZRMDictionary& dictionary) {
    return zrm_repairedUtf8(boost::json::serialize(dictionary));
}

}  // namespace

ZRMStatisticsBodyMaker::Steps ZRMStatisticsBodyMaker::Steps::standard() {
    return {
        [](const ZRMDictionary& dictionary) { return zrm_compactJsonText(dictionary).hasValue(); },
        compactJsonData, textFromUtf8, jsonSignedWithNone,
        [](std::span<const std::uint8_t> data) { return zrm_gzipData(data); }};
}

ZRMSharedData ZRMStatisticsBodyMaker::bodyWithParameters(ZRMDictionary parameters) const {
    const auto jws = jwsDataWithParameters(std::move(parameters));
    if (!jws) {
        return nullptr;
    }
    auto compressed = steps_.gzip(*jws);
    if (compressed.empty()) {
        zrm_logError(this, "Can't gzip data:  " + zrm_hexString(*jws));
        return nullptr;
    }
    return std::make_shared<const ZRMData>(std::move(compressed));
}

// What can be written inside the array is valid by itself, so the check is made of the others only.
std::optional<ZRMData> ZRMStatisticsBodyMaker::jwsDataWithParameters(
    ZRMDictionary parameters) const {
    ZRMDictionary wrapped;
    auto& array = wrapped.emplace(kArrayKey, ZRMJsonArray()).first->value().get_array();
    auto& wrappedParameters = array.emplace_back(std::move(parameters)).get_object();
    const auto data = steps_.compactJson(wrapped);
    if (!data) {
        zrm_logError(this, steps_.isValidJsonObject(wrappedParameters)
                               ? data.error().localizedDescription()
                               : "Invalid JSON object: " + description(wrappedParameters));
        return std::nullopt;
    }
    const auto payload = steps_.utf8Text(data.value());
    if (!payload) {
        zrm_logError(this,
                     "Invalid transform binary data to string for json: " + description(wrapped));
        return std::nullopt;
    }
    const auto object = steps_.signedJson(*payload);
    if (!object) {
        zrm_logError(this, "Can't sign payload: " + *payload +
                               "\nAlgorithm: " + ZRMJwsAlgorithmFactory::algorithmNone()->name());
        return std::nullopt;
    }
    auto jws = steps_.compactJson(*object);
    if (!jws) {
        zrm_logError(this, jws.error().localizedDescription());
        return std::nullopt;
    }
    return std::move(jws).value();
}
