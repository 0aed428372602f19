// UTF-8 text as ICU takes it. For the sources of the core kit that call ICU.
#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

#include <unicode/unistr.h>

// Ill-formed sequences become U+FFFD. ICU counts in 32 bits: what lies beyond is cut off.
inline icu::UnicodeString zrm_unicodeString(std::string_view text) {
    const auto countable = text.substr(0, std::numeric_limits<std::int32_t>::max());
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(countable.data(), static_cast<std::int32_t>(countable.size())));
}
