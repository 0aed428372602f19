#include <limits>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMMobileKit/ZRMDeviceSignals.h"
#include "ZRMPlatform/HostFed/ZRMHostFedPorts.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

namespace {

const std::string kNotUtf8 = "caf\xE9";

// Over the simulated device, joined with what the process's host tells.
class ZRMDeviceSignalsTest : public testing::Test {
  protected:
    ZRMDeviceSignalsTest() { zrm_joinHostFedPorts(platform_, ZRMHostSignals::shared()); }
    ~ZRMDeviceSignalsTest() override {
        ZRMDeviceSignals::forgetMachine();
        ZRMDeviceSignals::setLocationServicesEnabled(false);
        EXPECT_TRUE(ZRMDeviceSignals::setBiometry(ZRMDeviceBiometry::NotAvailable));
        EXPECT_TRUE(ZRMDeviceSignals::setLocationAuthorization(
            ZRMDeviceLocationAuthorization::NotDetermined));
    }

    [[nodiscard]] std::int64_t biometryCode() {
        const auto evaluation = platform_.localAuthentication->evaluateBiometrics();
        return evaluation.error ? evaluation.error->code() : 0;
    }

    ZRMSimulatedDevice machine_;
    ZRMPlatform platform_ = *machine_.platform();
};

class NotedFixes final : public ZRMLocationManagerDelegate {
  public:
    void locationsUpdated(const std::vector<ZRMLocation>& locations) override {
        fixes.insert(fixes.end(), locations.begin(), locations.end());
    }
    void locationFailed(const ZRMError& error) override { errors.push_back(error); }
    void authorizationChanged(int status) override { statuses.push_back(status); }

    std::vector<ZRMLocation> fixes;
    std::vector<ZRMError> errors;
    std::vector<int> statuses;
};

}  // namespace

TEST_F(ZRMDeviceSignalsTest, ACallIsTakenAndOneWithoutAUuidIsRefused) {
    const ZRMCall call{.uuid = "A", .hasConnected = true};
    EXPECT_TRUE(ZRMDeviceSignals::updateCall(call));
    EXPECT_FALSE(ZRMDeviceSignals::updateCall({.hasConnected = true}));
    EXPECT_FALSE(ZRMDeviceSignals::updateCall({.uuid = kNotUtf8}));
    EXPECT_THAT(platform_.calls->calls(), ElementsAre(call));
    EXPECT_TRUE(ZRMDeviceSignals::updateCall({.uuid = "A", .hasEnded = true}));
    EXPECT_THAT(platform_.calls->calls(), IsEmpty());
}

TEST_F(ZRMDeviceSignalsTest, NotificationsReachTheirObservers) {
    int foregrounds = 0;
    int screenshots = 0;
    const auto first = platform_.notifications->observe(
        ZRMApplicationNotification::WillEnterForeground, [&] { ++foregrounds; });
    const auto second = platform_.notifications->observe(
        ZRMApplicationNotification::UserDidTakeScreenshot, [&] { ++screenshots; });
    ZRMDeviceSignals::applicationWillEnterForeground();
    ZRMDeviceSignals::userDidTakeScreenshot();
    ZRMDeviceSignals::userDidTakeScreenshot();
    machine_.runUntilIdle();
    EXPECT_EQ(foregrounds, 1);
    EXPECT_EQ(screenshots, 2);
}

TEST_F(ZRMDeviceSignalsTest, ScreensAreCapturedMirroredAndConnected) {
    ZRMDeviceSignals::setScreenCaptured(true);
    ZRMDeviceSignals::setScreenMirrored(true);
    const ZRMScreen monitor{.hasMirroredScreen = true, .width = 1920, .height = 1080};
    EXPECT_TRUE(ZRMDeviceSignals::connectScreen(monitor));
    EXPECT_FALSE(ZRMDeviceSignals::connectScreen({.width = -1}));
    const auto screens = platform_.screens->screens();
    ASSERT_EQ(screens.size(), 2u);
    EXPECT_EQ(screens[0].isCaptured, true);
    EXPECT_TRUE(screens[0].hasMirroredScreen);
    EXPECT_EQ(screens[1], monitor);
    ZRMDeviceSignals::disconnectScreens();
    EXPECT_EQ(platform_.screens->screens().size(), 1u);
}

