// JSON bytes to values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonErrors.h"
#include "ZRMPlatform/Ports/Values/ZRMResult.h"

// Longer documents are refused unread.
inline constexpr std::size_t kZRMJsonMaximumSize = std::size_t{16} * 1024 * 1024;

enum class ZRMJsonDuplicateKeys {
    LastWins,
    Refuse,  // for signed documents, where two readers must not see two different things
};

// Strict JSON in UTF-8, nested at most 32 deep. Hostile bytes yield an error: the parser's own, or
// one in kZRMJsonErrorDomain.
ZRMResult<ZRMJsonValue> zrm_jsonFromData(
    std::span<const std::uint8_t> bytes,
    ZRMJsonDuplicateKeys duplicateKeys = ZRMJsonDuplicateKeys::LastWins);
