// A file of a simulated process, open for reading.
#pragma once

#include <memory>
#include <string>

#include "ZRMPlatform/Ports/ZRMFileManager.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDisk.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedProcess.h"

// Stays on its file when that is moved or removed.
class ZRMSimulatedFileReader final : public ZRMFileReader {
  public:
    ZRMSimulatedFileReader(std::shared_ptr<ZRMSimulatedDisk> disk,
                           std::shared_ptr<ZRMSimulatedProcess> process,
                           std::shared_ptr<ZRMSimulatedFile> file, std::string path);

    ZRMResult<std::size_t> read(std::span<std::uint8_t> buffer) override;

  private:
    std::shared_ptr<ZRMSimulatedDisk> disk_;
    std::shared_ptr<ZRMSimulatedProcess> process_;
    std::shared_ptr<ZRMSimulatedFile> file_;
    std::string path_;
    std::size_t offset_ = 0;
};
