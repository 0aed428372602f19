// gzip: content survives, foreign bytes pass unchanged, hostile streams stay within bounds.
#include <algorithm>

#include "Fuzz/ZRMFuzz.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"

namespace {

constexpr std::size_t kMaximumLength = std::size_t{1024} * 1024;

void checkHostile(std::span<const std::uint8_t> stream) {
    const auto content = zrm_ungzipData(stream, kMaximumLength);
    if (!zrm_isGzipData(stream)) {
        ZRM_FUZZ_ASSERT(std::ranges::equal(content, stream));
        return;
    }
    ZRM_FUZZ_ASSERT(content.size() <= kMaximumLength + stream.size() / 2);
    ZRM_FUZZ_ASSERT(zrm_ungzipData(stream, kMaximumLength) == content);
}

}  // namespace

void zrm_fuzz(std::span<const std::uint8_t> input) {
    checkHostile(input);

    // The same bytes as the body of a stream with a good header.
    ZRMData withHeader{0x1F, 0x8B, 0x08, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x03};
    withHeader.insert(withHeader.end(), input.begin(), input.end());
    checkHostile(withHeader);

    const auto zipped = zrm_gzipData(input);
    ZRM_FUZZ_ASSERT(zrm_gzipData(zipped) == zipped);
    if (!input.empty() && !zrm_isGzipData(input)) {
        ZRM_FUZZ_ASSERT(zrm_isGzipData(zipped));
        ZRM_FUZZ_ASSERT(std::ranges::equal(zrm_ungzipData(zipped), input));
    }
}
