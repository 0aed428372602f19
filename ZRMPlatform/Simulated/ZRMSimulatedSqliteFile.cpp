#include "ZRMPlatform/Simulated/ZRMSimulatedSqliteFile.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <utility>

using Operation = ZRMSimulatedDiskOperation;

int ZRMSimulatedSqliteGround::judge(Operation operation, const std::string& path) {
    if (!process->isAlive()) {
        return EIO;
    }
    const int error = disk->judge(operation, path);
    return process->isAlive() ? error : EIO;
}

ZRMSimulatedSqliteFile::ZRMSimulatedSqliteFile(std::weak_ptr<ZRMSimulatedSqliteGround> ground,
                                               std::shared_ptr<ZRMSimulatedFile> file,
                                               std::shared_ptr<ZRMSimulatedSqliteLocks> locks,
                                               std::string path, bool removeOnClose)
    : ground_(std::move(ground)),
      file_(std::move(file)),
      locks_(std::move(locks)),
      path_(std::move(path)),
      removeOnClose_(removeOnClose) {}

ZRMSimulatedSqliteFile::~ZRMSimulatedSqliteFile() {
    locks_->unmap(holder_);
    locks_->unlock(holder_, SQLITE_LOCK_NONE);
    const auto ground = ground_.lock();
    if (removeOnClose_ && ground && ground->process->isAlive() && ground->disk->holdsFile(path_)) {
        ground->disk->remove(path_);
    }
}

int ZRMSimulatedSqliteFile::judge(Operation operation) {
    const auto ground = ground_.lock();
    return ground ? ground->judge(operation, path_) : EIO;
}

int ZRMSimulatedSqliteFile::read(std::span<std::uint8_t> bytes, std::uint64_t offset) {
    if (judge(Operation::Read) != 0) {
        return SQLITE_IOERR_READ;
    }
    const auto& held = file_->bytes();
    const std::size_t begin = std::min<std::uint64_t>(offset, held.size());
    const std::size_t count = std::min(bytes.size(), held.size() - begin);
    std::copy_n(held.data() + begin, count, bytes.data());
    std::ranges::fill(bytes.subspan(count), std::uint8_t{0});
    return count == bytes.size() ? SQLITE_OK : SQLITE_IOERR_SHORT_READ;
}

int ZRMSimulatedSqliteFile::write(std::span<const std::uint8_t> bytes, std::uint64_t offset) {
    int error = judge(Operation::Write);
    if (error == 0) {
        error = ground_.lock()->disk->write(*file_, offset, bytes);
    }
    if (error == ENOSPC) {
        return SQLITE_FULL;
    }
    return error == 0 ? SQLITE_OK : SQLITE_IOERR_WRITE;
}

int ZRMSimulatedSqliteFile::truncate(std::uint64_t size) {
    int error = judge(Operation::Truncate);
    if (error == 0) {
        error = ground_.lock()->disk->truncate(*file_, size);
    }
    return error == 0 ? SQLITE_OK : SQLITE_IOERR_TRUNCATE;
}

int ZRMSimulatedSqliteFile::synchronize() {
    if (judge(Operation::Synchronize) != 0) {
        return SQLITE_IOERR_FSYNC;
    }
    file_->synchronize();
    return SQLITE_OK;
}

int ZRMSimulatedSqliteFile::size(sqlite3_int64& size) {
    if (judge(Operation::Inspect) != 0) {
        return SQLITE_IOERR_FSTAT;
    }
    size = static_cast<sqlite3_int64>(file_->bytes().size());
    return SQLITE_OK;
}

int ZRMSimulatedSqliteFile::lock(int level) {
    const auto ground = ground_.lock();
    return ground && ground->process->isAlive() ? locks_->lock(holder_, level) : SQLITE_IOERR_LOCK;
}

int ZRMSimulatedSqliteFile::unlock(int level) {
    locks_->unlock(holder_, level);
    return SQLITE_OK;
}

int ZRMSimulatedSqliteFile::checkReserved(bool& reserved) {
    reserved = locks_->isReserved();
    return SQLITE_OK;
}

int ZRMSimulatedSqliteFile::mapRegion(std::size_t number, std::size_t size, bool make,
                                      volatile void** region) {
    const auto ground = ground_.lock();
    if (!ground || !ground->process->isAlive()) {
        return SQLITE_IOERR_SHMMAP;
    }
    *region = locks_->region(holder_, number, size, make);
    return SQLITE_OK;
}

