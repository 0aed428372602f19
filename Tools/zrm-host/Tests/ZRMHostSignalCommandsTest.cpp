#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tools/zrm-host/ZRMHostSignalCommands.h"
#include "Tools/zrm-host/ZRMWordSplitter.h"
#include "ZRMMobileKit/ZRMDeviceSignals.h"
#include "ZRMPlatform/HostFed/ZRMHostFedPorts.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Optional;

namespace {

class ZRMHostSignalCommands : public testing::Test {
  protected:
    ZRMHostSignalCommands() { zrm_joinHostFedPorts(platform_, ZRMHostSignals::shared()); }
    ~ZRMHostSignalCommands() override {
        ZRMDeviceSignals::forgetMachine();
        EXPECT_EQ(feed("biometry unavailable"), std::nullopt);
        EXPECT_EQ(feed("location-authorization 0"), std::nullopt);
        EXPECT_EQ(feed("location-services off"), std::nullopt);
    }
    static std::optional<std::string> feed(const std::string& line) {
        return zrm_feedHostSignal(*zrm_splitWords(line));
    }
    // How often the notification comes for the signal.
    int notificationsOf(const std::string& line, ZRMApplicationNotification notification) {
        int heard = 0;
        const auto subscription = platform_.notifications->observe(notification, [&] { ++heard; });
        EXPECT_EQ(feed(line), std::nullopt);
        machine_.runUntilIdle();
        return heard;
    }

    ZRMSimulatedDevice machine_;
    ZRMPlatform platform_ = *machine_.platform();
};

class NotedUpdates final : public ZRMLocationManagerDelegate {
  public:
    void locationsUpdated(const std::vector<ZRMLocation>& locations) override { fixes = locations; }
    void locationFailed(const ZRMError& error) override { code = error.code(); }
    void authorizationChanged(int) override {}

    std::vector<ZRMLocation> fixes;
    std::optional<std::int64_t> code;
};

}  // namespace

TEST_F(ZRMHostSignalCommands, ACallHasTheStatesThatAreNamed) {
    EXPECT_EQ(feed("call A"), std::nullopt);
    EXPECT_EQ(feed("call B connected hold outgoing"), std::nullopt);
    EXPECT_THAT(
        platform_.calls->calls(),
        ElementsAre(
            ZRMCall{.uuid = "A"},
            ZRMCall{.uuid = "B", .hasConnected = true, .isOutgoing = true, .isOnHold = true}));
    EXPECT_EQ(feed("call A ended"), std::nullopt);
    EXPECT_EQ(feed("call B connected ended"), std::nullopt);
    EXPECT_THAT(platform_.calls->calls(), IsEmpty());
}

TEST_F(ZRMHostSignalCommands, NotificationsAreGiven) {
    using enum ZRMApplicationNotification;
    EXPECT_EQ(notificationsOf("foreground", WillEnterForeground), 1);
    EXPECT_EQ(notificationsOf("screenshot", UserDidTakeScreenshot), 1);
    EXPECT_EQ(notificationsOf("screen-connected", ScreenDidConnect), 1);
    EXPECT_EQ(notificationsOf("screen-captured on", ScreenCapturedDidChange), 1);
    EXPECT_EQ(notificationsOf("screen-mirrored on", ScreenCapturedDidChange), 1);
    EXPECT_EQ(notificationsOf("screens-disconnected", ScreenCapturedDidChange), 1);
}

TEST_F(ZRMHostSignalCommands, ScreensAreCapturedAndConnected) {
    EXPECT_EQ(feed("screen-captured on"), std::nullopt);
    EXPECT_EQ(feed("screen-connected"), std::nullopt);
    EXPECT_EQ(feed("screen-connected extend"), std::nullopt);
    const auto screens = platform_.screens->screens();
    ASSERT_EQ(screens.size(), 3u);
    EXPECT_EQ(screens[0].isCaptured, true);
    EXPECT_TRUE(screens[1].hasMirroredScreen);
    EXPECT_FALSE(screens[2].hasMirroredScreen);
    EXPECT_EQ(feed("screen-captured off"), std::nullopt);
    EXPECT_EQ(platform_.screens->screens()[0].isCaptured, false);
}

