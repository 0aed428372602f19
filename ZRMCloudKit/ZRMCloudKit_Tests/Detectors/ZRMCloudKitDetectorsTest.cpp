// The library's own detectors joined to the core, on a whole simulated device.
#include "ZRMCloudKit/ZRMCloudKit_Tests/Support/ZRMCloudKitFixture.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ZRMCloudKitDetectorsTest : public ZRMCloudKitFixture {
  protected:
    ZRMCloudKitDetectorsTest() {
        detectors_ = zrm_makeCloudKitDetectors(device_.platform());
        core_ = makeStartedCore();
    }
    void put(const std::string& name, std::string_view text) {
        device_.disk().put(device_.mainBundle().path() + "/" + name, text);
    }
    void sendApplicationMd5() {
        core_->sendApplicationMd5();
        device_.runUntilIdle();
    }
    void sendTouchIdChanged() {
        core_->sendTouchIdChanged();
        device_.runUntilIdle();
    }
    void setEnrolment(std::uint8_t state) {
        device_.localAuthentication().evaluation = {true, ZRMData{state}, std::nullopt};
    }
    void requestLocation() {
        core_->sendDeviceCoordinatesWithAccuracy(
            10, 10, [this](std::optional<ZRMError> error) { errors_.push_back(std::move(error)); });
        device_.runUntilIdle();
    }
    [[nodiscard]] const ZRMDictionary& sentLocation(std::size_t index) const {
        return sentBody(index).at("location").as_object();
    }

    std::shared_ptr<ZRMCloudKitImpl> core_;
    std::vector<std::optional<ZRMError>> errors_;  // of location requests, as they completed
};

TEST_F(ZRMCloudKitDetectorsTest, SendTheBundlesDigestOnceAnInterval) {
    put("Host", "a");
    put("Info.plist", "abc");
    sendApplicationMd5();
    ASSERT_THAT(sentTypes(), ElementsAre("ApplicationInfoEvent"));
    EXPECT_EQ(sentBody(0).at("applicationMd5"), "9cc02521fc23f918e755a69f41965913");
    device_.advanceBy(86399);
    sendApplicationMd5();
    EXPECT_THAT(service_->sent, SizeIs(1));
    put("Info.plist", "a");
    device_.advanceBy(1);
    sendApplicationMd5();
    ASSERT_THAT(service_->sent, SizeIs(2));
    EXPECT_EQ(sentBody(1).at("applicationMd5"), "00000000000000000000000000000000");
}

TEST_F(ZRMCloudKitDetectorsTest, SendNoDigestOfABundleWithoutFilesAndTryAgainNextTime) {
    sendApplicationMd5();
    EXPECT_THAT(service_->sent, IsEmpty());
    EXPECT_THAT(log_.verboses(), Contains("Application bundle md5 data is nil"));
    put("Host", "a");
    sendApplicationMd5();
    EXPECT_THAT(sentTypes(), ElementsAre("ApplicationInfoEvent"));
}

TEST_F(ZRMCloudKitDetectorsTest, ReportTheBiometricStateFirstAndThenItsChanges) {
    setEnrolment(1);
    sendTouchIdChanged();
    ASSERT_THAT(sentTypes(), ElementsAre("TouchIdChangedEvent"));
    EXPECT_EQ(sentBody(0).at("touchIdChanged"), false);
    EXPECT_EQ(sentBody(0).at("touchIdAvailable"), true);
    EXPECT_EQ(sentBody(0).at("touchIdEnabled"), true);
    sendTouchIdChanged();
    EXPECT_THAT(service_->sent, SizeIs(1));
    setEnrolment(2);
    sendTouchIdChanged();
    ASSERT_THAT(service_->sent, SizeIs(2));
    EXPECT_EQ(sentBody(1).at("touchIdChanged"), true);
}

