// Archives as the Linux body keeps them: what decodes encodes again, to the same object.
#include "Fuzz/ZRMFuzz.h"
#include "ZRMPlatform/Linux/ZRMLinuxKeyedArchiver.h"

void zrm_fuzz(std::span<const std::uint8_t> input) {
    const ZRMLinuxKeyedArchiver archiver;
    const auto object = archiver.decode({input.begin(), input.end()});
    if (!object) {
        return;
    }
    const auto bytes = archiver.encode(object.value());
    if (!bytes) {
        return;  // shared parts grew beyond the bounds when each was written out
    }
    const auto again = archiver.decode(bytes.value());
    ZRM_FUZZ_ASSERT(again && again.value().className == object.value().className &&
                    again.value().fields.size() == object.value().fields.size());
}
