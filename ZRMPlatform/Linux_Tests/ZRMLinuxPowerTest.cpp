#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxPower.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

class ZRMLinuxPowerTest : public testing::Test {
  protected:
    ZRMLinuxPowerTest() { power_.setBatteryMonitoringEnabled(true); }

    void write(const std::string& supply, const std::string& file, std::string_view text) {
        directory_.writeFile("class/power_supply/" + supply + "/" + file, text);
    }
    void addBattery(const std::string& name, std::string_view capacity, std::string_view status) {
        write(name, "type", "Battery\n");
        write(name, "capacity", capacity);
        write(name, "status", status);
    }

    ZRMTestDirectory directory_;
    ZRMLinuxPower power_{directory_.path()};
};

}  // namespace

TEST_F(ZRMLinuxPowerTest, ABatteryTellsItsLevelAndState) {
    addBattery("BAT0", "87\n", "Discharging\n");
    EXPECT_FLOAT_EQ(power_.batteryLevel(), 0.87F);
    EXPECT_EQ(power_.batteryState(), ZRMBatteryState::Unplugged);
}

TEST_F(ZRMLinuxPowerTest, NothingIsKnownWhileMonitoringIsOff) {
    addBattery("BAT0", "87\n", "Discharging\n");
    EXPECT_FALSE(ZRMLinuxPower(directory_.path()).isBatteryMonitoringEnabled());
    power_.setBatteryMonitoringEnabled(false);
    EXPECT_FALSE(power_.isBatteryMonitoringEnabled());
    EXPECT_EQ(power_.batteryLevel(), -1.0F);
    EXPECT_EQ(power_.batteryState(), ZRMBatteryState::Unknown);
    power_.setBatteryMonitoringEnabled(true);
    EXPECT_FLOAT_EQ(power_.batteryLevel(), 0.87F);
}

TEST_F(ZRMLinuxPowerTest, EveryStatusHasItsState) {
    const std::tuple<const char*, const char*, ZRMBatteryState> rows[] = {
        {"50", "Charging\n", ZRMBatteryState::Charging},
        {"50", "Discharging\n", ZRMBatteryState::Unplugged},
        {"98", "Full\n", ZRMBatteryState::Full},
        {"80", "Not charging\n", ZRMBatteryState::Charging},
        {"100", "Not charging\n", ZRMBatteryState::Full},
        {"50", "Unknown\n", ZRMBatteryState::Unknown},
        {"50", "", ZRMBatteryState::Unknown},
        {"50", "\xFF\xFE\n", ZRMBatteryState::Unknown}};
    for (const auto& [capacity, status, state] : rows) {
        addBattery("BAT0", capacity, status);
        EXPECT_EQ(power_.batteryState(), state) << capacity << ' ' << status;
    }
}

TEST_F(ZRMLinuxPowerTest, WithoutABatteryTheLevelIsMinusOne) {
    EXPECT_EQ(power_.batteryLevel(), -1.0F);
    EXPECT_EQ(power_.batteryState(), ZRMBatteryState::Unknown);
    write("AC", "type", "Mains\n");
    write("AC", "status", "Full\n");
    write("AC", "capacity", "70\n");
    EXPECT_EQ(power_.batteryLevel(), -1.0F);
    EXPECT_EQ(power_.batteryState(), ZRMBatteryState::Unknown);
}

TEST_F(ZRMLinuxPowerTest, BatteriesOfOtherDevicesAndEmptySlotsDoNotCount) {
    addBattery("hid-mouse", "10\n", "Full\n");
    write("hid-mouse", "scope", "Device\n");
    addBattery("BAT1", "20\n", "Full\n");
    write("BAT1", "present", "0\n");
    EXPECT_EQ(power_.batteryLevel(), -1.0F);
    EXPECT_EQ(power_.batteryState(), ZRMBatteryState::Unknown);
    addBattery("BAT0", "60\n", "Charging\n");
    write("BAT0", "scope", "System\n");
    write("BAT0", "present", "1\n");
    EXPECT_FLOAT_EQ(power_.batteryLevel(), 0.6F);
    EXPECT_EQ(power_.batteryState(), ZRMBatteryState::Charging);
}

TEST_F(ZRMLinuxPowerTest, SeveralBatteriesCountTogether) {
    addBattery("BAT0", "100\n", "Full\n");
    addBattery("BAT1", "50\n", "Charging\n");
    addBattery("BAT2", "", "Unknown\n");
    EXPECT_FLOAT_EQ(power_.batteryLevel(), 0.75F);
    EXPECT_EQ(power_.batteryState(), ZRMBatteryState::Charging);
    addBattery("BAT1", "50\n", "Discharging\n");
    EXPECT_EQ(power_.batteryState(), ZRMBatteryState::Unplugged);
}

TEST_F(ZRMLinuxPowerTest, ACapacityThatIsNoPercentageIsUnknown) {
    for (const char* const garbage : {"", "\n", "x", "-5", "50%", "5 0", "99999999999"}) {
        addBattery("BAT0", garbage, "Discharging\n");
        EXPECT_EQ(power_.batteryLevel(), -1.0F) << garbage;
        EXPECT_EQ(power_.batteryState(), ZRMBatteryState::Unplugged) << garbage;
    }
    addBattery("BAT0", std::string(100'000, '1'), "Discharging\n");
    EXPECT_EQ(power_.batteryLevel(), -1.0F);
    addBattery("BAT0", "104\n", "Discharging\n");
    EXPECT_EQ(power_.batteryLevel(), 1.0F);
    addBattery("BAT0", "0\n", "Discharging\n");
    EXPECT_EQ(power_.batteryLevel(), 0.0F);
}

TEST_F(ZRMLinuxPowerTest, LowPowerIsTheProfileOfThatName) {
    EXPECT_FALSE(power_.isLowPowerModeEnabled());
    for (const auto& [profile, isLow] :
         {std::pair("low-power\n", true), std::pair("balanced\n", false),
          std::pair("performance\n", false), std::pair("low-power-ish\n", false),
          std::pair("", false)}) {
        directory_.writeFile("firmware/acpi/platform_profile", profile);
        EXPECT_EQ(power_.isLowPowerModeEnabled(), isLow) << profile;
    }
    directory_.writeFile("firmware/acpi/platform_profile", "low-power\n");
    power_.setBatteryMonitoringEnabled(false);
    EXPECT_TRUE(power_.isLowPowerModeEnabled());
}
