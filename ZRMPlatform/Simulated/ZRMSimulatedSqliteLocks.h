// The locks and the shared memory of the databases that one simulated process has open.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

// One open connection's hold on a database file.
struct ZRMSimulatedSqliteHolder {
    int level = 0;                  // SQLITE_LOCK_…
    std::uint32_t sharedSlots = 0;  // bits of the write-ahead log's lock slots
    std::uint32_t exclusiveSlots = 0;
    bool mapped = false;  // uses the shared memory
};

// What all connections to one file share. Answers are SQLite's result codes. The rules are those of
// SQLite's file locks: many readers; one that has reserved the right to write; one that waits for
// the readers to leave and lets no new one in; one that writes.
class ZRMSimulatedSqliteLocks {
  public:
    int lock(ZRMSimulatedSqliteHolder& holder, int level);
    void unlock(ZRMSimulatedSqliteHolder& holder, int level);
    [[nodiscard]] bool isReserved() const { return writer_ != nullptr; }

    // Slots first to first + count - 1, all or none.
    int lockSlots(ZRMSimulatedSqliteHolder& holder, int first, int count, bool exclusive);
    void unlockSlots(ZRMSimulatedSqliteHolder& holder, int first, int count);

    // The region of that number, zeros at first; nullptr when it is not there and not to be made.
    // Every region has the size of the first one asked for.
    volatile void* region(ZRMSimulatedSqliteHolder& holder, std::size_t number, std::size_t size,
                          bool make);
    // The memory goes with its last user, as after a restart of the system.
    void unmap(ZRMSimulatedSqliteHolder& holder);

  private:
    struct Slot {
        int readers = 0;
        bool exclusive = false;
    };
    static constexpr std::size_t kSlots = 8;

    int readers_ = 0;
    const ZRMSimulatedSqliteHolder* writer_ = nullptr;  // at RESERVED or above
    std::array<Slot, kSlots> slots_;
    std::vector<std::unique_ptr<char[]>> regions_;
    int mappings_ = 0;
};

// By path; an entry lives as long as some connection uses it.
class ZRMSimulatedSqliteLockTable {
  public:
    std::shared_ptr<ZRMSimulatedSqliteLocks> locksOf(const std::string& path);

  private:
    std::map<std::string, std::weak_ptr<ZRMSimulatedSqliteLocks>> locks_;
};
