// Values to JSON text.
#pragma once

#include <string>
#include <string_view>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonErrors.h"
#include "ZRMPlatform/Ports/Values/ZRMResult.h"

enum class ZRMJsonLayout {
    Compact,  // no white space at all
    Pretty,   // one member a line, indented by two blanks a level, "key" : value
};

// Always valid JSON in UTF-8: in strings, bytes that are not UTF-8 become U+FFFD. Numbers are
// written so that they read back equal. Fails in kZRMJsonErrorDomain on a number that JSON cannot
// express and on nesting deeper than 128.
ZRMResult<std::string> zrm_textFromJson(const ZRMJsonValue& value,
                                        ZRMJsonLayout layout = ZRMJsonLayout::Compact);

// The text with every byte sequence that is not UTF-8 replaced by U+FFFD.
std::string zrm_validUtf8String(std::string_view text);
