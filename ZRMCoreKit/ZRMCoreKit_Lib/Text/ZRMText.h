// What the library asks of UTF-8 text. All operations are pure and may be called from any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

[[nodiscard]] bool zrm_isAscii(std::string_view text);

// Whether the bytes are well-formed UTF-8: no overlong forms, no surrogates, nothing above
// U+10FFFF.
[[nodiscard]] bool zrm_isValidUtf8(std::string_view text);

// The number of UTF-16 code units. An ill-formed sequence counts as the one unit of U+FFFD.
[[nodiscard]] std::size_t zrm_utf16Length(std::string_view text);

// Every maximal ill-formed sequence becomes one U+FFFD; well-formed text comes back as it is.
[[nodiscard]] std::string zrm_repairedUtf8(std::string_view text);

// Without the control and format characters (Unicode categories Cc and Cf) at both ends. An
// ill-formed sequence ends the trimming on its side.
[[nodiscard]] std::string_view zrm_trimmedControlCharacters(std::string_view text);

// Unicode case mapping without regard to any locale; ill-formed sequences become U+FFFD.
[[nodiscard]] std::string zrm_lowercasedText(std::string_view text);
[[nodiscard]] std::string zrm_uppercasedText(std::string_view text);

// An address for people, "0x" and lower-case hexadecimal without leading zeros.
[[nodiscard]] std::string zrm_addressText(const void* address);