TEST_F(ZRMHostSignalCommands, TheLocationIsToldToWhoLooksForIt) {
    const auto delegate = std::make_shared<NotedUpdates>();
    const auto manager = platform_.locationServices->makeLocationManager(10);
    manager->setDelegate(delegate);
    manager->startUpdatingLocation();
    EXPECT_EQ(feed("location 48.25 -16.5 5"), std::nullopt);
    EXPECT_EQ(feed("location-error 0"), std::nullopt);
    EXPECT_THAT(feed("location 91 0 5"), Optional(HasSubstr("a value is refused")));
    machine_.runUntilIdle();
    EXPECT_THAT(delegate->fixes, ElementsAre(ZRMLocation{48.25, -16.5, 5}));
    EXPECT_EQ(delegate->code, 0);
}

TEST_F(ZRMHostSignalCommands, TheAuthorizationHasNamesAndNumbers) {
    int number = 0;
    for (const auto* name : {"not-determined", "restricted", "denied", "always", "when-in-use"}) {
        EXPECT_EQ(feed(std::string("location-authorization ") + name), std::nullopt);
        EXPECT_EQ(platform_.locationAuthorization->status(), number);
        EXPECT_EQ(feed("location-authorization " + std::to_string(number)), std::nullopt);
        EXPECT_EQ(platform_.locationAuthorization->status(), number);
        ++number;
    }
    EXPECT_EQ(feed("location-services on"), std::nullopt);
    EXPECT_TRUE(platform_.locationServices->locationServicesEnabled());
}

TEST_F(ZRMHostSignalCommands, BiometryHasAState) {
    EXPECT_EQ(feed("biometry enrolled first"), std::nullopt);
    const auto evaluation = platform_.localAuthentication->evaluateBiometrics();
    EXPECT_TRUE(evaluation.canEvaluate);
    EXPECT_EQ(evaluation.domainState, (ZRMData{'f', 'i', 'r', 's', 't'}));
    EXPECT_EQ(feed("biometry locked-out"), std::nullopt);
    EXPECT_EQ(platform_.localAuthentication->evaluateBiometrics().error->code(),
              ZRMLocalAuthenticationErrorBiometryLockout);
    EXPECT_EQ(feed("biometry not-enrolled"), std::nullopt);
    EXPECT_EQ(platform_.localAuthentication->evaluateBiometrics().error->code(),
              ZRMLocalAuthenticationErrorBiometryNotEnrolled);
}

TEST_F(ZRMHostSignalCommands, NetworksAreTold) {
    const auto interfaces = [this] { return platform_.networkInterfaces->scopedInterfaceNames(); };
    EXPECT_EQ(feed("vpn on"), std::nullopt);
    EXPECT_THAT(interfaces(), Optional(ElementsAre("en0", "utun0")));
    EXPECT_EQ(feed("vpn ppp7"), std::nullopt);
    EXPECT_THAT(interfaces(), Optional(ElementsAre("en0", "ppp7")));
    EXPECT_EQ(feed("vpn off"), std::nullopt);
    EXPECT_THAT(interfaces(), Optional(ElementsAre("en0")));
    EXPECT_EQ(feed("wifi 'Café Central' 00:11:22:33:44:55"), std::nullopt);
    EXPECT_THAT(platform_.wifi->currentNetwork(),
                Optional(ZRMWifiNetwork{"Café Central", "00:11:22:33:44:55"}));
    EXPECT_EQ(feed("wifi Lobby"), std::nullopt);
    EXPECT_THAT(platform_.wifi->currentNetwork(), Optional(ZRMWifiNetwork{"Lobby", {}}));
    EXPECT_EQ(feed("wifi off"), std::nullopt);
    EXPECT_EQ(platform_.wifi->currentNetwork(), std::nullopt);
}

