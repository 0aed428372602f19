#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventProvider.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

const ZRMLocation kFix{48.2082, -16.3738, 8.5};

class ZRMIOSGeoLocationEventTest : public testing::Test {
  protected:
    [[nodiscard]] std::shared_ptr<ZRMIOSGeoLocationEvent> event(
        const std::optional<ZRMLocation>& location, bool locationServicesEnabled = true) const {
        return provider_.coordinatesEventWithLocation(
            location, ZRMReachabilityInspector::inspectorForInternetConnection(device_.platform()),
            locationServicesEnabled);
    }

    ZRMSimulatedDevice device_;
    ZRMEventProvider provider_{
        device_.platform(), std::make_shared<ZRMEnvironmentDataImpl>(),
        std::make_shared<ZRMEventPermissionChecker>(device_.platform()->locationAuthorization),
        nullptr};
};

TEST_F(ZRMIOSGeoLocationEventTest, HoldsTheFixAndTheFlagsInOneObject) {
    device_.reachability().setFlags(ZRMReachabilityReachable);
    EXPECT_EQ(event(kFix)->coordinatesEventParameters(),
              (ZRMDictionary{{"location", ZRMDictionary{{"latitude", 48.2082},
                                                        {"longitude", -16.3738},
                                                        {"precision", 8.5},
                                                        {"gprsEnabled", false},
                                                        {"gpsEnabled", true},
                                                        {"wifiEnabled", true}}}}));
}

TEST_F(ZRMIOSGeoLocationEventTest, HoldsTheFlagsAloneWithoutALocation) {
    device_.reachability().setFlags(0);
    EXPECT_EQ(event(std::nullopt, false)->coordinatesEventParameters(),
              (ZRMDictionary{{"location", ZRMDictionary{{"gprsEnabled", false},
                                                        {"gpsEnabled", false},
                                                        {"wifiEnabled", false}}}}));
}

TEST_F(ZRMIOSGeoLocationEventTest, TellsHowTheInternetIsReachedWhenTheBodyIsBuilt) {
    const auto unchanged = event(std::nullopt);
    device_.reachability().setFlags(ZRMReachabilityReachable | ZRMReachabilityIsCellular);
    EXPECT_EQ(unchanged->locationBody().at("gprsEnabled"), true);
    EXPECT_EQ(unchanged->locationBody().at("wifiEnabled"), false);
    device_.reachability().setFlags(ZRMReachabilityReachable);
    EXPECT_EQ(unchanged->locationBody().at("gprsEnabled"), false);
    EXPECT_EQ(unchanged->locationBody().at("wifiEnabled"), true);
}

TEST_F(ZRMIOSGeoLocationEventTest, IsOfItsTypeAndVersionAndReportsTheLocationPermission) {
    const auto fix = event(kFix);
    EXPECT_EQ(fix->structVersion(), 1U);
    EXPECT_EQ(fix->permissions(), 1U);
    for (const bool granted : {true, false}) {
        device_.location().setStatus(granted ? ZRMLocationAuthorizationAlways
                                             : ZRMLocationAuthorizationDenied);
        const auto parameters = fix->parameters();
        ASSERT_EQ(parameters.size(), 1U);
        const auto& body = parameters.at("IOSGeoLocationEvent").as_object();
        EXPECT_EQ(body.at("structVersion"), 1);
        EXPECT_EQ(body.at("permissions"), (ZRMJsonValue{{"location", granted}}));
        EXPECT_EQ(body.at("location").as_object().size(), 6U);
        EXPECT_EQ(body.size(), 5U);  // and the date and the environment
    }
}

TEST_F(ZRMIOSGeoLocationEventTest, LeavesOutNumbersThatJsonCannotCarry) {
    const auto body = event(ZRMLocation{std::numeric_limits<double>::quiet_NaN(), 1,
                                        std::numeric_limits<double>::infinity()})
                          ->locationBody();
    EXPECT_FALSE(body.contains("latitude"));
    EXPECT_EQ(body.at("longitude"), 1.0);
    EXPECT_FALSE(body.contains("precision"));
}

TEST_F(ZRMIOSGeoLocationEventTest, KeepsWhatItWasMadeFrom) {
    const auto inspector =
        ZRMReachabilityInspector::inspectorForInternetConnection(device_.platform());
    const auto made = provider_.coordinatesEventWithLocation(kFix, inspector, true);
    EXPECT_EQ(made->location(), kFix);
    EXPECT_EQ(made->reachabilityInspector(), inspector);
    EXPECT_TRUE(made->locationServicesEnabled());
}

}  // namespace
