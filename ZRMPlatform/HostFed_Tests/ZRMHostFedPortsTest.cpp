// Ports that answer the host's word where there is one, and the machine's otherwise.
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMPlatform/HostFed/ZRMHostFedPorts.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

namespace {

// The simulated device is the machine.
class ZRMHostFedPorts : public testing::Test {
  protected:
    ZRMHostFedPorts() { zrm_joinHostFedPorts(platform_, signals_); }

    [[nodiscard]] std::shared_ptr<ZRMSubscription> count(ZRMApplicationNotification notification,
                                                         int& counter) {
        return platform_.notifications->observe(notification, [&counter] { ++counter; });
    }

    ZRMSimulatedDevice machine_;
    ZRMPlatform platform_ = *machine_.platform();
    std::shared_ptr<ZRMHostSignals> signals_ = std::make_shared<ZRMHostSignals>();
};

using ZRMHostFedScreensTest = ZRMHostFedPorts;
using ZRMHostFedNetworkTest = ZRMHostFedPorts;
using ZRMHostFedPowerTest = ZRMHostFedPorts;
using ZRMHostFedDeviceTest = ZRMHostFedPorts;

constexpr ZRMScreen kMonitor{.hasMirroredScreen = true, .width = 1920, .height = 1080};

}  // namespace

TEST_F(ZRMHostFedScreensTest, WithoutAWordTheyAreTheMachines) {
    EXPECT_EQ(platform_.screens->screens(), machine_.platform()->screens->screens());
}

TEST_F(ZRMHostFedScreensTest, TheHostSaysWhetherTheMainOneIsCapturedOrMirrored) {
    machine_.screens().setScreens({{.isCaptured = false, .width = 390}, {.width = 640}});
    signals_->screens.setCaptured(true);
    EXPECT_THAT(platform_.screens->screens(),
                ElementsAre(ZRMScreen{.isCaptured = true, .width = 390}, ZRMScreen{.width = 640}));
    signals_->screens.setCaptured(false);
    signals_->screens.setMirrored(true);
    EXPECT_THAT(platform_.screens->screens(),
                ElementsAre(ZRMScreen{.isCaptured = false, .hasMirroredScreen = true, .width = 390},
                            ZRMScreen{.width = 640}));
}

TEST_F(ZRMHostFedScreensTest, TheHostsScreensComeAfterTheMachinesUntilTheyGo) {
    machine_.screens().setScreens({{.width = 390}});
    EXPECT_TRUE(signals_->screens.connect(kMonitor));
    EXPECT_THAT(platform_.screens->screens(), ElementsAre(ZRMScreen{.width = 390}, kMonitor));
    signals_->screens.disconnect();
    EXPECT_THAT(platform_.screens->screens(), ElementsAre(ZRMScreen{.width = 390}));
}

TEST_F(ZRMHostFedScreensTest, OnAMachineWithoutAScreenTheHostsWordMakesOne) {
    machine_.screens().setScreens({});
    EXPECT_THAT(platform_.screens->screens(), IsEmpty());
    signals_->screens.setCaptured(true);
    EXPECT_THAT(platform_.screens->screens(), ElementsAre(ZRMScreen{.isCaptured = true}));
    signals_->screens.forget();
    EXPECT_THAT(platform_.screens->screens(), IsEmpty());
    EXPECT_TRUE(signals_->screens.connect(kMonitor));
    EXPECT_THAT(platform_.screens->screens(), ElementsAre(kMonitor));
}

TEST_F(ZRMHostFedScreensTest, OnlySoManyScreensMayBeConnected) {
    for (std::size_t number = 0; number < ZRMHostScreens::kMostExternalScreens; ++number) {
        EXPECT_TRUE(signals_->screens.connect(kMonitor));
    }
    EXPECT_FALSE(signals_->screens.connect(kMonitor));
    EXPECT_EQ(platform_.screens->screens().size(), 1 + ZRMHostScreens::kMostExternalScreens);
}

