#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

ZRMError zrm_posixError(int code, const std::string& subject) {
    return ZRMError::withDescription(kZRMPosixErrorDomain, code,
                                     std::generic_category().message(code) + ": " + subject);
}

std::optional<std::string> zrm_environmentVariable(const std::string& name) {
    const char* const value = std::getenv(name.c_str());  // NOLINT(concurrency-mt-unsafe)
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::optional<std::string> zrm_smallFileText(const std::string& path) {
    constexpr std::size_t kMaximumBytes = std::size_t{64} * 1024;
    const ZRMLinuxDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.isOpen()) {
        return std::nullopt;
    }
    std::string text;
    std::array<char, 4096> chunk{};
    while (text.size() < kMaximumBytes) {
        const auto count = ::read(file.number(), chunk.data(), chunk.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        text.append(chunk.data(), static_cast<std::size_t>(count));
    }
    return text;
}

ZRMLinuxDescriptor::~ZRMLinuxDescriptor() {
    if (isOpen()) {
        ::close(number_);
    }
}
