#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMCommonParametersProvider.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

class ZRMCommonParametersProviderTest : public testing::Test {
  protected:
    ZRMDictionary parameters(std::uint64_t structVersion, ZRMEventPermissions permissions) {
        const ZRMCommonParametersProvider provider(environmentData_, checker_,
                                                   ZRMDate{1709622489.123}, serverTimeProvider_);
        return provider.parametersWithStructVersion(structVersion, permissions);
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    std::shared_ptr<ZRMEnvironmentDataImpl> environmentData_ =
        std::make_shared<ZRMEnvironmentDataImpl>();
    std::shared_ptr<ZRMEventPermissionChecker> checker_ =
        std::make_shared<ZRMEventPermissionChecker>(device_.platform()->locationAuthorization);
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider_;
};

TEST_F(ZRMCommonParametersProviderTest, WritesEnvironmentEventDateAndVersion) {
    environmentData_->osName = "SimulatedOS";
    EXPECT_EQ(parameters(7, 0),
              (ZRMDictionary{{"environmentData", ZRMDictionary{{"osName", "SimulatedOS"}}},
                             {"eventDateTime", "2024-03-05 07:08:09.123000"},
                             {"structVersion", 7U}}));
}

TEST_F(ZRMCommonParametersProviderTest, RepairsTheTextsOfTheEnvironment) {
    environmentData_->osName = "a\xFF";
    EXPECT_EQ(parameters(1, 0).at("environmentData").at("osName"), "a\xEF\xBF\xBD");
}

TEST_F(ZRMCommonParametersProviderTest, LeavesOutAnEnvironmentThatIsMissing) {
    environmentData_ = nullptr;
    EXPECT_FALSE(parameters(1, 0).contains("environmentData"));
}

TEST_F(ZRMCommonParametersProviderTest, LeavesOutTheServersTimeWhileItIsNotKnown) {
    serverTimeProvider_ = std::make_shared<ZRMServerTimeProvider>(device_.platform()->clock);
    EXPECT_FALSE(parameters(1, 0).contains("serverEventDateTime"));
    serverTimeProvider_->setTime("gibberish");
    EXPECT_FALSE(parameters(1, 0).contains("serverEventDateTime"));
}

TEST_F(ZRMCommonParametersProviderTest, WritesTheServersTimeOfTheCallInWholeSeconds) {
    serverTimeProvider_ = std::make_shared<ZRMServerTimeProvider>(device_.platform()->clock);
    serverTimeProvider_->setTime("Tue, 14 Nov 2023 22:13:20 GMT");
    device_.advanceBy(0.999);
    ASSERT_EQ(serverTimeProvider_->getTime(), 1700000000999);
    EXPECT_EQ(parameters(1, 0).at("serverEventDateTime"), "2023-11-14 22:13:20.000000");
    device_.advanceBy(60);
    EXPECT_EQ(parameters(1, 0).at("serverEventDateTime"), "2023-11-14 22:14:20.000000");
}

TEST_F(ZRMCommonParametersProviderTest, WritesTheStateOfTheLocationPermissionOfTheCall) {
    EXPECT_EQ(parameters(1, 1).at("permissions"), ZRMJsonValue(ZRMDictionary{{"location", false}}));
    device_.locationAuthorization().setStatus(4);
    EXPECT_EQ(parameters(1, 1).at("permissions"), ZRMJsonValue(ZRMDictionary{{"location", true}}));
}

TEST_F(ZRMCommonParametersProviderTest, WritesNoPermissionsForTheEmptyMaskAndNoUnknownOnes) {
    EXPECT_FALSE(parameters(1, 0).contains("permissions"));
    EXPECT_EQ(parameters(1, 2).at("permissions"), ZRMJsonValue(ZRMDictionary()));
}

}  // namespace