TEST_F(ZRMHostFedScreensTest, EachChangeOfWhatIsCapturedIsNotifiedOnce) {
    int changes = 0;
    const auto subscription = count(ZRMApplicationNotification::ScreenCapturedDidChange, changes);
    const auto changesAfter = [&](auto change) {
        change(signals_->screens);
        machine_.runUntilIdle();
        return changes;
    };
    EXPECT_EQ(changesAfter([](auto& screens) { screens.setCaptured(true); }), 1);
    EXPECT_EQ(changesAfter([](auto& screens) { screens.setCaptured(true); }), 1);
    EXPECT_EQ(changesAfter([](auto& screens) { screens.setCaptured(false); }), 2);
    EXPECT_EQ(changesAfter([](auto& screens) { screens.setMirrored(true); }), 3);
    EXPECT_EQ(changesAfter([](auto& screens) { screens.connect(kMonitor); }), 3);
    EXPECT_EQ(changesAfter([](auto& screens) { screens.disconnect(); }), 4);
    EXPECT_EQ(changesAfter([](auto& screens) { screens.disconnect(); }), 4);
    EXPECT_EQ(changesAfter([](auto& screens) { screens.forget(); }), 5);
    EXPECT_EQ(changesAfter([](auto& screens) { screens.forget(); }), 5);
}

TEST_F(ZRMHostFedScreensTest, AScreenThatIsConnectedIsNotifiedOnceItCanBeSeen) {
    std::vector<std::size_t> seen;
    const auto subscription = platform_.notifications->observe(
        ZRMApplicationNotification::ScreenDidConnect,
        [&] { seen.push_back(platform_.screens->screens().size()); });
    signals_->screens.connect(kMonitor);
    machine_.runUntilIdle();
    EXPECT_THAT(seen, ElementsAre(2u));
}

TEST_F(ZRMHostFedNetworkTest, TheHostSaysWhichWirelessNetworkThereIs) {
    EXPECT_EQ(platform_.wifi->currentNetwork(), machine_.wifi().network);
    signals_->wifi.tell(ZRMWifiNetwork{"Lobby", "00:11:22:33:44:55"});
    EXPECT_THAT(platform_.wifi->currentNetwork(),
                Optional(ZRMWifiNetwork{"Lobby", "00:11:22:33:44:55"}));
    signals_->wifi.tell(std::nullopt);
    EXPECT_EQ(platform_.wifi->currentNetwork(), std::nullopt);
    signals_->wifi.forget();
    EXPECT_EQ(platform_.wifi->currentNetwork(), machine_.wifi().network);
}

TEST_F(ZRMHostFedNetworkTest, TheHostSaysWhichCarriersThereAre) {
    EXPECT_EQ(platform_.carriers->carriers(), machine_.carriers().list);
    signals_->carriers.tell({{.name = "One"}, {.name = "Two"}});
    EXPECT_THAT(platform_.carriers->carriers(),
                ElementsAre(ZRMCarrier{.name = "One"}, ZRMCarrier{.name = "Two"}));
    signals_->carriers.tell({});
    EXPECT_THAT(platform_.carriers->carriers(), IsEmpty());
}

TEST_F(ZRMHostFedNetworkTest, TheHostsTunnelsComeAfterTheMachinesInterfaces) {
    machine_.networkInterfaces().scoped = {{"en0", "utun1"}};
    EXPECT_THAT(platform_.networkInterfaces->scopedInterfaceNames(),
                Optional(ElementsAre("en0", "utun1")));
    signals_->tunnels.tell({"utun1", "ppp0"});
    EXPECT_THAT(platform_.networkInterfaces->scopedInterfaceNames(),
                Optional(ElementsAre("en0", "utun1", "ppp0")));
    signals_->tunnels.tell({});
    EXPECT_THAT(platform_.networkInterfaces->scopedInterfaceNames(),
                Optional(ElementsAre("en0", "utun1")));
}

TEST_F(ZRMHostFedNetworkTest, WhereTheMachineListsNothingTheHostsTunnelsAreAlone) {
    machine_.networkInterfaces().scoped = std::nullopt;
    EXPECT_EQ(platform_.networkInterfaces->scopedInterfaceNames(), std::nullopt);
    signals_->tunnels.tell({"ppp0"});
    EXPECT_THAT(platform_.networkInterfaces->scopedInterfaceNames(), Optional(ElementsAre("ppp0")));
}

TEST_F(ZRMHostFedNetworkTest, AddressesAreTheMachines) {
    EXPECT_EQ(platform_.networkInterfaces->addresses(), machine_.networkInterfaces().list);
    machine_.networkInterfaces().list = std::nullopt;
    EXPECT_EQ(platform_.networkInterfaces->addresses(), std::nullopt);
}

TEST_F(ZRMHostFedPowerTest, TheHostSaysHowTheBatteryIs) {
    platform_.power->setBatteryMonitoringEnabled(true);
    EXPECT_EQ(platform_.power->batteryLevel(), machine_.power().level);
    EXPECT_EQ(platform_.power->batteryState(), machine_.power().state);
    signals_->battery.tell({0.25F, ZRMBatteryState::Unplugged});
    EXPECT_EQ(platform_.power->batteryLevel(), 0.25F);
    EXPECT_EQ(platform_.power->batteryState(), ZRMBatteryState::Unplugged);
    signals_->battery.forget();
    EXPECT_EQ(platform_.power->batteryLevel(), machine_.power().level);
}

