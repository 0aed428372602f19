#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Network/ZRMVPNDetector.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ZRMVpn : public testing::Test {
  protected:
    void setInterfaces(std::optional<std::vector<std::string>> names) {
        device_.networkInterfaces().scoped = std::move(names);
    }
    std::shared_ptr<ZRMVPNDetector> makeDetector() {
        return std::make_shared<ZRMVPNDetector>(device_.platform()->networkInterfaces,
                                                device_.platform()->notifications);
    }
    std::shared_ptr<ZRMVPNDetector> makeStartedDetector() {
        auto detector = makeDetector();
        detector->startDetection([this](bool connected) {
            EXPECT_TRUE(device_.platform()->executor->mainQueue()->isCurrent());
            reports_.push_back(connected);
        });
        return detector;
    }
    void enterForeground() {
        device_.notifications().post(ZRMApplicationNotification::WillEnterForeground);
        device_.runUntilIdle();
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    std::vector<bool> reports_;
};

TEST_F(ZRMVpn, IsToldByAMarkerAnywhereInAnInterfacesName) {
    for (const auto* name : {"tap0", "utun2", "tun", "ppp0", "ipsec1", "xtapx", "en0-ppp"}) {
        setInterfaces({{"en0", name}});
        EXPECT_TRUE(makeDetector()->checkVpnConnection()) << name;
    }
}

TEST_F(ZRMVpn, IsNotToldByOtherNamesNorByOtherCase) {
    for (const auto* name : {"en0", "UTUN2", "Tap0", "PPP0", "IPSec1", "pp", "tu", ""}) {
        setInterfaces({{"en0", name}});
        EXPECT_FALSE(makeDetector()->checkVpnConnection()) << name;
    }
}

TEST_F(ZRMVpn, IsNotConnectedWithoutInterfacesOrWhenTheyCannotBeListed) {
    setInterfaces(std::vector<std::string>{});
    EXPECT_FALSE(makeDetector()->checkVpnConnection());
    setInterfaces(std::nullopt);
    EXPECT_FALSE(makeDetector()->checkVpnConnection());
}

TEST_F(ZRMVpn, IsCheckedAtConstructionAndNotAgainBeforeTheForeground) {
    setInterfaces({{"en0", "utun2"}});
    const auto detector = makeDetector();
    EXPECT_TRUE(detector->isVpnConnected());
    setInterfaces({{"en0"}});
    EXPECT_TRUE(detector->isVpnConnected());
}

TEST_F(ZRMVpn, IsNotReportedByTheStartItself) {
    setInterfaces({{"utun2"}});
    const auto detector = makeStartedDetector();
    device_.runUntilIdle();
    EXPECT_THAT(reports_, IsEmpty());
}

TEST_F(ZRMVpn, IsReportedWhenTheApplicationComesBackAndItChanged) {
    const auto detector = makeStartedDetector();
    setInterfaces({{"en0", "utun2"}});
    device_.runUntilIdle();
    EXPECT_THAT(reports_, IsEmpty());
    enterForeground();
    EXPECT_THAT(reports_, ElementsAre(true));
    EXPECT_TRUE(detector->isVpnConnected());
    setInterfaces({{"en0"}});
    enterForeground();
    EXPECT_THAT(reports_, ElementsAre(true, false));
    EXPECT_FALSE(detector->isVpnConnected());
}

TEST_F(ZRMVpn, IsNotReportedWhenItIsAsBefore) {
    const auto detector = makeStartedDetector();
    enterForeground();
    setInterfaces({{"utun2"}});
    enterForeground();
    setInterfaces({{"ppp0"}});
    enterForeground();
    EXPECT_THAT(reports_, ElementsAre(true));
}

TEST_F(ZRMVpn, IsNotReportedForOtherNotifications) {
    const auto detector = makeStartedDetector();
    setInterfaces({{"utun2"}});
    for (const auto other : {ZRMApplicationNotification::ScreenDidConnect,
                             ZRMApplicationNotification::ScreenCapturedDidChange,
                             ZRMApplicationNotification::UserDidTakeScreenshot}) {
        device_.notifications().post(other);
    }
    device_.runUntilIdle();
    EXPECT_THAT(reports_, IsEmpty());
}

TEST_F(ZRMVpn, ChangesItsStateWithoutAnybodyToTell) {
    const auto detector = makeDetector();
    setInterfaces({{"utun2"}});
    detector->performVpnConnectionCheck();
    EXPECT_TRUE(detector->isVpnConnected());
    EXPECT_THAT(reports_, IsEmpty());
}

TEST_F(ZRMVpn, IsNotReportedOnceTheDetectorIsGone) {
    auto detector = makeStartedDetector();
    setInterfaces({{"utun2"}});
    device_.notifications().post(ZRMApplicationNotification::WillEnterForeground);
    detector.reset();
    device_.runUntilIdle();
    EXPECT_THAT(reports_, IsEmpty());
}

}  // namespace
