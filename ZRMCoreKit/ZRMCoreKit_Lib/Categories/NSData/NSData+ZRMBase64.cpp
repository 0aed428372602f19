#include <algorithm>
#include <array>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMBase64.h"

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t kUnknown = 0xFF;

constexpr std::array<std::uint8_t, 256> makeValues() {
    std::array<std::uint8_t, 256> values{};
    values.fill(kUnknown);
    for (std::size_t index = 0; index < kAlphabet.size(); ++index) {
        values[static_cast<std::uint8_t>(kAlphabet[index])] = static_cast<std::uint8_t>(index);
    }
    return values;
}

constexpr auto kValues = makeValues();

}  // namespace

std::string zrm_base64EncodedString(std::span<const std::uint8_t> data) {
    std::string text;
    text.reserve((data.size() + 2) / 3 * 4);
    for (std::size_t index = 0; index < data.size(); index += 3) {
        const auto count = std::min<std::size_t>(3, data.size() - index);
        std::uint32_t group = 0;
        for (std::size_t offset = 0; offset < 3; ++offset) {
            group = group << 8U | (offset < count ? data[index + offset] : 0U);
        }
        for (std::size_t digit = 0; digit < 4; ++digit) {
            text.push_back(digit <= count ? kAlphabet[group >> (18U - 6U * digit) & 0x3FU] : '=');
        }
    }
    return text;
}

std::optional<ZRMData> zrm_dataFromBase64String(std::string_view text, ZRMBase64Decoding decoding) {
    ZRMData data;
    data.reserve(text.size() / 4 * 3 + 2);
    std::uint32_t bits = 0;
    std::size_t digits = 0;
    std::size_t paddings = 0;
    for (const char character : text) {
        const auto value = kValues[static_cast<std::uint8_t>(character)];
        if (character == '=') {
            ++paddings;
        } else if (value == kUnknown) {
            if (decoding == ZRMBase64Decoding::Strict) {
                return {};
            }
        } else if (paddings > 0) {
            return {};
        } else {
            bits = bits << 6U | value;
            if (++digits % 4 != 1) {
                data.push_back(static_cast<std::uint8_t>(bits >> (2U * ((4U - digits % 4U) % 4U))));
            }
        }
    }
    const auto rest = digits % 4;
    if (rest == 1 || (rest > 1 && paddings < 4 - rest)) {
        return {};
    }
    return data;
}
