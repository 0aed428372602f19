#include <array>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view kUrlAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

constexpr std::array<std::int8_t, 256> makeValues() {
    std::array<std::int8_t, 256> values{};
    values.fill(-1);
    for (std::size_t index = 0; index < kAlphabet.size(); ++index) {
        values[static_cast<unsigned char>(kAlphabet[index])] = static_cast<std::int8_t>(index);
    }
    return values;
}

constexpr auto kValues = makeValues();

// Without padding.
std::string encoded(std::span<const std::uint8_t> data, std::string_view alphabet) {
    std::string text(data.size() / 3 * 4 + (data.size() % 3 * 4 + 2) / 3, '\0');
    auto character = text.begin();
    const auto write = [&](std::uint32_t bits, int sextets) {
        for (int shift = 18; sextets > 0; --sextets, shift -= 6) {
            *character++ = alphabet[bits >> static_cast<unsigned>(shift) & 63U];
        }
    };
    std::size_t index = 0;
    for (; data.size() - index >= 3; index += 3) {
        write(static_cast<std::uint32_t>(data[index] << 16U | data[index + 1] << 8U |
                                         data[index + 2]),
              4);
    }
    if (data.size() - index == 2) {
        write(static_cast<std::uint32_t>(data[index] << 16U | data[index + 1] << 8U), 3);
    } else if (data.size() - index == 1) {
        write(static_cast<std::uint32_t>(data[index] << 16U), 2);
    }
    return text;
}

}  // namespace

std::string zrm_base64String(std::span<const std::uint8_t> data) {
    auto text = encoded(data, kAlphabet);
    text.append((4 - text.size() % 4) % 4, '=');
    return text;
}

std::string zrm_base64UrlString(std::span<const std::uint8_t> data) {
    return encoded(data, kUrlAlphabet);
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
