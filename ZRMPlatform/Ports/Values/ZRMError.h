// Failures as values: a domain, a code within it, and texts about it.
#pragma once

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>

#include "ZRMPlatform/Ports/Values/ZRMExport.h"

// The userInfo key under which an error keeps the text for people.
inline constexpr const char* kZRMLocalizedDescriptionKey = "NSLocalizedDescription";

// The domain of operating-system failures; the code is the `errno` value.
inline constexpr const char* kZRMPosixErrorDomain = "NSPOSIXErrorDomain";

// Immutable once made and safe to copy between threads.
class ZRMError {
  public:
    ZRMError(std::string domain, std::int64_t code,
             std::map<std::string, std::string> userInfo = {})
        : domain_(std::move(domain)), code_(code), userInfo_(std::move(userInfo)) {}

    // An error whose userInfo holds `description` alone.
    static ZRMError withDescription(std::string domain, std::int64_t code,
                                    std::string description) {
        return {std::move(domain), code, {{kZRMLocalizedDescriptionKey, std::move(description)}}};
    }

    [[nodiscard]] const std::string& domain() const { return domain_; }
    [[nodiscard]] std::int64_t code() const { return code_; }
    [[nodiscard]] const std::map<std::string, std::string>& userInfo() const { return userInfo_; }

    // The description entry, or a text made from domain and code where there is none.
    [[nodiscard]] std::string localizedDescription() const {
        const auto found = userInfo_.find(kZRMLocalizedDescriptionKey);
        if (found != userInfo_.end()) {
            return found->second;
        }
        return "The operation could not be completed. (" + domain_ + " error " +
               std::to_string(code_) + ".)";
    }

    friend bool operator==(const ZRMError&, const ZRMError&) = default;

  private:
    std::string domain_;
    std::int64_t code_;
    std::map<std::string, std::string> userInfo_;
};

// A broken rule of the programming interface, such as an enumeration value that does not exist.
class ZRM_EXPORT ZRMAssertionFailure : public std::logic_error {
  public:
    using std::logic_error::logic_error;
};

// An argument that the interface refuses, such as a value that must be present and is not.
class ZRM_EXPORT ZRMInvalidArgument : public std::invalid_argument {
  public:
    using std::invalid_argument::invalid_argument;
};
