// What goes wrong with JSON beside the parser's own errors, which keep the parser's domain.
#pragma once

#include "ZRMPlatform/Ports/Values/ZRMError.h"

inline constexpr const char* kZRMJsonErrorDomain = "ZRMJsonErrorDomain";

enum ZRMJsonErrorCode : int {
    ZRMJsonErrorTooLarge = 1,      // more bytes than the reader takes
    ZRMJsonErrorDuplicateKey = 2,  // two members of one object have the same name
    ZRMJsonErrorNotANumber = 3,    // infinities and NaN have no JSON form
    ZRMJsonErrorTooDeep = 4,       // nested deeper than the writer goes
};
