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

std::optional<ZRMData> ZRMStatisticsBodyMaker::jwsDataWithParameters(
    ZRMDictionary parameters) const {
    if (!steps_.isValidJsonObject(parameters)) {
        zrm_logError(this, "Invalid JSON object: " + description(parameters));
        return std::nullopt;
    }
    ZRMDictionary wrapped;
    wrapped[kArrayKey] = ZRMJsonArray();
    wrapped[kArrayKey].get_array().emplace_back(std::move(parameters));
    const auto data = json(wrapped);
    if (!data) {
        return std::nullopt;
    }
    const auto payload = steps_.utf8Text(*data);
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
    return json(*object);
}

std::optional<ZRMData> ZRMStatisticsBodyMaker::json(const ZRMDictionary& dictionary) const {
    auto data = steps_.compactJson(dictionary);
    if (!data) {
        zrm_logError(this, data.error().localizedDescription());
        return std::nullopt;
    }
    return std::move(data).value();
}
