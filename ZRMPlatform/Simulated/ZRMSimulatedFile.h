// The bytes of one file: those that programs see and those that a power cut would leave.
#pragma once

#include <cstdint>
#include <set>
#include <span>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMDate.h"

class ZRMRandom;

// Unsynced bytes are lost or kept by sectors of 512 bytes. Costs of synchronize() follow what
// changed, not the size of the file.
class ZRMSimulatedFile {
  public:
    static constexpr std::uint64_t kSectorSize = 512;

    explicit ZRMSimulatedFile(ZRMDate created) : created_(created) {}

    [[nodiscard]] const ZRMData& bytes() const { return live_; }
    [[nodiscard]] ZRMDate created() const { return created_; }

    // Grows the file with zeros where the offset lies behind its end.
    void write(std::uint64_t offset, std::span<const std::uint8_t> bytes);
    void truncate(std::uint64_t size);
    void synchronize();
    [[nodiscard]] bool isSynchronized() const { return changed_.empty() && !resized_; }

    // Every change since the last synchronize() is gone.
    void loseUnsynced();
    // Of the changed sectors and the size, each is lost or kept by the throw of a coin.
    void loseSomeUnsynced(ZRMRandom& random);

  private:
    void touch(std::uint64_t from, std::uint64_t to);

    ZRMDate created_;
    ZRMData live_;
    ZRMData durable_;
    std::set<std::uint64_t> changed_;  // numbers of sectors
    bool resized_ = false;
};
