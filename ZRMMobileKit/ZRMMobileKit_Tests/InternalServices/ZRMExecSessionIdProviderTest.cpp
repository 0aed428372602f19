#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMCloudKit/ZRMExecSessionIdProvider.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

constexpr double kTimeout = 1800;

class ZRMExecSessionIdProviderTest : public testing::Test {
  protected:
    // As a start of the library does it.
    std::string start() {
        const auto platform = device_.platform();
        return ZRMExecSessionIdProvider(kTimeout, zrm_mobileKitDefaults(*platform->userDefaults),
                                        platform->clock, platform->random)
            .execSessionId();
    }
    ZRMSimulatedDefaultsStore::Suite& stored() {
        return device_.userDefaults().suites()["com.velorin.zrm.mobilekit.userdefaults"];
    }

    ZRMSimulatedDevice device_;
};

}  // namespace

TEST_F(ZRMExecSessionIdProviderTest, FirstIdentifierIsAnUpperCaseUuidThatIsStored) {
    const auto identifier = start();
    EXPECT_THAT(identifier,
                testing::MatchesRegex(
                    "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
    EXPECT_EQ(std::get<std::string>(stored().at("ZRMExecSessionId")), identifier);
    EXPECT_EQ(std::get<double>(stored().at("ZRMExecSessionIdRefreshTimestamp")),
              device_.now().secondsSince1970 + kTimeout);
}

TEST_F(ZRMExecSessionIdProviderTest, StartWithinTheTimeoutKeepsIt) {
    const auto identifier = start();
    device_.advanceBy(600);
    EXPECT_EQ(start(), identifier);
}

TEST_F(ZRMExecSessionIdProviderTest, EveryStartBeginsTheTimeoutAnew) {
    const auto identifier = start();
    for (int count = 0; count < 5; ++count) {
        device_.advanceBy(1700);
        EXPECT_EQ(start(), identifier);
    }
    EXPECT_EQ(std::get<double>(stored().at("ZRMExecSessionIdRefreshTimestamp")),
              device_.now().secondsSince1970 + kTimeout);
}

TEST_F(ZRMExecSessionIdProviderTest, StartExactlyAtTheTimeoutKeepsItAndOneLaterDoesNot) {
    const auto identifier = start();
    device_.advanceBy(kTimeout);
    EXPECT_EQ(start(), identifier);
    device_.advanceBy(kTimeout + 0.001);
    EXPECT_NE(start(), identifier);
}

TEST_F(ZRMExecSessionIdProviderTest, SurvivesARestartOfTheProcess) {
    const auto identifier = start();
    device_.restartProcess();
    EXPECT_EQ(start(), identifier);
}

TEST_F(ZRMExecSessionIdProviderTest, MissingIdentifierIsMadeWhateverTheTimestampSays) {
    stored()["ZRMExecSessionIdRefreshTimestamp"] = device_.now().secondsSince1970 + 10000;
    EXPECT_EQ(start().size(), 36u);
}

TEST_F(ZRMExecSessionIdProviderTest, StoredIdentifierWithoutATimestampIsReplaced) {
    stored()["ZRMExecSessionId"] = "old";
    EXPECT_NE(start(), "old");
}

TEST_F(ZRMExecSessionIdProviderTest, OneProviderAnswersTheSameForEver) {
    const auto platform = device_.platform();
    ZRMExecSessionIdProvider provider(kTimeout, zrm_mobileKitDefaults(*platform->userDefaults),
                                      platform->clock, platform->random);
    const auto identifier = provider.execSessionId();
    device_.advanceBy(10 * kTimeout);
    EXPECT_EQ(provider.execSessionId(), identifier);
}

TEST(ZRMMobileKitDefaults, MissingValuesReadAsAbsentAndZero) {
    ZRMSimulatedDevice device;
    const auto defaults = zrm_mobileKitDefaults(*device.platform()->userDefaults);
    EXPECT_EQ(defaults->execSessionId(), std::nullopt);
    EXPECT_EQ(defaults->execSessionIdRefreshTimestamp(), 0);
}

TEST(ZRMMobileKitDefaults, EveryHandleSeesWhatAnotherWrote) {
    ZRMSimulatedDevice device;
    const auto one = zrm_mobileKitDefaults(*device.platform()->userDefaults);
    const auto other = zrm_mobileKitDefaults(*device.platform()->userDefaults);
    EXPECT_NE(one, other);
    one->setExecSessionId("id");
    one->setExecSessionIdRefreshTimestamp(12.5);
    EXPECT_EQ(other->execSessionId(), "id");
    EXPECT_EQ(other->execSessionIdRefreshTimestamp(), 12.5);
}