int ZRMSimulatedSqliteFile::lockSlots(int first, int count, int flags) {
    if ((flags & SQLITE_SHM_UNLOCK) != 0) {
        locks_->unlockSlots(holder_, first, count);
        return SQLITE_OK;
    }
    return locks_->lockSlots(holder_, first, count, (flags & SQLITE_SHM_EXCLUSIVE) != 0);
}

void ZRMSimulatedSqliteFile::unmap() {
    locks_->unmap(holder_);
}

namespace {

ZRMSimulatedSqliteFile& fileOf(sqlite3_file* handle) {
    return *reinterpret_cast<ZRMSimulatedSqliteFile::Handle*>(handle)->file;
}

int closeFile(sqlite3_file* handle) {
    delete &fileOf(handle);
    return SQLITE_OK;
}

int readFile(sqlite3_file* handle, void* bytes, int count, sqlite3_int64 offset) {
    return fileOf(handle).read({static_cast<std::uint8_t*>(bytes), static_cast<std::size_t>(count)},
                               static_cast<std::uint64_t>(offset));
}

int writeFile(sqlite3_file* handle, const void* bytes, int count, sqlite3_int64 offset) {
    return fileOf(handle).write(
        {static_cast<const std::uint8_t*>(bytes), static_cast<std::size_t>(count)},
        static_cast<std::uint64_t>(offset));
}

int truncateFile(sqlite3_file* handle, sqlite3_int64 size) {
    return fileOf(handle).truncate(static_cast<std::uint64_t>(size));
}

int synchronizeFile(sqlite3_file* handle, int) {
    return fileOf(handle).synchronize();
}

int sizeOfFile(sqlite3_file* handle, sqlite3_int64* size) {
    return fileOf(handle).size(*size);
}

int lockFile(sqlite3_file* handle, int level) {
    return fileOf(handle).lock(level);
}

int unlockFile(sqlite3_file* handle, int level) {
    return fileOf(handle).unlock(level);
}

int checkReservedLock(sqlite3_file* handle, int* result) {
    bool reserved = false;
    const int status = fileOf(handle).checkReserved(reserved);
    *result = reserved ? 1 : 0;
    return status;
}

int controlFile(sqlite3_file*, int, void*) {
    return SQLITE_NOTFOUND;
}

int sectorSize(sqlite3_file*) {
    return static_cast<int>(ZRMSimulatedFile::kSectorSize);
}

// A write touches no sector but its own, and a removed file stays whole for those who have it open.
int deviceCharacteristics(sqlite3_file*) {
    return SQLITE_IOCAP_POWERSAFE_OVERWRITE | SQLITE_IOCAP_UNDELETABLE_WHEN_OPEN;
}

int mapSharedMemory(sqlite3_file* handle, int number, int size, int make, void volatile** region) {
    return fileOf(handle).mapRegion(static_cast<std::size_t>(number),
                                    static_cast<std::size_t>(size), make != 0, region);
}

int lockSharedMemory(sqlite3_file* handle, int first, int count, int flags) {
    return fileOf(handle).lockSlots(first, count, flags);
}

// One thread needs none.
void sharedMemoryBarrier(sqlite3_file*) {}

int unmapSharedMemory(sqlite3_file* handle, int) {
    fileOf(handle).unmap();
    return SQLITE_OK;
}

}  // namespace

const sqlite3_io_methods& ZRMSimulatedSqliteFile::methods() {
    static constexpr sqlite3_io_methods kMethods = {
        .iVersion = 2,
        .xClose = &closeFile,
        .xRead = &readFile,
        .xWrite = &writeFile,
        .xTruncate = &truncateFile,
        .xSync = &synchronizeFile,
        .xFileSize = &sizeOfFile,
        .xLock = &lockFile,
        .xUnlock = &unlockFile,
        .xCheckReservedLock = &checkReservedLock,
        .xFileControl = &controlFile,
        .xSectorSize = &sectorSize,
        .xDeviceCharacteristics = &deviceCharacteristics,
        .xShmMap = &mapSharedMemory,
        .xShmLock = &lockSharedMemory,
        .xShmBarrier = &sharedMemoryBarrier,
        .xShmUnmap = &unmapSharedMemory,
        .xFetch = nullptr,
        .xUnfetch = nullptr,
    };
    return kMethods;
}
