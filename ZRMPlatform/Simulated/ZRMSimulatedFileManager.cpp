#include "ZRMPlatform/Simulated/ZRMSimulatedFileManager.h"

#include <cerrno>
#include <utility>

#include "ZRMPlatform/Simulated/ZRMSimulatedDirectoryEnumerator.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedFileHandle.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedFileReader.h"

namespace {

using Operation = ZRMSimulatedDiskOperation;

}  // namespace

ZRMSimulatedFileManager::ZRMSimulatedFileManager(std::shared_ptr<ZRMSimulatedDisk> disk,
                                                 std::shared_ptr<ZRMSimulatedProcess> process)
    : disk_(std::move(disk)), process_(std::move(process)) {}

int ZRMSimulatedFileManager::judge(Operation operation, const std::string& path) const {
    if (!process_->isAlive()) {
        return EIO;
    }
    const int error = disk_->judge(operation, path);
    return process_->isAlive() ? error : EIO;
}

bool ZRMSimulatedFileManager::fileExists(const std::string& path) const {
    return judge(Operation::Inspect, path) == 0 && disk_->holdsFile(path);
}

bool ZRMSimulatedFileManager::directoryExists(const std::string& path) const {
    return judge(Operation::Inspect, path) == 0 && disk_->holdsDirectory(path);
}

ZRMResult<std::vector<std::string>> ZRMSimulatedFileManager::contentsOfDirectory(
    const std::string& path) const {
    int error = judge(Operation::Read, path);
    std::vector<std::string> names;
    if (error == 0) {
        error = disk_->list(path, names);
    }
    if (error != 0) {
        return *zrm_simulatedPosixError(error);
    }
    return names;
}

std::optional<ZRMError> ZRMSimulatedFileManager::createDirectory(const std::string& path) {
    const int error = judge(Operation::MakeDirectory, path);
    return zrm_simulatedPosixError(error != 0 ? error : disk_->makeDirectory(path));
}

std::optional<ZRMError> ZRMSimulatedFileManager::createFile(const std::string& path) {
    int error = judge(Operation::Create, path);
    std::shared_ptr<ZRMSimulatedFile> file;
    if (error == 0) {
        error = disk_->create(path, file);
    }
    if (error == 0) {
        file->truncate(0);
    }
    return zrm_simulatedPosixError(error);
}

ZRMResult<ZRMData> ZRMSimulatedFileManager::readFile(const std::string& path) const {
    int error = judge(Operation::Read, path);
    std::shared_ptr<ZRMSimulatedFile> file;
    if (error == 0) {
        error = disk_->find(path, file);
    }
    if (error != 0) {
        return *zrm_simulatedPosixError(error);
    }
    return file->bytes();
}

int ZRMSimulatedFileManager::writeBeside(const std::string& path, const ZRMData& bytes) {
    int error = judge(Operation::Create, path);
    std::shared_ptr<ZRMSimulatedFile> file;
    if (error == 0) {
        error = disk_->create(path, file);
    }
    if (error == 0) {
        error = judge(Operation::Write, path);
    }
    if (error == 0) {
        error = disk_->write(*file, 0, bytes);
    }
    if (error == 0) {
        error = judge(Operation::Synchronize, path);
    }
    if (error == 0) {
        file->synchronize();
    }
    return error;
}

std::optional<ZRMError> ZRMSimulatedFileManager::writeFileAtomically(const std::string& path,
                                                                     const ZRMData& bytes) {
    if (process_->isAlive() && disk_->holdsDirectory(path)) {
        return zrm_simulatedPosixError(EISDIR);
    }
    const std::string beside = ZRMSimulatedDisk::normalized(path) + ".new";
    int error = writeBeside(beside, bytes);
    if (error == 0) {
        error = judge(Operation::Move, path);
    }
    if (error == 0) {
        error = disk_->move(beside, path);
    }
    if (error != 0 && process_->isAlive() && disk_->holdsFile(beside)) {
        disk_->remove(beside);
    }
    return zrm_simulatedPosixError(error);
}

std::optional<ZRMError> ZRMSimulatedFileManager::removeItem(const std::string& path) {
    const int error = judge(Operation::Remove, path);
    return zrm_simulatedPosixError(error != 0 ? error : disk_->remove(path));
}

std::optional<ZRMError> ZRMSimulatedFileManager::moveItem(const std::string& from,
                                                          const std::string& to) {
    const int error = judge(Operation::Move, from);
    return zrm_simulatedPosixError(error != 0 ? error : disk_->move(from, to));
}

ZRMResult<ZRMDate> ZRMSimulatedFileManager::creationDate(const std::string& path) const {
    ZRMDate date;
    int error = judge(Operation::Inspect, path);
    if (error == 0) {
        error = disk_->created(path, date);
    }
    if (error != 0) {
        return *zrm_simulatedPosixError(error);
    }
    return date;
}

std::optional<ZRMError> ZRMSimulatedFileManager::excludeFromBackup(const std::string& path) {
    const int error = judge(Operation::Mark, path);
    return zrm_simulatedPosixError(error != 0 ? error : disk_->excludeFromBackup(path));
}

int ZRMSimulatedFileManager::open(const std::string& path,
                                  std::shared_ptr<ZRMSimulatedFile>& file) const {
    const int error = judge(Operation::Open, path);
    return error != 0 ? error : disk_->find(path, file);
}

ZRMResult<std::unique_ptr<ZRMFileHandle>> ZRMSimulatedFileManager::openForUpdating(
    const std::string& path) {
    std::shared_ptr<ZRMSimulatedFile> file;
    if (const int error = open(path, file); error != 0) {
        return *zrm_simulatedPosixError(error);
    }
    return std::unique_ptr<ZRMFileHandle>(std::make_unique<ZRMSimulatedFileHandle>(
        disk_, process_, std::move(file), ZRMSimulatedDisk::normalized(path)));
}

ZRMResult<std::unique_ptr<ZRMFileReader>> ZRMSimulatedFileManager::openForReading(
    const std::string& path) const {
    std::shared_ptr<ZRMSimulatedFile> file;
    if (const int error = open(path, file); error != 0) {
        return *zrm_simulatedPosixError(error);
    }
    return std::unique_ptr<ZRMFileReader>(std::make_unique<ZRMSimulatedFileReader>(
        disk_, process_, std::move(file), ZRMSimulatedDisk::normalized(path)));
}

ZRMResult<std::unique_ptr<ZRMDirectoryEnumerator>> ZRMSimulatedFileManager::enumeratorAtPath(
    const std::string& path) const {
    int error = judge(Operation::Read, path);
    if (error == 0 && !disk_->holdsDirectory(path)) {
        error = disk_->holdsFile(path) ? ENOTDIR : ENOENT;
    }
    if (error != 0) {
        return *zrm_simulatedPosixError(error);
    }
    return std::unique_ptr<ZRMDirectoryEnumerator>(
        std::make_unique<ZRMSimulatedDirectoryEnumerator>(
            disk_, path, [disk = disk_, process = process_](const std::string& directory) {
                return process->isAlive() ? disk->judge(Operation::Read, directory) : EIO;
            }));
}
