#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSCharacterSet/NSCharacterSet+ZRMCoreKit.h"

std::string_view zrm_ISO8601DurationDateCharacters() {
    return "YMWD";
}

std::string_view zrm_ISO8601DurationTimeCharacters() {
    return "HMS";
}
