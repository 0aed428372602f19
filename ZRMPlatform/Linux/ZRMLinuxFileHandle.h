// An open file over a descriptor.
#pragma once

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"
#include "ZRMPlatform/Ports/ZRMFileManager.h"

class ZRMLinuxFileHandle : public ZRMFileHandle {
  public:
    ZRMLinuxFileHandle(ZRMLinuxDescriptor file, std::string path);

    std::optional<ZRMError> seekToEnd() override;
    std::optional<ZRMError> seekTo(std::uint64_t offset) override;
    std::optional<ZRMError> write(std::span<const std::uint8_t> bytes) override;
    std::optional<ZRMError> truncateAt(std::uint64_t offset) override;
    std::optional<ZRMError> synchronize() override;

  private:
    ZRMLinuxDescriptor file_;
    std::string path_;
};

// Writes all bytes at the descriptor's offset; 0, or the `errno` value of the failure.
int zrm_writeAll(int descriptor, std::span<const std::uint8_t> bytes);
