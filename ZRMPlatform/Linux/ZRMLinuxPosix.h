// What the bodies share about POSIX: errors as values and descriptors that close themselves.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "ZRMPlatform/Ports/Values/ZRMError.h"

// An error in kZRMPosixErrorDomain whose description is the system's text, then `subject`.
ZRMError zrm_posixError(int code, const std::string& subject);

// The value of an environment variable; absent when it is not set.
std::optional<std::string> zrm_environmentVariable(const std::string& name);

// The whole of a small regular file, such as one below /proc or /sys; absent when it cannot be
// read.
std::optional<std::string> zrm_smallFileText(const std::string& path);

// Owns one descriptor; moves, does not copy.
class ZRMLinuxDescriptor {
  public:
    explicit ZRMLinuxDescriptor(int number = -1) : number_(number) {}
    ~ZRMLinuxDescriptor();
    ZRMLinuxDescriptor(ZRMLinuxDescriptor&& other) noexcept
        : number_(std::exchange(other.number_, -1)) {}
    ZRMLinuxDescriptor& operator=(ZRMLinuxDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ZRMLinuxDescriptor(const ZRMLinuxDescriptor&) = delete;
    ZRMLinuxDescriptor& operator=(const ZRMLinuxDescriptor&) = delete;

    [[nodiscard]] int number() const { return number_; }
    [[nodiscard]] bool isOpen() const { return number_ >= 0; }

  private:
    int number_;
};
