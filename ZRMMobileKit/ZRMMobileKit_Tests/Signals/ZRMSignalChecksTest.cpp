#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "ZRMMobileKit/ZRMDeviceSignals.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Signals/ZRMSignalChecks.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
const std::string kWithNul("a\0b", 3);
const std::string kBytesThatAreNoText = "caf\xE9";

}  // namespace

TEST(ZRMSignalChecks, ATextIsShortUtf8WithoutNul) {
    for (const auto* text : {"", "Anna's \"phone\"", "line\nfeed\x01", "Gr\xC3\xBC\xC3\x9F"}) {
        EXPECT_TRUE(zrm_isSignalText(text)) << text;
    }
    for (const auto* text : {"\xFF", "\xC0\x80", "\xED\xA0\x80", "caf\xE9"}) {
        EXPECT_FALSE(zrm_isSignalText(text)) << text;
    }
    EXPECT_FALSE(zrm_isSignalText(kWithNul));
    EXPECT_TRUE(zrm_isSignalText(std::string(kZRMMaxSignalLength, 'a')));
    EXPECT_FALSE(zrm_isSignalText(std::string(kZRMMaxSignalLength + 1, 'a')));
}

TEST(ZRMSignalChecks, ACallHasAUuid) {
    EXPECT_TRUE(zrm_isSignalCall({.uuid = "6F9619FF-8B86-D011-B42D-00C04FC964FF"}));
    EXPECT_FALSE(zrm_isSignalCall({.uuid = std::nullopt}));
    EXPECT_FALSE(zrm_isSignalCall({.uuid = ""}));
    EXPECT_FALSE(zrm_isSignalCall({.uuid = kBytesThatAreNoText}));
    EXPECT_FALSE(zrm_isSignalCall({.uuid = kWithNul}));
}

TEST(ZRMSignalChecks, AScreenHasFiniteSizesAndScales) {
    EXPECT_TRUE(zrm_isSignalScreen({}));
    EXPECT_TRUE(zrm_isSignalScreen({.width = 390, .height = 844, .scale = 3, .nativeScale = 3}));
    for (const double value : {-1.0, kNaN, kInfinity}) {
        EXPECT_FALSE(zrm_isSignalScreen({.width = value})) << value;
        EXPECT_FALSE(zrm_isSignalScreen({.height = value})) << value;
        EXPECT_FALSE(zrm_isSignalScreen({.scale = value})) << value;
        EXPECT_FALSE(zrm_isSignalScreen({.nativeScale = value})) << value;
    }
    EXPECT_FALSE(zrm_isSignalScreen({.scale = 0}));
    EXPECT_FALSE(zrm_isSignalScreen({.nativeScale = 0}));
}

TEST(ZRMSignalChecks, ALocationIsOnTheEarth) {
    EXPECT_TRUE(zrm_isSignalLocation({90, 180, 0}));
    EXPECT_TRUE(zrm_isSignalLocation({-90, -180, 1e6}));
    for (const double latitude : {90.1, -90.1, kNaN, kInfinity}) {
        EXPECT_FALSE(zrm_isSignalLocation({latitude, 0, 0})) << latitude;
    }
    for (const double longitude : {180.1, -180.1, kNaN, -kInfinity}) {
        EXPECT_FALSE(zrm_isSignalLocation({0, longitude, 0})) << longitude;
    }
    for (const double accuracy : {-1.0, kNaN, kInfinity}) {
        EXPECT_FALSE(zrm_isSignalLocation({0, 0, accuracy})) << accuracy;
    }
}

TEST(ZRMSignalChecks, ANetworkHasTextsOrNone) {
    EXPECT_TRUE(zrm_isSignalNetwork({}));
    EXPECT_TRUE(zrm_isSignalNetwork({"Caf\xC3\xA9", "a4:5e:60:01:02:03"}));
    EXPECT_FALSE(zrm_isSignalNetwork({kBytesThatAreNoText, std::nullopt}));
    EXPECT_FALSE(zrm_isSignalNetwork({"Lobby", kWithNul}));
}

TEST(ZRMSignalChecks, CarriersAreFewAndHaveTextsOrNone) {
    EXPECT_TRUE(zrm_areSignalCarriers({}));
    EXPECT_TRUE(zrm_areSignalCarriers({{true, "at", "232", "01", "Alpine Mobile"}, {}}));
    EXPECT_FALSE(zrm_areSignalCarriers({{}, {.isoCountryCode = kBytesThatAreNoText}}));
    EXPECT_FALSE(zrm_areSignalCarriers({{.mobileCountryCode = kBytesThatAreNoText}}));
    EXPECT_FALSE(zrm_areSignalCarriers({{.mobileNetworkCode = kBytesThatAreNoText}}));
    EXPECT_FALSE(zrm_areSignalCarriers({{.name = kBytesThatAreNoText}}));
    EXPECT_TRUE(zrm_areSignalCarriers(std::vector<ZRMCarrier>(kZRMMaxSignalCarriers)));
    EXPECT_FALSE(zrm_areSignalCarriers(std::vector<ZRMCarrier>(kZRMMaxSignalCarriers + 1)));
}

TEST(ZRMSignalChecks, TunnelsAreFewAndHaveNames) {
    EXPECT_TRUE(zrm_areSignalTunnels({}));
    EXPECT_TRUE(zrm_areSignalTunnels({"utun0", "ppp0"}));
    EXPECT_FALSE(zrm_areSignalTunnels({"utun0", ""}));
    EXPECT_FALSE(zrm_areSignalTunnels({kWithNul}));
    EXPECT_TRUE(zrm_areSignalTunnels(std::vector<std::string>(kZRMMaxSignalTunnels, "tap0")));
    EXPECT_FALSE(zrm_areSignalTunnels(std::vector<std::string>(kZRMMaxSignalTunnels + 1, "tap0")));
}
