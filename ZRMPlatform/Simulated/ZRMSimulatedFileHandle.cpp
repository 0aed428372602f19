#include "ZRMPlatform/Simulated/ZRMSimulatedFileHandle.h"

#include <cerrno>
#include <cstring>
#include <utility>

std::optional<ZRMError> zrm_simulatedPosixError(int errorNumber) {
    if (errorNumber == 0) {
        return std::nullopt;
    }
    return ZRMError::withDescription(kZRMPosixErrorDomain, errorNumber, std::strerror(errorNumber));
}

ZRMSimulatedFileHandle::ZRMSimulatedFileHandle(std::shared_ptr<ZRMSimulatedDisk> disk,
                                               std::shared_ptr<ZRMSimulatedProcess> process,
                                               std::shared_ptr<ZRMSimulatedFile> file,
                                               std::string path)
    : disk_(std::move(disk)),
      process_(std::move(process)),
      file_(std::move(file)),
      path_(std::move(path)) {}

int ZRMSimulatedFileHandle::judge(ZRMSimulatedDiskOperation operation) {
    if (!process_->isAlive()) {
        return EIO;
    }
    const int error = disk_->judge(operation, path_);
    return process_->isAlive() ? error : EIO;
}

std::optional<ZRMError> ZRMSimulatedFileHandle::seekToEnd() {
    if (!process_->isAlive()) {
        return zrm_simulatedPosixError(EIO);
    }
    offset_ = file_->bytes().size();
    return std::nullopt;
}

std::optional<ZRMError> ZRMSimulatedFileHandle::seekTo(std::uint64_t offset) {
    if (!process_->isAlive()) {
        return zrm_simulatedPosixError(EIO);
    }
    offset_ = offset;
    return std::nullopt;
}

std::optional<ZRMError> ZRMSimulatedFileHandle::write(std::span<const std::uint8_t> bytes) {
    int error = judge(ZRMSimulatedDiskOperation::Write);
    if (error == 0) {
        error = disk_->write(*file_, offset_, bytes);
    }
    if (error == 0) {
        offset_ += bytes.size();
    }
    return zrm_simulatedPosixError(error);
}

std::optional<ZRMError> ZRMSimulatedFileHandle::truncateAt(std::uint64_t offset) {
    int error = judge(ZRMSimulatedDiskOperation::Truncate);
    if (error == 0) {
        error = disk_->truncate(*file_, offset);
    }
    if (error == 0) {
        offset_ = offset;
    }
    return zrm_simulatedPosixError(error);
}

std::optional<ZRMError> ZRMSimulatedFileHandle::synchronize() {
    const int error = judge(ZRMSimulatedDiskOperation::Synchronize);
    if (error == 0) {
        file_->synchronize();
    }
    return zrm_simulatedPosixError(error);
}