TEST_F(ZRMCloudKitDetectorsTest, KnowTheBiometricStateOverARestart) {
    setEnrolment(1);
    sendTouchIdChanged();
    device_.restartProcess();
    detectors_ = zrm_makeCloudKitDetectors(device_.platform());
    core_ = makeStartedCore();
    sendTouchIdChanged();
    EXPECT_THAT(service_->sent, SizeIs(1));
    device_.localAuthentication().evaluation = {false, std::nullopt,
                                                ZRMError(kZRMLocalAuthenticationErrorDomain, -7)};
    sendTouchIdChanged();
    ASSERT_THAT(service_->sent, SizeIs(2));
    EXPECT_EQ(sentBody(1).at("touchIdAvailable"), true);
    EXPECT_EQ(sentBody(1).at("touchIdEnabled"), false);
    EXPECT_EQ(sentBody(1).at("touchIdChanged"), true);
}

TEST_F(ZRMCloudKitDetectorsTest, SendTheLocation) {
    device_.location().setStatus(ZRMLocationAuthorizationWhenInUse);
    device_.reachability().setFlags(ZRMReachabilityReachable | ZRMReachabilityIsCellular);
    requestLocation();
    EXPECT_THAT(service_->sent, IsEmpty());
    device_.location().deliver({{48.2, 16.4, 8}});
    device_.runUntilIdle();
    ASSERT_THAT(sentTypes(), ElementsAre("IOSGeoLocationEvent"));
    EXPECT_EQ(sentPriority(0), 2);
    EXPECT_EQ(sentLocation(0), (ZRMDictionary{{"latitude", 48.2},
                                              {"longitude", 16.4},
                                              {"precision", 8.0},
                                              {"gprsEnabled", true},
                                              {"gpsEnabled", true},
                                              {"wifiEnabled", false}}));
    EXPECT_EQ(sentBody(0).at("permissions"), (ZRMJsonValue{{"location", true}}));
    EXPECT_THAT(errors_, ElementsAre(std::nullopt));
}

TEST_F(ZRMCloudKitDetectorsTest, SendTheFlagsAloneWhereTheLocationIsDenied) {
    device_.location().setStatus(ZRMLocationAuthorizationDenied);
    device_.location().setServicesEnabled(false);
    device_.reachability().setFlags(ZRMReachabilityReachable);
    requestLocation();
    ASSERT_THAT(sentTypes(), ElementsAre("IOSGeoLocationEvent"));
    EXPECT_EQ(
        sentLocation(0),
        (ZRMDictionary{{"gprsEnabled", false}, {"gpsEnabled", false}, {"wifiEnabled", true}}));
    EXPECT_EQ(sentBody(0).at("permissions"), (ZRMJsonValue{{"location", false}}));
    EXPECT_THAT(errors_, ElementsAre(ZRMError(kZRMLocationErrorDomain, 1)));
}

TEST_F(ZRMCloudKitDetectorsTest, SendTheBestFixAtTheLimitAndTheFlagsAloneWithoutOne) {
    device_.location().setStatus(ZRMLocationAuthorizationAlways);
    requestLocation();
    device_.location().deliver({{48.2, 16.4, 50}});
    device_.advanceBy(10);
    requestLocation();
    device_.advanceBy(10);
    ASSERT_THAT(service_->sent, SizeIs(2));
    EXPECT_EQ(sentLocation(0).at("precision"), 50.0);
    EXPECT_THAT(sentLocation(1), SizeIs(3));
    EXPECT_THAT(errors_, ElementsAre(std::nullopt, ZRMError(kZRMLocationErrorDomain, 0)));
}

TEST_F(ZRMCloudKitDetectorsTest, LocateWithOneManagerHoweverOftenTheyAreAsked) {
    device_.location().setStatus(ZRMLocationAuthorizationAlways);
    requestLocation();
    requestLocation();
    EXPECT_THAT(errors_, ElementsAre(ZRMError(kZRMLocationErrorDomain, 0)));
    device_.location().deliver({{48.2, 16.4, 8}});
    device_.runUntilIdle();
    EXPECT_EQ(device_.location().managersMade(), 1U);
    EXPECT_THAT(errors_, ElementsAre(ZRMError(kZRMLocationErrorDomain, 0), std::nullopt));
    ASSERT_THAT(service_->sent, SizeIs(2));
    EXPECT_THAT(sentLocation(0), SizeIs(3));
    EXPECT_THAT(sentLocation(1), SizeIs(6));
}

}  // namespace
