// Standard base64 (RFC 4648, section 4).
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

enum class ZRMBase64Decoding {
    Strict,                   // a character outside the alphabet is an error
    IgnoreUnknownCharacters,  // such characters are skipped
};

// Without line breaks, padded with "=" to a multiple of four.
std::string zrm_base64EncodedString(std::span<const std::uint8_t> data);

// Absent when the text is no base64. Missing "=" at the end are refused, surplus ones accepted;
// bits beyond the last whole byte are dropped.
std::optional<ZRMData> zrm_dataFromBase64String(
    std::string_view text, ZRMBase64Decoding decoding = ZRMBase64Decoding::Strict);
