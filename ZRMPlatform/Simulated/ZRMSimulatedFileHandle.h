// An open file of a simulated process.
#pragma once

#include <memory>
#include <string>

#include "ZRMPlatform/Ports/ZRMFileManager.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDisk.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedProcess.h"

// Stays on its file when that is moved or removed.
class ZRMSimulatedFileHandle final : public ZRMFileHandle {
  public:
    ZRMSimulatedFileHandle(std::shared_ptr<ZRMSimulatedDisk> disk,
                           std::shared_ptr<ZRMSimulatedProcess> process,
                           std::shared_ptr<ZRMSimulatedFile> file, std::string path);

    std::optional<ZRMError> seekToEnd() override;
    std::optional<ZRMError> seekTo(std::uint64_t offset) override;
    std::optional<ZRMError> write(std::span<const std::uint8_t> bytes) override;
    std::optional<ZRMError> truncateAt(std::uint64_t offset) override;
    std::optional<ZRMError> synchronize() override;

  private:
    int judge(ZRMSimulatedDiskOperation operation);

    std::shared_ptr<ZRMSimulatedDisk> disk_;
    std::shared_ptr<ZRMSimulatedProcess> process_;
    std::shared_ptr<ZRMSimulatedFile> file_;
    std::string path_;
    std::uint64_t offset_ = 0;
};

// Absent for 0.
std::optional<ZRMError> zrm_simulatedPosixError(int errorNumber);
