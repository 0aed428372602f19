#include "ZRMPlatform/Linux/ZRMLinuxNamedUuid.h"

#include <array>

#include "ZRMPlatform/Linux/ZRMLinuxDigests.h"

namespace {

// 6d0f2c1e-93a4-4b7b-8f52-c47d1ab05e39
constexpr std::array<std::uint8_t, 16> kNameSpace = {
    0x6d, 0x0f, 0x2c, 0x1e, 0x93, 0xa4, 0x4b, 0x7b, 0x8f, 0x52, 0xc4, 0x7d, 0x1a, 0xb0, 0x5e, 0x39};

std::string textOf(std::span<const std::uint8_t, 16> bytes) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        if (at == 4 || at == 6 || at == 8 || at == 10) {
            text += '-';
        }
        text += kDigits[bytes[at] >> 4U];
        text += kDigits[bytes[at] & 0x0FU];
    }
    return text;
}

}  // namespace

std::optional<std::string> zrm_namedUuid(std::string_view name) {
    const auto context = ZRMLinuxDigests().makeContext(ZRMDigestAlgorithm::Sha1);
    if (!context) {
        return std::nullopt;
    }
    context->update(kNameSpace);
    context->update(zrm_dataFromText(name));
    auto digest = context->finish();
    if (!digest) {
        return std::nullopt;
    }
    auto& bytes = *digest;
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0FU) | 0x50U);  // version 5
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3FU) | 0x80U);  // the variant
    return textOf(std::span(bytes).first<16>());
}
