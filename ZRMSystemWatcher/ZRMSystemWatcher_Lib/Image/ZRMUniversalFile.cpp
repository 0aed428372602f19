#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/Image/ZRMUniversalFile.h"

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
    for (std::uint32_t index = 0; index < *count; ++index) {
        const auto entry = file.part(kHeaderSize + index * layout.entrySize, layout.entrySize);
        if (!entry) {
            break;
        }
        const auto field = [&](std::uint64_t at) -> std::uint64_t {
            return wide ? *entry->u64(at, kOrder) : *entry->u32(at, kOrder);
        };
        const auto offset = field(layout.offsetField);
        if (auto image = file.part(offset, field(layout.sizeField))) {
            slices.push_back({offset, *std::move(image)});
        }
    }
    return slices;
}
