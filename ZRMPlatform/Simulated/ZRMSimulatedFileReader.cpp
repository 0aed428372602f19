#include "ZRMPlatform/Simulated/ZRMSimulatedFileReader.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "ZRMPlatform/Simulated/ZRMSimulatedFileHandle.h"

ZRMSimulatedFileReader::ZRMSimulatedFileReader(std::shared_ptr<ZRMSimulatedDisk> disk,
                                               std::shared_ptr<ZRMSimulatedProcess> process,
                                               std::shared_ptr<ZRMSimulatedFile> file,
                                               std::string path)
    : disk_(std::move(disk)),
      process_(std::move(process)),
      file_(std::move(file)),
      path_(std::move(path)) {}

ZRMResult<std::size_t> ZRMSimulatedFileReader::read(std::span<std::uint8_t> buffer) {
    int error = process_->isAlive() ? disk_->judge(ZRMSimulatedDiskOperation::Read, path_) : EIO;
    if (error == 0 && !process_->isAlive()) {
        error = EIO;
    }
    if (error != 0) {
        return *zrm_simulatedPosixError(error);
    }
    const auto& bytes = file_->bytes();
    const auto begin = std::min(offset_, bytes.size());
    const auto count = std::min(buffer.size(), bytes.size() - begin);
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(begin), count, buffer.begin());
    offset_ += count;
    return count;
}
