#include "ZRMPlatform/Linux/ZRMLinuxVolumes.h"

#include <cerrno>

#include <sys/statvfs.h>

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"

namespace {

ZRMResult<ZRMVolumeCapacity> capacityOf(const std::string& path, fsblkcnt_t statvfs::*available) {
    struct statvfs status {};
    int result = -1;
    do {
        result = ::statvfs(path.c_str(), &status);
    } while (result != 0 && errno == EINTR);
    if (result != 0) {
        return zrm_posixError(errno, path);
    }
    const std::uint64_t blockBytes = status.f_frsize;
    return ZRMVolumeCapacity{status.f_blocks * blockBytes, status.*available * blockBytes};
}

}  // namespace

std::optional<ZRMResult<ZRMVolumeCapacity>> ZRMLinuxVolumes::capacityForImportantUsage(
    const std::string& path) const {
    return capacityOf(path, &statvfs::f_bavail);
}

ZRMResult<ZRMVolumeCapacity> ZRMLinuxVolumes::fileSystemCapacity(const std::string& path) const {
    return capacityOf(path, &statvfs::f_bfree);
}
