#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"

namespace {

template <class Object>
std::optional<ZRMData> dataFromJson(const Object& object, std::optional<ZRMError>& error) {
    const auto text = zrm_compactJsonText(object);
    if (!text) {
        error = text.error();
        zrm_logError(nullptr, "Error while converting json to data object: " +
                                  text.error().localizedDescription());
        return std::nullopt;
    }
    error.reset();
    return zrm_dataFromText(text.value());
}

std::optional<ZRMData> digest(ZRMDigests& digests, ZRMDigestAlgorithm algorithm,
                              std::span<const std::uint8_t> data) {
    const auto context = digests.makeContext(algorithm);
    if (!context) {
        return std::nullopt;
    }
    context->update(data);
    return context->finish();
}

}  // namespace

std::optional<ZRMData> zrm_dataFromJson(const ZRMJsonValue& object) {
    std::optional<ZRMError> ignored;
    return dataFromJson(object, ignored);
}

std::optional<ZRMData> zrm_dataFromJson(const ZRMDictionary& object) {
    std::optional<ZRMError> ignored;
    return dataFromJson(object, ignored);
}

std::optional<ZRMData> zrm_dataFromJson(const ZRMJsonValue& object,
                                        std::optional<ZRMError>& error) {
    return dataFromJson(object, error);
}

std::optional<ZRMData> zrm_dataFromJson(const ZRMDictionary& object,
                                        std::optional<ZRMError>& error) {
    return dataFromJson(object, error);
}

std::string zrm_hexString(std::span<const std::uint8_t> data) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * data.size());
    for (const auto byte : data) {
        text.push_back(kDigits[byte >> 4U]);
        text.push_back(kDigits[byte & 0xFU]);
    }
    return text;
}

ZRMData zrm_xorWithData(std::span<const std::uint8_t> data, std::span<const std::uint8_t> key) {
    ZRMData result(data.begin(), data.end());
    std::size_t keyIndex = 0;
    for (std::size_t index = 0; index < result.size() && !key.empty(); ++index) {
        result[index] ^= key[keyIndex];
        keyIndex = keyIndex + 1 == key.size() ? 0 : keyIndex + 1;
    }
    return result;
}

ZRMData zrm_xorWithBytes(std::span<const std::uint8_t> data, const std::uint8_t* bytes,
                         std::size_t length) {
    return zrm_xorWithData(data, {bytes, length});
}

std::optional<ZRMData> zrm_hashSHA256(ZRMDigests& digests, std::span<const std::uint8_t> data) {
    return digest(digests, ZRMDigestAlgorithm::Sha256, data);
}

std::optional<ZRMData> zrm_hashSHA1(ZRMDigests& digests, std::span<const std::uint8_t> data) {
    return digest(digests, ZRMDigestAlgorithm::Sha1, data);
}
