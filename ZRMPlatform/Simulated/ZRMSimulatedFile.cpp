#include "ZRMPlatform/Simulated/ZRMSimulatedFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "ZRMPlatform/Ports/ZRMRandom.h"

namespace {

bool coin(ZRMRandom& random) {
    std::array<std::uint8_t, 1> byte{};
    random.fill(byte);
    return (byte[0] & 1U) != 0;
}

// Copies what of the sector lies within both.
void copySector(const ZRMData& from, ZRMData& to, std::uint64_t sector) {
    const std::size_t begin = sector * ZRMSimulatedFile::kSectorSize;
    const std::size_t end = std::min({begin + ZRMSimulatedFile::kSectorSize,
                                      std::uint64_t{from.size()}, std::uint64_t{to.size()}});
    if (begin < end) {
        std::copy_n(from.data() + begin, end - begin, to.data() + begin);
    }
}

}  // namespace

void ZRMSimulatedFile::touch(std::uint64_t from, std::uint64_t to) {
    if (from >= to) {
        return;
    }
    for (std::uint64_t sector = from / kSectorSize; sector <= (to - 1) / kSectorSize; ++sector) {
        changed_.insert(changed_.end(), sector);
    }
}

void ZRMSimulatedFile::write(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
    if (bytes.empty()) {
        return;
    }
    const std::uint64_t end = offset + bytes.size();
    if (end > live_.size()) {
        truncate(end);
    }
    // Over pointers it copies as one block in a debug build, too, where most of a simulation's time
    // went into single bytes.
    std::copy_n(bytes.data(), bytes.size(), live_.data() + offset);
    touch(offset, end);
}

void ZRMSimulatedFile::truncate(std::uint64_t size) {
    if (size == live_.size()) {
        return;
    }
    touch(std::min<std::uint64_t>(size, live_.size()), std::max<std::uint64_t>(size, live_.size()));
    live_.resize(size);
    resized_ = true;
}

void ZRMSimulatedFile::synchronize() {
    durable_.resize(live_.size());
    for (const auto sector : changed_) {
        copySector(live_, durable_, sector);
    }
    changed_.clear();
    resized_ = false;
}

void ZRMSimulatedFile::loseUnsynced() {
    live_.resize(durable_.size());
    for (const auto sector : changed_) {
        copySector(durable_, live_, sector);
    }
    changed_.clear();
    resized_ = false;
}

void ZRMSimulatedFile::loseSomeUnsynced(ZRMRandom& random) {
    ZRMData left = durable_;
    if (resized_ && coin(random)) {
        left.resize(live_.size());
    }
    for (const auto sector : changed_) {
        if (coin(random)) {
            copySector(live_, left, sector);
        }
    }
    live_ = left;
    durable_ = std::move(left);
    changed_.clear();
    resized_ = false;
}
