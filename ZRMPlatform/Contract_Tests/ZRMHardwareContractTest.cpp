// What the ports about the machine promise: process information, power, carriers, volumes, kernel
// values.
#include <gmock/gmock.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"
#include "ZRMPlatform/Linux/ZRMLinuxSystemText.h"

namespace {

class ZRMHardwareContract : public ZRMContract {};

bool isText(const std::optional<std::string>& text) {
    return !text || zrm_wellFormedText(*text) == *text;
}

}  // namespace

TEST_P(ZRMHardwareContract, TheProcessAndItsMachineAreKnown) {
    const auto& information = *platform()->processInformation;
    EXPECT_FALSE(information.processName().empty());
    EXPECT_TRUE(isText(information.processName()));
    EXPECT_GE(information.activeProcessorCount(), 1U);
    EXPECT_LE(information.activeProcessorCount(), information.processorCount());
    EXPECT_GT(information.physicalMemory(), 1U << 20U);
    const auto version = information.operatingSystemVersion();
    EXPECT_GT(version.major, 0);
    EXPECT_GE(version.minor, 0);
    EXPECT_GE(version.patch, 0);
    EXPECT_EQ(information.operatingSystemVersion(), version);
}

TEST_P(ZRMHardwareContract, AnApplicationIsNotBothUnchangedAndAdapted) {
    const auto& information = *platform()->processInformation;
    EXPECT_FALSE(information.isMobileApplicationOnDesktop() &&
                 information.isDesktopAdaptedApplication());
}

TEST_P(ZRMHardwareContract, TheBatteryIsUnknownWhileNobodyMonitorsIt) {
    auto& power = *platform()->power;
    EXPECT_FALSE(power.isBatteryMonitoringEnabled());
    EXPECT_EQ(power.batteryLevel(), -1.0F);
    EXPECT_EQ(power.batteryState(), ZRMBatteryState::Unknown);
    power.setBatteryMonitoringEnabled(true);
    EXPECT_TRUE(power.isBatteryMonitoringEnabled());
    power.setBatteryMonitoringEnabled(false);
    EXPECT_FALSE(power.isBatteryMonitoringEnabled());
    EXPECT_EQ(power.batteryLevel(), -1.0F);
    EXPECT_EQ(power.batteryState(), ZRMBatteryState::Unknown);
}

TEST_P(ZRMHardwareContract, AMonitoredBatteryHasALevelAndAStateOfThose) {
    auto& power = *platform()->power;
    power.setBatteryMonitoringEnabled(true);
    EXPECT_THAT(power.batteryLevel(),
                testing::AnyOf(-1.0F, testing::AllOf(testing::Ge(0.0F), testing::Le(1.0F))));
    EXPECT_THAT(power.batteryState(),
                testing::AnyOf(ZRMBatteryState::Unknown, ZRMBatteryState::Unplugged,
                               ZRMBatteryState::Charging, ZRMBatteryState::Full));
}

TEST_P(ZRMHardwareContract, WhatCarriersAreCalledIsText) {
    const auto carriers = platform()->carriers->carriers();
    EXPECT_EQ(platform()->carriers->carriers(), carriers);
    for (const auto& carrier : carriers) {
        EXPECT_TRUE(isText(carrier.name) && isText(carrier.isoCountryCode));
        EXPECT_TRUE(isText(carrier.mobileCountryCode) && isText(carrier.mobileNetworkCode));
    }
}

TEST_P(ZRMHardwareContract, AFileSystemHasNoMoreFreeThanItHolds) {
    for (const auto& path : {std::string("/"), body_->scratchDirectory()}) {
        const auto capacity = platform()->volumes->fileSystemCapacity(path);
        ASSERT_TRUE(capacity) << path;
        EXPECT_GT(capacity.value().total, 0U) << path;
        EXPECT_LE(capacity.value().available, capacity.value().total) << path;
        const auto important = platform()->volumes->capacityForImportantUsage(path);
        ASSERT_TRUE(!important || *important) << path;
        EXPECT_TRUE(!important || important->value().available <= important->value().total);
    }
}

TEST_P(ZRMHardwareContract, KernelValuesAgreeWithWhatThePortsSayElsewhere) {
    const auto& values = *platform()->kernelValues;
    EXPECT_EQ(values.text("hw.machine"), platform()->device->hardwareIdentifier());
    EXPECT_EQ(values.integer("hw.ncpu"),
              static_cast<std::int32_t>(platform()->processInformation->processorCount()));
    EXPECT_TRUE(values.integer("hw.physmem"));
    for (const char* const name : {"hw.machine", "hw.model", "kern.hostname", "kern.ostype"}) {
        const auto text = values.text(name);
        EXPECT_TRUE(!text || (!text->empty() && isText(text))) << name;
        EXPECT_EQ(values.integer(name), std::nullopt) << name;
    }
    for (const char* const name : {"hw.ncpu", "hw.physmem", "kern.hostid"}) {
        EXPECT_EQ(values.text(name), std::nullopt) << name;
    }
}

TEST_P(ZRMHardwareContract, AValueTheKernelDoesNotHaveIsAbsent) {
    for (const char* const name : {"", "hw.nosuchvalue", "kern", "HW.MACHINE"}) {
        EXPECT_EQ(platform()->kernelValues->text(name), std::nullopt) << name;
        EXPECT_EQ(platform()->kernelValues->integer(name), std::nullopt) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMHardwareContract, zrm_contractBodies(), zrm_contractBodyName);
