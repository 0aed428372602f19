// How a login that the host reports has ended.
#pragma once

#include <string>

#include "ZRMPlatform/Ports/Values/ZRMExport.h"

enum class ZRMLoginResult : int {
    Success = 0,            // "SUCCESS"
    IncorrectLogin = 1,     // "INCORRECT_LOGIN"
    IncorrectPassword = 2,  // "INCORRECT_PASSWORD"
    DropConnection = 3,     // "DROP_CONNECTION"
    CloseApplication = 4,   // "CLOSE_APPLICATION"
    AuthTimeout = 5,        // "AUTH_TIMEOUT"
    UnknownError = 6,       // "UNKNOWN_ERROR"
};

// The text that goes to the server. A number outside the enumeration is a programming error: it
// throws ZRMAssertionFailure, "Unsupported login result". From any thread.
ZRM_EXPORT std::string zrm_stringFromLoginResult(ZRMLoginResult result);
