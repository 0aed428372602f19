#include "ZRMPlatform/Simulated/ZRMSimulatedSqliteFiles.h"

#include <cerrno>
#include <cstring>
#include <deque>
#include <utility>

#include "ZRMPlatform/Ports/ZRMRandom.h"

using Operation = ZRMSimulatedDiskOperation;

// Never freed: a connection that outlives the process still points at it.
struct ZRMSimulatedSqliteFiles::Layer {
    std::string name;
    std::weak_ptr<ZRMSimulatedSqliteGround> ground;
    sqlite3_vfs vfs{};
};

namespace {

using Layer = ZRMSimulatedSqliteFiles::Layer;

constexpr int kLongestPath = 1024;
constexpr double kMillisecondsADay = 86400000;
// The days from the start of the Julian calendar's count to 1970, in milliseconds.
constexpr double kJulian1970Milliseconds = 2440587.5 * kMillisecondsADay;

Layer* makeLayer() {
    static auto* const layers = new std::deque<Layer>;
    auto& layer = layers->emplace_back();
    layer.name = "zrm-simulated-" + std::to_string(layers->size());
    return &layer;
}

std::shared_ptr<ZRMSimulatedSqliteGround> groundOf(sqlite3_vfs* vfs) {
    return static_cast<Layer*>(vfs->pAppData)->ground.lock();
}

// A file without a name is temporary: it is on no disk and goes when it is closed.
int findOrMake(ZRMSimulatedSqliteGround& ground, const char* name, int flags,
               std::shared_ptr<ZRMSimulatedFile>& file) {
    if (!name) {
        file = std::make_shared<ZRMSimulatedFile>(ground.time->now());
        return 0;
    }
    const bool there = ground.disk->holdsFile(name);
    const bool make = (flags & SQLITE_OPEN_CREATE) != 0;
    if (there && make && (flags & SQLITE_OPEN_EXCLUSIVE) != 0) {
        return EEXIST;
    }
    const int error = ground.judge(there || !make ? Operation::Open : Operation::Create, name);
    if (error != 0) {
        return error;
    }
    return make ? ground.disk->create(name, file) : ground.disk->find(name, file);
}

int openFile(sqlite3_vfs* vfs, const char* name, sqlite3_file* handle, int flags, int* outFlags) {
    handle->pMethods = nullptr;
    const auto ground = groundOf(vfs);
    std::shared_ptr<ZRMSimulatedFile> file;
    if (!ground || findOrMake(*ground, name, flags, file) != 0) {
        return SQLITE_CANTOPEN;
    }
    const std::string path = name ? name : "";
    const auto locks =
        name ? ground->locks.locksOf(path) : std::make_shared<ZRMSimulatedSqliteLocks>();
    const bool removeOnClose = name && (flags & SQLITE_OPEN_DELETEONCLOSE) != 0;
    reinterpret_cast<ZRMSimulatedSqliteFile::Handle*>(handle)->file =
        new ZRMSimulatedSqliteFile(ground, std::move(file), locks, path, removeOnClose);
    handle->pMethods = &ZRMSimulatedSqliteFile::methods();
    if (outFlags) {
        *outFlags = flags;
    }
    return SQLITE_OK;
}

int removeFile(sqlite3_vfs* vfs, const char* name, int) {
    const auto ground = groundOf(vfs);
    int error = ground ? ground->judge(Operation::Remove, name) : EIO;
    if (error == 0) {
        error = ground->disk->remove(name);
    }
    if (error == ENOENT) {
        return SQLITE_IOERR_DELETE_NOENT;
    }
    return error == 0 ? SQLITE_OK : SQLITE_IOERR_DELETE;
}

// An empty file counts as none when only its existence is asked for, as in SQLite's own layer.
int accessFile(sqlite3_vfs* vfs, const char* name, int flags, int* result) {
    const auto ground = groundOf(vfs);
    if (!ground || ground->judge(Operation::Inspect, name) != 0) {
        return SQLITE_IOERR_ACCESS;
    }
    std::shared_ptr<ZRMSimulatedFile> file;
    const bool there = ground->disk->find(name, file) == 0;
    const bool counts = there && (flags != SQLITE_ACCESS_EXISTS || !file->bytes().empty());
    *result = counts || ground->disk->holdsDirectory(name) ? 1 : 0;
    return SQLITE_OK;
}

int fullPathname(sqlite3_vfs*, const char* name, int room, char* path) {
    if (name[0] != '/' || std::strlen(name) >= static_cast<std::size_t>(room)) {
        return SQLITE_CANTOPEN;
    }
    std::memcpy(path, name, std::strlen(name) + 1);
    return SQLITE_OK;
}

int randomness(sqlite3_vfs* vfs, int count, char* bytes) {
    const auto ground = groundOf(vfs);
    if (!ground) {
        return 0;
    }
    ground->random->fill({reinterpret_cast<std::uint8_t*>(bytes), static_cast<std::size_t>(count)});
    return count;
}

int waitWithoutTime(sqlite3_vfs*, int microseconds) {
    return microseconds;
}

int currentMilliseconds(sqlite3_vfs* vfs, sqlite3_int64* milliseconds) {
    const auto ground = groundOf(vfs);
    const double since1970 = ground ? ground->time->now().secondsSince1970 : 0;
    *milliseconds = static_cast<sqlite3_int64>(kJulian1970Milliseconds + since1970 * 1000);
    return SQLITE_OK;
}

int currentDays(sqlite3_vfs* vfs, double* days) {
    sqlite3_int64 milliseconds = 0;
    const int status = currentMilliseconds(vfs, &milliseconds);
    *days = static_cast<double>(milliseconds) / kMillisecondsADay;
    return status;
}

int lastError(sqlite3_vfs*, int, char*) {
    return 0;
}

}  // namespace

ZRMSimulatedSqliteFiles::ZRMSimulatedSqliteFiles(std::shared_ptr<ZRMSimulatedDisk> disk,
                                                 std::shared_ptr<ZRMSimulatedProcess> process,
                                                 std::shared_ptr<ZRMSimulatedTime> time,
                                                 std::shared_ptr<ZRMRandom> random)
    : ground_(std::make_shared<ZRMSimulatedSqliteGround>(ZRMSimulatedSqliteGround{
          std::move(disk), std::move(process), std::move(time), std::move(random), {}})),
      layer_(makeLayer()) {
    layer_->ground = ground_;
    auto& vfs = layer_->vfs;
    vfs.iVersion = 2;
    vfs.szOsFile = sizeof(ZRMSimulatedSqliteFile::Handle);
    vfs.mxPathname = kLongestPath;
    vfs.zName = layer_->name.c_str();
    vfs.pAppData = layer_;
    vfs.xOpen = &openFile;
    vfs.xDelete = &removeFile;
    vfs.xAccess = &accessFile;
    vfs.xFullPathname = &fullPathname;
    vfs.xRandomness = &randomness;
    vfs.xSleep = &waitWithoutTime;
    vfs.xCurrentTime = &currentDays;
    vfs.xGetLastError = &lastError;
    vfs.xCurrentTimeInt64 = &currentMilliseconds;
    sqlite3_vfs_register(&vfs, 0);
}

ZRMSimulatedSqliteFiles::~ZRMSimulatedSqliteFiles() {
    sqlite3_vfs_unregister(&layer_->vfs);
}

const std::string& ZRMSimulatedSqliteFiles::name() const {
    return layer_->name;
}
