// Whether a host's values may pass.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// Lengths are in UTF-16 code units. Text that is not valid UTF-8 never passes. From any thread.
class ZRMMobileServiceValueChecker {
  public:
    static bool isValidHttpUrl(std::string_view url);
    // Present, 1 to kZRMMaxLoginLength.
    static bool isValidLogin(const std::optional<std::string>& login);
    // At most kZRMMaxUINavigationPointLength; absent and empty pass.
    static bool isValidUINavigationPoint(const std::optional<std::string>& navigationPoint);
    // At most kZRMMaxSessionIdLength; absent and empty pass.
    static bool isValidSessionId(const std::optional<std::string>& sessionId);
};
