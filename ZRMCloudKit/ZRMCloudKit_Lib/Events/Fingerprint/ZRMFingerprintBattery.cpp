#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintBattery.h"

#include <array>
#include <charconv>
#include <cmath>

#include "ZRMPlatform/Ports/ZRMMutex.h"

namespace {

constexpr double kUnknownLife = -1;

class MonitoringWhileReading {
  public:
    explicit MonitoringWhileReading(ZRMPower& power)
        : power_(power), wasEnabled_(power.isBatteryMonitoringEnabled()) {
        if (!wasEnabled_) {
            power_.setBatteryMonitoringEnabled(true);
        }
    }
    ~MonitoringWhileReading() {
        if (!wasEnabled_) {
            power_.setBatteryMonitoringEnabled(false);
        }
    }
    MonitoringWhileReading(const MonitoringWhileReading&) = delete;
    MonitoringWhileReading& operator=(const MonitoringWhileReading&) = delete;

  private:
    ZRMPower& power_;
    const bool wasEnabled_;
};

// The shortest decimal that reads back as the level: 0.8, where the nearest float is
// 0.800000011920929.
double withoutNoise(float level) {
    if (!std::isfinite(level)) {
        return kUnknownLife;
    }
    std::array<char, 32> digits{};
    const auto* const end = std::to_chars(digits.data(), digits.data() + digits.size(), level).ptr;
    double life = kUnknownLife;
    std::from_chars(digits.data(), end, life);
    return life;
}

}  // namespace

std::span<const ZRMEventField<ZRMFingerprintBattery>> ZRMFingerprintBattery::fields() {
    using Battery = ZRMFingerprintBattery;
    static constexpr std::array kFields{
        zrm_eventField<&Battery::life>("batteryLife", "0.0 to 1.0, or -1.0 when unknown"),
        zrm_eventField<&Battery::state>("batteryState",
                                        "0 unknown, 1 unplugged, 2 charging, 3 full"),
    };
    return kFields;
}

ZRMFingerprintBattery ZRMFingerprintBattery::read(ZRMPower& power) {
    static auto& mutex = *new ZRMMutex;
    const ZRMLockGuard lock(mutex);
    const MonitoringWhileReading monitoring(power);
    return {withoutNoise(power.batteryLevel()), static_cast<int>(power.batteryState())};
}