TEST_F(ZRMHostFedPowerTest, TheBatteryIsKnownOnlyWhileItIsMonitored) {
    signals_->battery.tell({0.25F, ZRMBatteryState::Full});
    EXPECT_EQ(platform_.power->batteryLevel(), -1.0F);
    EXPECT_EQ(platform_.power->batteryState(), ZRMBatteryState::Unknown);
    platform_.power->setBatteryMonitoringEnabled(true);
    EXPECT_TRUE(machine_.power().monitoring);
    EXPECT_EQ(platform_.power->batteryLevel(), 0.25F);
    EXPECT_EQ(platform_.power->batteryState(), ZRMBatteryState::Full);
}

TEST_F(ZRMHostFedPowerTest, TheHostSaysWhetherPowerIsSaved) {
    machine_.power().lowPowerMode = true;
    EXPECT_TRUE(platform_.power->isLowPowerModeEnabled());
    signals_->lowPowerMode.tell(false);
    EXPECT_FALSE(platform_.power->isLowPowerModeEnabled());
}

TEST_F(ZRMHostFedDeviceTest, TheHostSaysWhatTheDeviceIsCalled) {
    const auto machine = machine_.platform()->device;
    EXPECT_EQ(platform_.device->name(), machine->name());
    EXPECT_EQ(platform_.device->localizedModel(), machine->localizedModel());
    EXPECT_EQ(platform_.device->identifierForVendor(), machine->identifierForVendor());
    signals_->deviceName.tell("Anna's phone");
    signals_->localizedModel.tell("Telefon");
    signals_->identifierForVendor.tell("6F9619FF-8B86-D011-B42D-00C04FC964FF");
    EXPECT_EQ(platform_.device->name(), "Anna's phone");
    EXPECT_EQ(platform_.device->localizedModel(), "Telefon");
    EXPECT_EQ(platform_.device->identifierForVendor(), "6F9619FF-8B86-D011-B42D-00C04FC964FF");
}

TEST_F(ZRMHostFedDeviceTest, TheRestIsTheMachines) {
    const auto machine = machine_.platform()->device;
    EXPECT_EQ(platform_.device->systemName(), machine->systemName());
    EXPECT_EQ(platform_.device->systemVersion(), machine->systemVersion());
    EXPECT_EQ(platform_.device->isMultitaskingSupported(), machine->isMultitaskingSupported());
    EXPECT_EQ(platform_.device->hardwareIdentifier(), machine->hardwareIdentifier());
}

TEST_F(ZRMHostFedPorts, AllThatTheMachineKnowsItselfIsTakenBackAtOnce) {
    const auto machine = machine_.platform();
    signals_->screens.setMirrored(true);
    signals_->wifi.tell(std::nullopt);
    signals_->carriers.tell({});
    signals_->tunnels.tell({"ppp0"});
    signals_->lowPowerMode.tell(!machine->power->isLowPowerModeEnabled());
    signals_->deviceName.tell("phone");
    signals_->localizedModel.tell("model");
    signals_->identifierForVendor.tell("identifier");
    signals_->battery.tell({0, ZRMBatteryState::Full});
    signals_->location.setServicesEnabled(true);
    signals_->forgetMachine();
    EXPECT_EQ(platform_.screens->screens(), machine->screens->screens());
    EXPECT_EQ(platform_.wifi->currentNetwork(), machine->wifi->currentNetwork());
    EXPECT_EQ(platform_.carriers->carriers(), machine->carriers->carriers());
    EXPECT_EQ(platform_.networkInterfaces->scopedInterfaceNames(),
              machine->networkInterfaces->scopedInterfaceNames());
    EXPECT_EQ(platform_.power->isLowPowerModeEnabled(), machine->power->isLowPowerModeEnabled());
    EXPECT_EQ(platform_.device->name(), machine->device->name());
    EXPECT_EQ(platform_.device->localizedModel(), machine->device->localizedModel());
    EXPECT_EQ(platform_.device->identifierForVendor(), machine->device->identifierForVendor());
    platform_.power->setBatteryMonitoringEnabled(true);
    EXPECT_EQ(platform_.power->batteryLevel(), machine->power->batteryLevel());
    EXPECT_TRUE(platform_.locationServices->locationServicesEnabled());
}
