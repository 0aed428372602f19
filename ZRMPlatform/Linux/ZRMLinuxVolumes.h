// Sizes of file systems.
#pragma once

#include "ZRMPlatform/Ports/ZRMHardware.h"

// What is free includes the blocks that the file system keeps for the superuser; an important usage
// gets those that are left without them. Errors are of kZRMPosixErrorDomain.
class ZRMLinuxVolumes : public ZRMVolumes {
  public:
    [[nodiscard]] std::optional<ZRMResult<ZRMVolumeCapacity>> capacityForImportantUsage(
        const std::string& path) const override;
    [[nodiscard]] ZRMResult<ZRMVolumeCapacity> fileSystemCapacity(
        const std::string& path) const override;
};
