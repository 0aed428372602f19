#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMCodePoint.h"

#include <unicode/utf8.h>

ZRMCodePoint zrm_firstCodePoint(std::string_view text) {
    const auto window = text.substr(0, U8_MAX_LENGTH);
    const auto size = static_cast<std::int32_t>(window.size());
    std::int32_t length = 0;
    UChar32 value = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"  // within the macro
    U8_NEXT(window.data(), length, size, value);
#pragma GCC diagnostic pop
    return {value, static_cast<std::size_t>(length)};
}
