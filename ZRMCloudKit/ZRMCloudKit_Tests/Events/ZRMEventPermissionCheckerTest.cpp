#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMEventPermissionChecker.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

class ZRMEventPermissionCheckerTest : public testing::TestWithParam<std::pair<int, bool>> {};

TEST_P(ZRMEventPermissionCheckerTest, AnswersFromTheAuthorizationStatus) {
    const auto [status, granted] = GetParam();
    const auto authorization = std::make_shared<ZRMSimulatedLocationAuthorization>(
        std::make_shared<ZRMSimulatedLocation>());
    const ZRMEventPermissionChecker checker(authorization);
    authorization->setStatus(status);
    EXPECT_EQ(checker.isLocationPermissionGranted(), granted);
    EXPECT_EQ(checker.isPermissionGranted(1), granted);
    EXPECT_EQ(checker.isPermissionGranted(3), granted);
}

INSTANTIATE_TEST_SUITE_P(Statuses, ZRMEventPermissionCheckerTest,
                         testing::Values(std::pair(0, false), std::pair(1, false),
                                         std::pair(2, false), std::pair(3, true),
                                         std::pair(4, true), std::pair(5, false),
                                         std::pair(-1, false)));

TEST(ZRMEventPermissionChecker, GrantsTheEmptyMaskAndNoUnknownPermission) {
    const auto authorization = std::make_shared<ZRMSimulatedLocationAuthorization>(
        std::make_shared<ZRMSimulatedLocation>());
    const ZRMEventPermissionChecker checker(authorization);
    EXPECT_TRUE(checker.isPermissionGranted(0));
    authorization->setStatus(3);
    EXPECT_FALSE(checker.isPermissionGranted(2));
    EXPECT_FALSE(checker.isPermissionGranted(~std::uint64_t{1}));
}

}  // namespace