TEST_F(ZRMHostSignalCommands, CarriersComeInFives) {
    EXPECT_EQ(feed("carrier One"), std::nullopt);
    EXPECT_THAT(platform_.carriers->carriers(), ElementsAre(ZRMCarrier{.name = "One"}));
    EXPECT_EQ(feed("carrier One at 232 01 on Two de 262 02"), std::nullopt);
    EXPECT_THAT(platform_.carriers->carriers(),
                ElementsAre(ZRMCarrier{true, "at", "232", "01", "One"},
                            ZRMCarrier{false, "de", "262", "02", "Two"}));
    EXPECT_EQ(feed("carrier off"), std::nullopt);
    EXPECT_THAT(platform_.carriers->carriers(), IsEmpty());
}

TEST_F(ZRMHostSignalCommands, PowerAndNamesAreTold) {
    platform_.power->setBatteryMonitoringEnabled(true);
    EXPECT_EQ(feed("battery 0.5 charging"), std::nullopt);
    EXPECT_EQ(platform_.power->batteryLevel(), 0.5F);
    EXPECT_EQ(platform_.power->batteryState(), ZRMBatteryState::Charging);
    EXPECT_EQ(feed("battery unknown unknown"), std::nullopt);
    EXPECT_EQ(platform_.power->batteryLevel(), -1.0F);
    EXPECT_EQ(feed("low-power on"), std::nullopt);
    EXPECT_TRUE(platform_.power->isLowPowerModeEnabled());
    EXPECT_EQ(feed("device-name \"Anna's phone\""), std::nullopt);
    EXPECT_EQ(platform_.device->name(), "Anna's phone");
    EXPECT_EQ(feed("localized-model Telefon"), std::nullopt);
    EXPECT_EQ(platform_.device->localizedModel(), "Telefon");
    EXPECT_EQ(feed("vendor-identifier 1"), std::nullopt);
    EXPECT_EQ(platform_.device->identifierForVendor(), "1");
    EXPECT_EQ(feed("forget"), std::nullopt);
    EXPECT_EQ(platform_.device->name(), machine_.platform()->device->name());
}

TEST_F(ZRMHostSignalCommands, SaysWhatIsWrong) {
    EXPECT_EQ(feed("dance"), "there is no such signal");
    EXPECT_EQ(feed("foreground now"), "usage: signal foreground");
    EXPECT_EQ(feed("screen-captured"), "usage: signal screen-captured on|off");
    EXPECT_EQ(feed("screen-captured maybe"),
              "a value is refused; usage: signal screen-captured on|off");
    for (const auto* line : {"call ''",
                             "call A dancing",
                             "call \xFF",
                             "screen-mirrored 1",
                             "screen-connected big",
                             "location-services yes",
                             "location-authorization 5",
                             "location here there 5",

                             "location-error 0.5",
                             "location-error denied",
                             "biometry 4",
                             "biometry locked-out state",
                             "vpn ''",
                             "wifi \xFF",
                             "carrier One at 232 01 maybe",
                             "battery 2 full",
                             "battery 1 empty",
                             "battery half full",
                             "low-power low",
                             "device-name \xFF",
                             "localized-model \xFF",
                             "vendor-identifier \xFF"}) {
        const auto answer = feed(line);
        ASSERT_TRUE(answer) << line;
        EXPECT_THAT(*answer, HasSubstr("a value is refused; usage: signal ")) << line;
    }
}

TEST_F(ZRMHostSignalCommands, TheHelpNamesThemAll) {
    const auto help = zrm_hostSignalsHelp();
    for (const auto* usage :
         {"signal call UUID",         "signal foreground\n", "signal screenshot\n",
          "screen-captured on|off",   "screen-mirrored",     "screen-connected",
          "screens-disconnected",     "location-services",   "location-authorization",
          "signal location LATITUDE", "location-error CODE", "signal biometry",
          "vpn on|off|NAME",          "signal wifi",         "signal carrier",
          "signal battery",           "signal low-power",    "device-name NAME",
          "localized-model",          "vendor-identifier",   "signal forget\n"}) {
        EXPECT_THAT(help, HasSubstr(usage));
    }
}
