// Executables of any shape: two descriptors come out, their hashes are whole, and what is absent is
// absent for good. A mutator that knows the format sets one word of a header, command or blob to
// something extreme, which random bytes hardly ever do.
#include <algorithm>
#include <memory>

#include "Fuzz/ZRMFuzz.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/CodeSignatureWatcher/ZRMCodeSignatureWatcher.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/Image/ZRMUniversalFile.h"

namespace {

void check(const ZRMImageView& image) {
    const auto platform = ZRMPlatform::current();
    const ZRMCodeSignatureWatcher watcher(platform->loader, platform->mainBundle,
                                          platform->fileManager, platform->digests);
    const auto descriptors =
        watcher.codeSignatureOfImage(ZRMExecutableHeader::fromImage(image), nullptr);
    ZRM_FUZZ_ASSERT(descriptors.size() == 2);
    for (const auto& descriptor : descriptors) {
        const std::size_t length =
            descriptor.hashType() == ZRMCodeSignatureHashType::Sha1 ? 40 : 64;
        const auto hash = descriptor.codeDirectoryHash();
        ZRM_FUZZ_ASSERT(!hash || hash->size() == length);
        ZRM_FUZZ_ASSERT(!descriptor.infoPlistHash());
        const auto slots = descriptor.slotHashes();
        ZRM_FUZZ_ASSERT(!slots || slots->size() <= image.size());
        ZRM_FUZZ_ASSERT(!slots || hash);
    }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* bytes, std::size_t size, std::size_t maxSize);

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size,
                                               std::size_t maxSize, unsigned int seed) {
    constexpr std::uint32_t kWords[] = {0,          1,          7,          8,          12,
                                        0x1d,       0x7fffffff, 0x80000000, 0xffffffff, 0xfade0cc0,
                                        0xfade0c01, 0xfade0c02, 0xfade7171, 0xfeedfacf, 0xcafebabe};
    if (size < 8 || seed % 3 == 0) {
        return LLVMFuzzerMutate(bytes, size, maxSize);
    }
    const auto word = kWords[(seed / 3) % std::size(kWords)];
    const std::size_t place = (seed / 64) % (size / 4) * 4;
    const bool bigEndian = (seed & 0x80000000U) != 0;
    for (unsigned index = 0; index < 4; ++index) {
        bytes[place + index] =
            static_cast<std::uint8_t>(word >> (bigEndian ? 24 - 8 * index : 8 * index));
    }
    return size;
}

void zrm_fuzz(std::span<const std::uint8_t> input) {
    const ZRMImageView file(input);
    check(file);
    const auto slices = zrm_slicesOfUniversalFile(file);
    // Small slices may be many.
    const auto count = slices ? std::min<std::size_t>(slices->size(), 4) : 0;
    for (std::size_t index = 0; index < count; ++index) {
        check((*slices)[index].image);
    }
}
