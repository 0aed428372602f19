// UTF-8 text as ICU takes it, and back.
#pragma once

#include <string>
#include <string_view>

// Ill-formed sequences become U+FFFD. ICU counts in 32 bits: what lies beyond is cut off.
[[nodiscard]] std::u16string zrm_utf16FromUtf8(std::string_view text);

// Surrogates without their other half become U+FFFD.
[[nodiscard]] std::string zrm_utf8FromUtf16(std::u16string_view text);
