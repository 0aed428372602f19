#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/Image/ZRMUniversalFile.h"

#include <iterator>
#include <map>

namespace {

constexpr std::uint32_t kFatMagic32 = 0xcafebabe;
constexpr std::uint32_t kFatMagic64 = 0xcafebabf;
constexpr std::uint64_t kHeaderSize = 8;

// Where an entry keeps its slice's place; the fields before it name the processor.
struct EntryLayout {
    std::uint64_t entrySize;
    std::uint64_t offsetField;
    std::uint64_t sizeField;
};
constexpr EntryLayout kLayout32{20, 8, 12};
constexpr EntryLayout kLayout64{32, 8, 16};

// Keeps a forged header from naming the same bytes a million times.
class TakenBytes {
  public:
    // Whether nothing of [begin, end) was taken before; it is then.
    bool take(std::uint64_t begin, std::uint64_t end) {
        const auto next = ends_.lower_bound(begin);
        const bool overlaps = (next != ends_.end() && next->first < end) ||
                              (next != ends_.begin() && std::prev(next)->second > begin);
        return !overlaps && ends_.try_emplace(begin, end).second;
    }

  private:
    std::map<std::uint64_t, std::uint64_t> ends_;  // by where they begin
};

}  // namespace

std::optional<std::vector<ZRMUniversalSlice>> zrm_slicesOfUniversalFile(const ZRMImageView& file) {
    constexpr auto kOrder = ZRMByteOrder::Big;  // of every universal header
    const auto magic = file.u32(0, kOrder);
    const auto count = file.u32(4, kOrder);
    if (!magic || !count || (magic != kFatMagic32 && magic != kFatMagic64)) {
        return std::nullopt;
    }
    const bool wide = magic == kFatMagic64;
    const auto& layout = wide ? kLayout64 : kLayout32;
    std::vector<ZRMUniversalSlice> slices;
    TakenBytes taken;
    for (std::uint32_t index = 0; index < *count; ++index) {
        const auto entry = file.part(kHeaderSize + index * layout.entrySize, layout.entrySize);
        if (!entry) {
            break;
        }
        const auto field = [&](std::uint64_t at) -> std::uint64_t {
            return wide ? *entry->u64(at, kOrder) : *entry->u32(at, kOrder);
        };
        const auto offset = field(layout.offsetField);
        auto image = file.part(offset, field(layout.sizeField));
        if (image && taken.take(offset, offset + image->size())) {
            slices.push_back({offset, *std::move(image)});
        }
    }
    return slices;
}
