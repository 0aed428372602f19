// Errors of the module's public operations, in kZRMJwsErrorDomain.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "ZRMPlatform/Ports/Values/ZRMError.h"

enum ZRMJwsErrors : std::int64_t {
    ZRMJwsErrorUnknown = 0,
    ZRMJwsErrorSignatureNotFound = 1,       // there is nothing to verify
    ZRMJwsErrorSignatureInvalidFormat = 2,  // a signature's encoding or header cannot be read
};

class ZRMJwsErrorFactory {
  public:
    // With the code's text as its description. Throws ZRMAssertionFailure for a code that is none
    // of ZRMJwsErrors.
    static ZRMError errorForCode(std::int64_t code);
    // Any code, with that user information alone.
    static ZRMError errorForCode(std::int64_t code, std::map<std::string, std::string> userInfo);
};
