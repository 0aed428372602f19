// UTF-8 text as ICU takes it. For the sources of the core kit that call ICU.
#pragma once

#include <string_view>

#include <unicode/unistr.h>

// Ill-formed sequences become U+FFFD.
inline icu::UnicodeString zrm_unicodeString(std::string_view text) {
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}
