#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMScanner.h"

#include <algorithm>
#include <limits>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMCodePoint.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMIcu.h"

namespace {

bool isWhiteSpace(std::int32_t character) {
    if (character < 0x80) {
        return character == ' ' || (character >= '\t' && character <= '\r');
    }
    const auto* const icu = ZRMIcu::shared();
    return icu != nullptr && icu->u_isUWhiteSpace(character) != 0;
}

std::string_view withoutLeadingSpace(std::string_view text) {
    while (!text.empty()) {
        const auto [character, length] = zrm_firstCodePoint(text);
        if (!isWhiteSpace(character)) {
            break;
        }
        text.remove_prefix(length);
    }
    return text;
}

}  // namespace

bool ZRMScanner::isAtEnd() const {
    return withoutLeadingSpace(rest_).empty();
}

std::optional<std::int32_t> ZRMScanner::scanInt() {
    constexpr std::int64_t kLimit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
    auto text = withoutLeadingSpace(rest_);
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    const auto digits = std::min(text.find_first_not_of("0123456789"), text.size());
    if (digits == 0) {
        return std::nullopt;
    }
    std::int64_t magnitude = 0;
    for (const auto digit : text.substr(0, digits)) {
        magnitude = std::min(kLimit, magnitude * 10 + (digit - '0'));
    }
    rest_ = text.substr(digits);
    return static_cast<std::int32_t>(isNegative ? -magnitude : std::min(kLimit - 1, magnitude));
}

std::string_view ZRMScanner::scanCharactersFromSet(std::string_view set) {
    const auto text = withoutLeadingSpace(rest_);
    const auto length = std::min(text.find_first_not_of(set), text.size());
    if (length > 0) {
        rest_ = text.substr(length);
    }
    return text.substr(0, length);
}