TEST_F(ZRMDeviceSignalsTest, FixesReachWhoWantsThem) {
    const auto delegate = std::make_shared<NotedFixes>();
    const auto manager = platform_.locationServices->makeLocationManager(10);
    manager->setDelegate(delegate);
    EXPECT_FALSE(ZRMDeviceSignals::isLocationWanted());
    EXPECT_TRUE(ZRMDeviceSignals::updateLocation({1, 1, 1}));
    manager->startUpdatingLocation();
    EXPECT_TRUE(ZRMDeviceSignals::isLocationWanted());
    EXPECT_TRUE(ZRMDeviceSignals::updateLocation({48.2, 16.37, 5}));
    EXPECT_FALSE(ZRMDeviceSignals::updateLocation({91, 0, 5}));
    ZRMDeviceSignals::locationFailed(ZRMLocationErrorDenied);
    machine_.runUntilIdle();
    EXPECT_THAT(delegate->fixes, ElementsAre(ZRMLocation{48.2, 16.37, 5}));
    EXPECT_THAT(delegate->errors,
                ElementsAre(ZRMError(kZRMLocationErrorDomain, ZRMLocationErrorDenied)));
}

TEST_F(ZRMDeviceSignalsTest, TheAuthorizationIsOneOfTheFive) {
    const auto delegate = std::make_shared<NotedFixes>();
    const auto manager = platform_.locationServices->makeLocationManager(10);
    manager->setDelegate(delegate);
    EXPECT_TRUE(
        ZRMDeviceSignals::setLocationAuthorization(ZRMDeviceLocationAuthorization::WhenInUse));
    for (const int number : {-1, 5}) {
        EXPECT_FALSE(ZRMDeviceSignals::setLocationAuthorization(
            static_cast<ZRMDeviceLocationAuthorization>(number)));
    }
    machine_.runUntilIdle();
    EXPECT_THAT(delegate->statuses, ElementsAre(ZRMLocationAuthorizationWhenInUse));
    EXPECT_EQ(platform_.locationAuthorization->status(), ZRMLocationAuthorizationWhenInUse);
}

TEST_F(ZRMDeviceSignalsTest, LocationServicesAreSwitched) {
    EXPECT_FALSE(platform_.locationServices->locationServicesEnabled());
    ZRMDeviceSignals::setLocationServicesEnabled(true);
    EXPECT_TRUE(platform_.locationServices->locationServicesEnabled());
}

TEST_F(ZRMDeviceSignalsTest, BiometryHasAStateOnlyWhereItIsEnrolled) {
    EXPECT_EQ(biometryCode(), ZRMLocalAuthenticationErrorBiometryNotAvailable);
    EXPECT_TRUE(ZRMDeviceSignals::setBiometry(ZRMDeviceBiometry::NotEnrolled));
    EXPECT_EQ(biometryCode(), ZRMLocalAuthenticationErrorBiometryNotEnrolled);
    EXPECT_TRUE(ZRMDeviceSignals::setBiometry(ZRMDeviceBiometry::LockedOut));
    EXPECT_EQ(biometryCode(), ZRMLocalAuthenticationErrorBiometryLockout);
    EXPECT_TRUE(ZRMDeviceSignals::setBiometry(ZRMDeviceBiometry::Enrolled, ZRMData{1, 0, 2}));
    const auto evaluation = platform_.localAuthentication->evaluateBiometrics();
    EXPECT_TRUE(evaluation.canEvaluate);
    EXPECT_EQ(evaluation.domainState, (ZRMData{1, 0, 2}));
    EXPECT_FALSE(evaluation.error);
    EXPECT_FALSE(ZRMDeviceSignals::setBiometry(ZRMDeviceBiometry::LockedOut, ZRMData{1}));
    EXPECT_FALSE(ZRMDeviceSignals::setBiometry(ZRMDeviceBiometry::Enrolled,
                                               ZRMData(kZRMMaxSignalLength + 1)));
    EXPECT_FALSE(ZRMDeviceSignals::setBiometry(static_cast<ZRMDeviceBiometry>(4)));
    EXPECT_TRUE(platform_.localAuthentication->evaluateBiometrics().canEvaluate);
}

