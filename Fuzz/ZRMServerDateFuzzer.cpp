// The server's date: what reads as one reads back the same when written, and what is read without
// ICU is read alike by ICU.
#include "Fuzz/ZRMFuzz.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDateFormatter/NSDateFormatter+ZRMCoreKit.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

// The years 1 to 9999: the pattern has no era and four digits.
constexpr double kFirstSeconds = -62135769600;
constexpr double kEndSeconds = 253402300800;

void installDeviceInGreenwich() {
    static ZRMSimulatedDevice device;
    static const ZRMScopedPlatform installed(device);
    device.locale().setTimeZoneIdentifier("GMT");
}

}  // namespace

void zrm_fuzz(std::span<const std::uint8_t> input) {
    installDeviceInGreenwich();
    const auto formatter = zrm_serverTimeFormatter();
    const auto read = zrm_textOfInput(input);
    const auto date = formatter->dateFromString(read);
    // Another spelling of the same pattern, for which there is no way around ICU.
    static const ZRMDateFormatter icu("EEE, dd MMM yyyy HH:mm:ss z", "GMT",
                                      kZRMPosixLocaleIdentifier);
    ZRM_FUZZ_ASSERT(icu.dateFromString(read) == date);
    if (!date || date->secondsSince1970 < kFirstSeconds || date->secondsSince1970 >= kEndSeconds) {
        return;
    }
    const auto text = formatter->stringFromDate(*date);
    ZRM_FUZZ_ASSERT(text.ends_with(" GMT"));
    const auto again = formatter->dateFromString(text);
    ZRM_FUZZ_ASSERT(again && *again == *date);
    ZRM_FUZZ_ASSERT(formatter->stringFromDate(*again) == text);
}
