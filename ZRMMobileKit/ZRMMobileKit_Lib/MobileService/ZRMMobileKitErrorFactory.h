// Makes the errors of the library's own domain.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMMobileKit/ZRMMobileKitErrorCode.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

// From any thread.
class ZRMMobileKitErrorFactory {
  public:
    // The error with its told message. A code outside 0 to 12 throws ZRMAssertionFailure,
    // "Unsupported error code".
    static ZRMError errorForCode(ZRMMobileKitErrorCode code);
    // The error with the dictionary as it stands, which may hold no message at all.
    static ZRMError errorForCode(ZRMMobileKitErrorCode code,
                                 std::map<std::string, std::string> userInfo);

    // Codes 1 and 7 with the field, the value's text and the name of the value's type; an absent
    // value is given as nullptr.
    static ZRMError settingsInvalidFormatErrorForField(std::string_view field,
                                                       const ZRMJsonValue* withValue);
    static ZRMError settingsSignatureInvalidFormatErrorForField(std::string_view field,
                                                                const ZRMJsonValue* withValue);
};
