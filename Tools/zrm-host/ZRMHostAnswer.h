// What the host prints for one command.
#pragma once

#include <optional>
#include <string>

#include <boost/json/value.hpp>

#include "ZRMPlatform/Ports/Values/ZRMError.h"

// The domain of the host's own errors: commands that never reached the library.
inline constexpr const char* kZRMHostErrorDomain = "ZRMHostErrorDomain";

enum ZRMHostErrorCode : int {
    ZRMHostErrorUnknownCommand = 1,
    ZRMHostErrorWrongArguments = 2,  // their number or their form
    ZRMHostErrorUnbalancedQuotes = 3,
    // 4 stood for commands that drove nothing; a script may still look for it.
    ZRMHostErrorNoAnswer = 5,  // the library did not call its handler in time
};

ZRMError zrm_hostError(ZRMHostErrorCode code, const std::string& message);

struct ZRMHostAnswer {
    std::string op;
    std::optional<ZRMError> error;
    std::optional<boost::json::value> value;

    // {"op":…,"error":null} or {"op":…,"error":{"domain":…,"code":…,"message":…}}, with "value"
    // where there is one; without a line feed. Bytes of `op` that are no printable ASCII become
    // "?".
    [[nodiscard]] std::string line() const;
};
