#include <gtest/gtest.h>

#include "ZRMMobileKit/ZRMMobileKit_Lib/Categories/NSUserDefaults/NSUserDefaults+ZRMMobileKit.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

class ZRMMobileKitDefaultsTest : public testing::Test {
  protected:
    std::shared_ptr<ZRMMobileKitDefaults> open() {
        return zrm_mobileKitDefaults(*device_.platform()->userDefaults);
    }
    ZRMSimulatedDefaultsStore::Suite& suite() {
        return device_.userDefaults().suites()["com.velorin.zrm.mobilekit.userdefaults"];
    }

    ZRMSimulatedDevice device_;
};

}  // namespace

TEST_F(ZRMMobileKitDefaultsTest, MissingTimesReadAs0) {
    EXPECT_EQ(open()->settingsUpdateTimestamp(), 0);
    EXPECT_EQ(open()->locationDetectTimestamp(), 0);
    EXPECT_EQ(open()->execSessionIdRefreshTimestamp(), 0);
    EXPECT_EQ(open()->execSessionId(), std::nullopt);
}

TEST_F(ZRMMobileKitDefaultsTest, EachValueHasItsKey) {
    const auto defaults = open();
    defaults->setSettingsUpdateTimestamp(1.5);
    defaults->setLocationDetectTimestamp(2.5);
    defaults->setExecSessionIdRefreshTimestamp(3.5);
    defaults->setExecSessionId("ID");
    EXPECT_EQ(std::get<double>(suite().at("ZRMSettingsUpdateTimestamp")), 1.5);
    EXPECT_EQ(std::get<double>(suite().at("ZRMLocationDetectTimestamp")), 2.5);
    EXPECT_EQ(std::get<double>(suite().at("ZRMExecSessionIdRefreshTimestamp")), 3.5);
    EXPECT_EQ(std::get<std::string>(suite().at("ZRMExecSessionId")), "ID");
}

TEST_F(ZRMMobileKitDefaultsTest, ValuesOutliveTheProcessAndAreSeenByEveryHandle) {
    const auto first = open();
    const auto second = open();
    EXPECT_NE(first, second);
    first->setSettingsUpdateTimestamp(7);
    first->setLocationDetectTimestamp(8);
    EXPECT_EQ(second->settingsUpdateTimestamp(), 7);
    device_.restartProcess();
    EXPECT_EQ(open()->settingsUpdateTimestamp(), 7);
    EXPECT_EQ(open()->locationDetectTimestamp(), 8);
}

TEST_F(ZRMMobileKitDefaultsTest, ValueOfAnotherTypeReadsAsMissing) {
    suite()["ZRMSettingsUpdateTimestamp"] = std::string("12");
    EXPECT_EQ(open()->settingsUpdateTimestamp(), 0);
}
