// JSON values to text and back, strictly. All operations are pure and may be called from any
// thread.
//
// Failures are errors in the domain kZRMCocoaErrorDomain with the code kZRMJsonErrorCode and a
// description that names what was wrong.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMPlatform/Ports/Values/ZRMResult.h"

inline constexpr const char* kZRMCocoaErrorDomain = "NSCocoaErrorDomain";
inline constexpr int kZRMJsonErrorCode = 3840;

// Writing refuses what JSON cannot carry (a number that is not finite, text or a name that is not
// valid UTF-8) and nesting of more than 512 levels. Names keep their order, numbers are written as
// shortly as they read back, "/" stays as it is.

// Without any white space.
ZRMResult<std::string> zrm_compactJsonText(const ZRMJsonValue& value);
ZRMResult<std::string> zrm_compactJsonText(const ZRMDictionary& dictionary);

// One member or element a line, indented by two spaces a level, written `"name" : value`; an empty
// array is "[]" and an empty object "{}".
ZRMResult<std::string> zrm_prettyJsonText(const ZRMJsonValue& value);
ZRMResult<std::string> zrm_prettyJsonText(const ZRMDictionary& dictionary);

struct ZRMJsonReadingOptions {
    // Longer input is refused before it is looked at.
    std::size_t maximumBytes = std::size_t{16} * 1024 * 1024;
    // By default the last member of a name wins.
    bool refusesDuplicateNames = false;
};

// Reads one JSON text of any kind, as RFC 8259 has it: no comments, no trailing commas, nothing
// but white space after the value, no byte order mark, valid UTF-8, at most 32 levels of nesting,
// and numbers that a double can hold.
ZRMResult<ZRMJsonValue> zrm_jsonFromData(std::span<const std::uint8_t> bytes,
                                         const ZRMJsonReadingOptions& options = {});
ZRMResult<ZRMJsonValue> zrm_jsonFromText(std::string_view text,
                                         const ZRMJsonReadingOptions& options = {});
