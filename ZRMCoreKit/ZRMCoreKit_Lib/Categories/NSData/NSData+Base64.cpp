#include <array>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<std::int8_t, 256> makeValues() {
    std::array<std::int8_t, 256> values{};
    values.fill(-1);
    for (std::size_t index = 0; index < kAlphabet.size(); ++index) {
        values[static_cast<unsigned char>(kAlphabet[index])] = static_cast<std::int8_t>(index);
    }
    return values;
}

constexpr auto kValues = makeValues();

}  // namespace

std::string zrm_base64String(std::span<const std::uint8_t> data) {
    std::string text;
    text.reserve((data.size() + 2) / 3 * 4);
    for (std::size_t index = 0; index < data.size(); index += 3) {
        const auto group = data.subspan(index, std::min<std::size_t>(3, data.size() - index));
        std::uint32_t bits = 0;
        for (std::size_t place = 0; place < 3; ++place) {
            bits = bits << 8U | (place < group.size() ? group[place] : 0U);
        }
        text.push_back(kAlphabet[bits >> 18U & 63U]);
        text.push_back(kAlphabet[bits >> 12U & 63U]);
        text.push_back(group.size() > 1 ? kAlphabet[bits >> 6U & 63U] : '=');
        text.push_back(group.size() > 2 ? kAlphabet[bits & 63U] : '=');
    }
    return text;
}

std::optional<ZRMData> zrm_dataFromBase64String(std::string_view text, ZRMBase64Decoding decoding) {
    ZRMData data;
    data.reserve(text.size() / 4 * 3 + 2);
    std::uint32_t bits = 0;
    std::size_t characters = 0;
    std::size_t pads = 0;
    for (const auto character : text) {
        const auto value = kValues[static_cast<unsigned char>(character)];
        if (character == '=') {
            ++pads;
        } else if (value < 0) {
            if (decoding == ZRMBase64Decoding::Strict) {
                return std::nullopt;
            }
        } else if (pads > 0) {
            return std::nullopt;
        } else {
            bits = bits << 6U | static_cast<std::uint32_t>(value);
            if (++characters % 4 != 1) {
                const auto surplusBits = 6 - 2 * ((characters - 1) % 4);
                data.push_back(static_cast<std::uint8_t>(bits >> surplusBits));
            }
        }
    }
    const auto rest = characters % 4;
    const bool isWhole = rest == 0 || (rest != 1 && pads >= 4 - rest);
    return isWhole ? std::optional(std::move(data)) : std::nullopt;
}