TEST_F(ZRMDeviceSignalsTest, NetworksAreTold) {
    const ZRMWifiNetwork network{"Lobby", "00:11:22:33:44:55"};
    EXPECT_TRUE(ZRMDeviceSignals::setWifi(network));
    EXPECT_FALSE(ZRMDeviceSignals::setWifi(ZRMWifiNetwork{kNotUtf8, std::nullopt}));
    EXPECT_THAT(platform_.wifi->currentNetwork(), Optional(network));
    EXPECT_TRUE(ZRMDeviceSignals::setWifi(std::nullopt));
    EXPECT_EQ(platform_.wifi->currentNetwork(), std::nullopt);

    EXPECT_TRUE(ZRMDeviceSignals::setCarriers({{.name = "One"}}));
    EXPECT_FALSE(ZRMDeviceSignals::setCarriers({{.name = kNotUtf8}}));
    EXPECT_THAT(platform_.carriers->carriers(), ElementsAre(ZRMCarrier{.name = "One"}));

    EXPECT_TRUE(ZRMDeviceSignals::setTunnels({"utun0"}));
    EXPECT_FALSE(ZRMDeviceSignals::setTunnels({""}));
    EXPECT_THAT(platform_.networkInterfaces->scopedInterfaceNames(),
                Optional(ElementsAre("en0", "utun0")));
}

TEST_F(ZRMDeviceSignalsTest, PowerIsTold) {
    platform_.power->setBatteryMonitoringEnabled(true);
    EXPECT_TRUE(ZRMDeviceSignals::setBattery(0.5F, ZRMDeviceBattery::Unplugged));
    for (const float level : {-0.5F, 1.5F, std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::infinity()}) {
        EXPECT_FALSE(ZRMDeviceSignals::setBattery(level, ZRMDeviceBattery::Full)) << level;
    }
    EXPECT_FALSE(ZRMDeviceSignals::setBattery(1, static_cast<ZRMDeviceBattery>(4)));
    EXPECT_EQ(platform_.power->batteryLevel(), 0.5F);
    EXPECT_EQ(platform_.power->batteryState(), ZRMBatteryState::Unplugged);
    EXPECT_TRUE(ZRMDeviceSignals::setBattery(-1, ZRMDeviceBattery::Unknown));
    EXPECT_EQ(platform_.power->batteryLevel(), -1.0F);
    ZRMDeviceSignals::setLowPowerMode(true);
    EXPECT_TRUE(platform_.power->isLowPowerModeEnabled());
}

TEST_F(ZRMDeviceSignalsTest, NamesAreTold) {
    EXPECT_TRUE(ZRMDeviceSignals::setDeviceName("Anna's \"phone\""));
    EXPECT_TRUE(ZRMDeviceSignals::setLocalizedModel("Telefon"));
    EXPECT_TRUE(ZRMDeviceSignals::setIdentifierForVendor("identifier"));
    for (const auto& text : {kNotUtf8, std::string("a\0b", 3)}) {
        EXPECT_FALSE(ZRMDeviceSignals::setDeviceName(text));
        EXPECT_FALSE(ZRMDeviceSignals::setLocalizedModel(text));
        EXPECT_FALSE(ZRMDeviceSignals::setIdentifierForVendor(text));
    }
    EXPECT_EQ(platform_.device->name(), "Anna's \"phone\"");
    EXPECT_EQ(platform_.device->localizedModel(), "Telefon");
    EXPECT_EQ(platform_.device->identifierForVendor(), "identifier");
    ZRMDeviceSignals::forgetMachine();
    EXPECT_EQ(platform_.device->name(), machine_.platform()->device->name());
}
