#include "ZRMPlatform/Linux/ZRMLinuxFileHandle.h"

#include <cerrno>
#include <limits>

#include <unistd.h>

namespace {

constexpr auto kLargestOffset = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());

}  // namespace

ZRMLinuxFileHandle::ZRMLinuxFileHandle(ZRMLinuxDescriptor file, std::string path)
    : file_(std::move(file)), path_(std::move(path)) {}

std::optional<ZRMError> ZRMLinuxFileHandle::seekToEnd() {
    if (::lseek(file_.number(), 0, SEEK_END) < 0) {
        return zrm_posixError(errno, path_);
    }
    return std::nullopt;
}

std::optional<ZRMError> ZRMLinuxFileHandle::seekTo(std::uint64_t offset) {
    if (offset > kLargestOffset) {
        return zrm_posixError(EINVAL, path_);
    }
    if (::lseek(file_.number(), static_cast<off_t>(offset), SEEK_SET) < 0) {
        return zrm_posixError(errno, path_);
    }
    return std::nullopt;
}

std::optional<ZRMError> ZRMLinuxFileHandle::write(std::span<const std::uint8_t> bytes) {
    if (const int failure = zrm_writeAll(file_.number(), bytes)) {
        return zrm_posixError(failure, path_);
    }
    return std::nullopt;
}

std::optional<ZRMError> ZRMLinuxFileHandle::truncateAt(std::uint64_t offset) {
    if (offset > kLargestOffset) {
        return zrm_posixError(EINVAL, path_);
    }
    if (::ftruncate(file_.number(), static_cast<off_t>(offset)) != 0) {
        return zrm_posixError(errno, path_);
    }
    return std::nullopt;
}

std::optional<ZRMError> ZRMLinuxFileHandle::synchronize() {
    if (::fsync(file_.number()) != 0) {
        return zrm_posixError(errno, path_);
    }
    return std::nullopt;
}

int zrm_writeAll(int descriptor, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const auto count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return errno;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return 0;
}
