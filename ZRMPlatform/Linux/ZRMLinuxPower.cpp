#include "ZRMPlatform/Linux/ZRMLinuxPower.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <vector>

#include "ZRMPlatform/Linux/ZRMLinuxFileManager.h"
#include "ZRMPlatform/Linux/ZRMLinuxSystemText.h"

namespace {

struct Battery {
    std::optional<int> percent;  // 0 to 100
    ZRMBatteryState state = ZRMBatteryState::Unknown;
};

std::optional<int> percentIn(const std::string& text) {
    int percent = 0;
    const auto* const end = text.data() + text.size();
    const auto [behind, failure] = std::from_chars(text.data(), end, percent);
    const bool isNumber = failure == std::errc() && behind == end && percent >= 0;
    // Worn batteries may report a little more than they were built for.
    return isNumber ? std::optional(std::min(percent, 100)) : std::nullopt;
}

ZRMBatteryState stateIn(const std::string& text, const std::optional<int>& percent) {
    if (text == "Discharging") {
        return ZRMBatteryState::Unplugged;
    }
    if (text == "Full" || (text == "Not charging" && percent == 100)) {
        return ZRMBatteryState::Full;
    }
    return text == "Charging" || text == "Not charging" ? ZRMBatteryState::Charging
                                                        : ZRMBatteryState::Unknown;
}

std::optional<Battery> batteryIn(const std::string& directory) {
    const auto textOf = [&](const char* file) {
        return zrm_systemNameInFile(directory + "/" + file).value_or("");
    };
    if (textOf("type") != "Battery" || textOf("scope") == "Device" || textOf("present") == "0") {
        return std::nullopt;
    }
    const auto percent = percentIn(textOf("capacity"));
    return Battery{percent, stateIn(textOf("status"), percent)};
}

std::vector<Battery> batteriesBelow(const std::string& sysDirectory) {
    std::vector<Battery> batteries;
    const auto supplies = sysDirectory + "/class/power_supply";
    const auto names = ZRMLinuxFileManager().contentsOfDirectory(supplies);
    for (const auto& name : names ? names.value() : std::vector<std::string>()) {
        if (const auto battery = batteryIn(supplies + "/" + name)) {
            batteries.push_back(*battery);
        }
    }
    return batteries;
}

}  // namespace

ZRMLinuxPower::ZRMLinuxPower(std::string sysDirectory) : sysDirectory_(std::move(sysDirectory)) {}

bool ZRMLinuxPower::isBatteryMonitoringEnabled() const {
    return isMonitoring_;
}

void ZRMLinuxPower::setBatteryMonitoringEnabled(bool enabled) {
    isMonitoring_ = enabled;
}

float ZRMLinuxPower::batteryLevel() const {
    int sum = 0;
    int count = 0;
    if (isMonitoring_) {
        for (const auto& battery : batteriesBelow(sysDirectory_)) {
            sum += battery.percent.value_or(0);
            count += battery.percent ? 1 : 0;
        }
    }
    return count == 0 ? -1.0F : static_cast<float>(sum) / static_cast<float>(100 * count);
}

ZRMBatteryState ZRMLinuxPower::batteryState() const {
    if (!isMonitoring_) {
        return ZRMBatteryState::Unknown;
    }
    const auto batteries = batteriesBelow(sysDirectory_);
    // A machine on the mains may hold one battery back while it charges the other; it discharges
    // one only where there is no mains.
    for (const auto state :
         {ZRMBatteryState::Charging, ZRMBatteryState::Unplugged, ZRMBatteryState::Full}) {
        if (std::ranges::find(batteries, state, &Battery::state) != batteries.end()) {
            return state;
        }
    }
    return ZRMBatteryState::Unknown;
}

bool ZRMLinuxPower::isLowPowerModeEnabled() const {
    return zrm_systemNameInFile(sysDirectory_ + "/firmware/acpi/platform_profile") == "low-power";
}
