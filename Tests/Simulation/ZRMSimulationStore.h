// What the store on a simulated disk holds, seen without touching it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMResult.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

struct ZRMSimulationRecord {
    double storeTimestamp = 0;  // seconds since 1970
    int activeDays = 0;
    int priority = 0;
    ZRMData bytes;
};

// Opens a copy of the files on a device of its own, as the next process would find them: neither
// the disk's faults nor its files notice.
class ZRMSimulationStore {
  public:
    // In the order of sending within a priority: oldest first. No store is an empty one; an error
    // says that the store does not open.
    ZRMResult<std::vector<ZRMSimulationRecord>> read(const ZRMSimulatedDisk& disk);

    // Where the store lies on every simulated device; empty until a process has made it.
    static std::string pathOn(const ZRMSimulatedDisk& disk);
    // Whether the next opening will repair it; until then its records may lie elsewhere.
    static bool isMarkedDamaged(const ZRMSimulatedDisk& disk);
    static void markDamaged(ZRMSimulatedDisk& disk);

  private:
    ZRMSimulatedDevice bench_;
};
