#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMCodePoint.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMIcu.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMUtf16.h"

namespace {

// Calls back with each code point, or a negative one for an ill-formed sequence, and its extent.
template <class Visit>
void forEachCodePoint(std::string_view text, Visit visit) {
    std::size_t start = 0;
    while (start < text.size()) {
        const auto [character, length] = zrm_firstCodePoint(text.substr(start));
        visit(character, start, length);
        start += length;
    }
}

// How many bytes at the start are ASCII, found eight at a time where there are as many.
std::size_t asciiLength(std::string_view text) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080U;
    std::size_t length = 0;
    for (std::uint64_t word = 0; text.size() - length >= sizeof(word); length += sizeof(word)) {
        std::memcpy(&word, text.data() + length, sizeof(word));
        if ((word & kHighBits) != 0) {
            break;
        }
    }
    while (length < text.size() && static_cast<unsigned char>(text[length]) < 0x80) {
        ++length;
    }
    return length;
}

// How many bytes at the start are well-formed characters of two bytes.
std::size_t twoByteLength(std::string_view text) {
    const auto byteAt = [text](std::size_t index) {
        return static_cast<unsigned char>(text[index]);
    };
    std::size_t length = 0;
    while (text.size() - length >= 2 && byteAt(length) >= 0xC2 && byteAt(length) <= 0xDF &&
           (byteAt(length + 1) & 0xC0U) == 0x80) {
        length += 2;
    }
    return length;
}

// Most texts are ASCII, whose mapping needs no tables.
std::string mappedAscii(std::string_view text, char first, char last) {
    constexpr char kCaseBit = 0x20;
    std::string mapped(text);
    for (auto& character : mapped) {
        if (character >= first && character <= last) {
            character = static_cast<char>(character ^ kCaseBit);
        }
    }
    return mapped;
}

// Without ICU the letters beyond ASCII stay as they are.
std::string mapped(std::string_view text, char first, char last,
                   decltype(&::u_strToLower) ZRMIcu::*map) {
    const auto* const icu = zrm_isAscii(text) ? nullptr : ZRMIcu::shared();
    if (icu == nullptr) {
        return mappedAscii(text, first, last);
    }
    const auto units = zrm_utf16FromUtf8(text);
    return zrm_utf8FromUtf16(
        zrm_icuText(units.size(), [&](UChar* buffer, std::int32_t capacity, UErrorCode* status) {
            return (icu->*map)(buffer, capacity, units.data(),
                               static_cast<std::int32_t>(units.size()), "", status);
        }));
}

bool isControl(std::int32_t character) {
    if (character < 0x80) {
        return (character >= 0 && character < ' ') || character == 0x7F;
    }
    const auto* const icu = ZRMIcu::shared();
    if (icu == nullptr) {
        return false;
    }
    const auto category = icu->u_charType(character);
    return category == U_CONTROL_CHAR || category == U_FORMAT_CHAR;
}

}  // namespace

bool zrm_isAscii(std::string_view text) {
    return asciiLength(text) == text.size();
}

bool zrm_isValidUtf8(std::string_view text) {
    while (!text.empty()) {
        const auto ascii = asciiLength(text);
        text.remove_prefix(ascii);
        const auto twoBytes = twoByteLength(text);
        text.remove_prefix(twoBytes);
        if (ascii + twoBytes > 0) {
            continue;
        }
        const auto [character, length] = zrm_firstCodePoint(text);
        if (character < 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::size_t zrm_utf16Length(std::string_view text) {
    std::size_t units = 0;
    while (!text.empty()) {
        const auto ascii = asciiLength(text);
        text.remove_prefix(ascii);
        const auto twoBytes = twoByteLength(text);
        text.remove_prefix(twoBytes);
        units += ascii + twoBytes / 2;
        if (ascii + twoBytes == 0) {
            const auto [character, length] = zrm_firstCodePoint(text);
            units += character > 0xFFFF ? 2 : 1;
            text.remove_prefix(length);
        }
    }
    return units;
}

std::string zrm_repairedUtf8(std::string_view text) {
    if (zrm_isValidUtf8(text)) {
        return std::string(text);
    }
    std::string repaired;
    repaired.reserve(text.size());
    forEachCodePoint(text, [&](std::int32_t character, std::size_t start, std::size_t length) {
        if (character < 0) {
            repaired.append("\xEF\xBF\xBD");
        } else {
            repaired.append(text.substr(start, length));
        }
    });
    return repaired;
}

std::string_view zrm_trimmedControlCharacters(std::string_view text) {
    std::size_t begin = text.size();
    std::size_t end = text.size();
    bool isInside = false;
    forEachCodePoint(text, [&](std::int32_t character, std::size_t start, std::size_t length) {
        if (isControl(character)) {
            return;
        }
        if (!isInside) {
            isInside = true;
            begin = start;
        }
        end = start + length;
    });
    return isInside ? text.substr(begin, end - begin) : std::string_view();
}

std::string zrm_lowercasedText(std::string_view text) {
    return mapped(text, 'A', 'Z', &ZRMIcu::u_strToLower);
}

std::string zrm_uppercasedText(std::string_view text) {
    return mapped(text, 'a', 'z', &ZRMIcu::u_strToUpper);
}

std::string zrm_addressText(const void* address) {
    std::array<char, 2 + 2 * sizeof(void*) + 1> text{};
    std::snprintf(text.data(), text.size(), "0x%llx",
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(address)));
    return text.data();
}
