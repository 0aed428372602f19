// The event core's archive, in the archive form of the device it runs on: bytes that read yield
// values that archive and read back the same.
#include "Fuzz/ZRMFuzz.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitSettingsValues.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

void zrm_fuzz(std::span<const std::uint8_t> input) {
    static const auto archiver = zrm_makeDefaultPlatform()->keyedArchiver;
    const auto object = archiver->decode({input.begin(), input.end()});
    const auto values = object ? ZRMCloudKitSettingsValues::decode(object.value()) : std::nullopt;
    if (!values) {
        return;
    }
    // Dates keep milliseconds, so what was archived once is compared with what is archived again.
    const auto bytes = archiver->encode(values->encode());
    ZRM_FUZZ_ASSERT(bytes);
    const auto again = archiver->decode(bytes.value());
    ZRM_FUZZ_ASSERT(again && ZRMCloudKitSettingsValues::decode(again.value()));
}
