#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMUtf16.h"

#include <array>
#include <cstdint>
#include <limits>

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMCodePoint.h"

namespace {

constexpr std::int32_t kReplacement = 0xFFFD;

}  // namespace

std::u16string zrm_utf16FromUtf8(std::string_view text) {
    text = text.substr(0, std::numeric_limits<std::int32_t>::max());
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty()) {
        const auto [value, length] = zrm_firstCodePoint(text);
        const auto character = value < 0 ? kReplacement : value;
        if (U_IS_BMP(character)) {
            units.push_back(static_cast<char16_t>(character));
        } else {
            units.push_back(static_cast<char16_t>(U16_LEAD(character)));
            units.push_back(static_cast<char16_t>(U16_TRAIL(character)));
        }
        text.remove_prefix(length);
    }
    return units;
}

std::string zrm_utf8FromUtf16(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    std::size_t at = 0;
    while (at < text.size()) {
        std::int32_t character = 0;
        U16_NEXT_OR_FFFD(text, at, text.size(), character);
        std::array<char, U8_MAX_LENGTH> sequence{};
        std::size_t length = 0;
        U8_APPEND_UNSAFE(sequence, length, character);
        bytes.append(sequence.data(), length);
    }
    return bytes;
}
