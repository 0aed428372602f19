#include "Tools/zrm-inspect/ZRMUploadInspection.h"

#include <optional>

#include <zlib.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsObject.h"

namespace {

constexpr std::size_t kTrailerLength = 8;

std::uint32_t littleEndian(std::span<const std::uint8_t> bytes) {
    return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8U |
           static_cast<std::uint32_t>(bytes[2]) << 16U |
           static_cast<std::uint32_t>(bytes[3]) << 24U;
}

// The library's own decompressor leaves the content of broken data undefined, so the checksum and
// the length at the end decide.
std::optional<ZRMData> wholeGzipContent(std::span<const std::uint8_t> body) {
    if (!zrm_isGzipData(body) || body.size() <= kTrailerLength) {
        return std::nullopt;
    }
    auto content = zrm_ungzipData(body);
    const auto trailer = body.last(kTrailerLength);
    const auto checksum =
        crc32(crc32(0, nullptr, 0), content.data(), static_cast<uInt>(content.size()));
    if (checksum != littleEndian(trailer) ||
        static_cast<std::uint32_t>(content.size()) != littleEndian(trailer.subspan(4))) {
        return std::nullopt;
    }
    return content;
}

ZRMResult<ZRMInspectedUpload> onlyEvent(const ZRMJsonValue& payload) {
    const auto refuse = [](const char* message) {
        return zrm_inspectError(ZRMInspectErrorNotEvent, message);
    };
    const auto* object = payload.if_object();
    const auto* member = object != nullptr ? object->if_contains("array") : nullptr;
    const auto* array = member != nullptr ? member->if_array() : nullptr;
    if (array == nullptr || object->size() != 1 || array->size() != 1) {
        return refuse("the payload is not {\"array\":[...]} with one element");
    }
    const auto* event = array->front().if_object();
    if (event == nullptr || event->size() != 1 || !event->begin()->value().is_object()) {
        return refuse("the event is not an object whose one member is an object");
    }
    return ZRMInspectedUpload{event->begin()->key(), *event};
}

}  // namespace

ZRMResult<ZRMInspectedUpload> zrm_uploadFromBytes(std::span<const std::uint8_t> body) {
    const auto document = wholeGzipContent(body);
    if (!document) {
        return zrm_inspectError(ZRMInspectErrorNotGzip, "not one whole gzip member");
    }
    const auto jws = ZRMJwsObject::jwsObjectFromData(*document);
    if (!jws) {
        return jws.error();
    }
    if (!jws.value().signatures().empty()) {
        return zrm_inspectError(ZRMInspectErrorNotJws, "the upload carries signatures");
    }
    const auto payload =
        zrm_dataFromBase64String(zrm_base64FromBase64UrlString(jws.value().payload()));
    if (!payload) {
        return zrm_inspectError(ZRMInspectErrorNotJws, "the payload is not base64url");
    }
    const auto json = zrm_jsonFromData(*payload);
    return json ? onlyEvent(json.value()) : json.error();
}

ZRMInspection zrm_inspectUpload(const std::string& path) {
    ZRMDictionary report{
        {"bytes", nullptr}, {"eventType", nullptr}, {"event", nullptr}, {"error", nullptr}};
    const auto bytes = zrm_readInspectedFile(path);
    if (!bytes) {
        report["error"] = zrm_reportOfError(bytes.error());
        return {report, false};
    }
    report["bytes"] = bytes.value().size();
    const auto upload = zrm_uploadFromBytes(bytes.value());
    if (!upload) {
        report["error"] = zrm_reportOfError(upload.error());
        return {report, false};
    }
    report["eventType"] = upload.value().eventType;
    report["event"] = upload.value().event;
    return {report, true};
}
