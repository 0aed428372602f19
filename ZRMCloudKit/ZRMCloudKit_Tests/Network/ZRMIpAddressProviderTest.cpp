#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Network/ZRMIpAddressProvider.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::IsEmpty;

ZRMData ipV6EndingWith(std::uint8_t last, std::uint8_t first = 0x20) {
    ZRMData data(16);
    data.front() = first;
    data.back() = last;
    return data;
}

class ZRMCurrentIpAddress : public testing::Test {
  protected:
    void setAddresses(std::vector<ZRMInterfaceAddress> addresses) {
        device_.networkInterfaces().list = std::move(addresses);
    }
    [[nodiscard]] std::optional<ZRMData> v4() const {
        const auto address = provider_.currentIpAddressV4();
        return address ? std::optional(address->dataValue()) : std::nullopt;
    }
    [[nodiscard]] std::optional<ZRMData> v6() const {
        const auto address = provider_.currentIpAddressV6();
        return address ? std::optional(address->dataValue()) : std::nullopt;
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMRecordedLog log_;
    ZRMIpAddressProvider provider_{device_.platform()->networkInterfaces};
};

TEST_F(ZRMCurrentIpAddress, IsTheWirelessOneBeforeTheCellularOneInEitherOrder) {
    const ZRMInterfaceAddress wifi{"en0", {192, 168, 1, 7}};
    const ZRMInterfaceAddress wifiV6{"en0", ipV6EndingWith(7)};
    const ZRMInterfaceAddress cellular{"pdp_ip0", {10, 0, 0, 7}};
    const ZRMInterfaceAddress cellularV6{"pdp_ip0", ipV6EndingWith(8)};
    setAddresses({cellular, cellularV6, wifi, wifiV6});
    EXPECT_EQ(v4(), wifi.address);
    EXPECT_EQ(v6(), wifiV6.address);
    setAddresses({wifiV6, wifi, cellularV6, cellular});
    EXPECT_EQ(v4(), wifi.address);
    EXPECT_EQ(v6(), wifiV6.address);
}

TEST_F(ZRMCurrentIpAddress, IsTheFirstWirelessOne) {
    setAddresses({{"en0", {1, 1, 1, 1}}, {"en0", {2, 2, 2, 2}}});
    EXPECT_EQ(v4(), (ZRMData{1, 1, 1, 1}));
}

TEST_F(ZRMCurrentIpAddress, IsTheLastCellularOneOfItsFamily) {
    setAddresses({{"pdp_ip0", {10, 0, 0, 1}},
                  {"pdp_ip0", ipV6EndingWith(1)},
                  {"pdp_ip0", {10, 0, 0, 2}},
                  {"pdp_ip0", ipV6EndingWith(2)},
                  {"pdp_ip1", {10, 0, 0, 3}}});
    EXPECT_EQ(v4(), (ZRMData{10, 0, 0, 2}));
    EXPECT_EQ(v6(), ipV6EndingWith(2));
}

TEST_F(ZRMCurrentIpAddress, SkipsEmptyAddresses) {
    setAddresses({{"en0", {0, 0, 0, 0}},
                  {"en0", ZRMData(16)},
                  {"pdp_ip0", {10, 0, 0, 1}},
                  {"pdp_ip0", ipV6EndingWith(1)},
                  {"pdp_ip0", {0, 0, 0, 0}},
                  {"pdp_ip0", ZRMData(16)}});
    EXPECT_EQ(v4(), (ZRMData{10, 0, 0, 1}));
    EXPECT_EQ(v6(), ipV6EndingWith(1));
}

TEST_F(ZRMCurrentIpAddress, MayBeLinkLocal) {
    auto linkLocal = ipV6EndingWith(1, 0xFE);
    linkLocal[1] = 0x80;
    setAddresses({{"en0", linkLocal}});
    EXPECT_EQ(v6(), linkLocal);
    EXPECT_EQ(v4(), std::nullopt);
}

TEST_F(ZRMCurrentIpAddress, IsAbsentOnOtherInterfaces) {
    setAddresses({{"lo0", {127, 0, 0, 1}}, {"en1", {10, 0, 0, 1}}, {"utun0", ipV6EndingWith(1)}});
    EXPECT_EQ(v4(), std::nullopt);
    EXPECT_EQ(v6(), std::nullopt);
    EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_F(ZRMCurrentIpAddress, IsAbsentWhenTheInterfacesCannotBeListed) {
    device_.networkInterfaces().list = std::nullopt;
    EXPECT_EQ(v4(), std::nullopt);
    EXPECT_EQ(v6(), std::nullopt);
}

TEST_F(ZRMCurrentIpAddress, IgnoresAnAddressOfNeitherLength) {
    setAddresses({{"en0", {1, 2, 3}}, {"en0", {}}});
    EXPECT_EQ(v4(), std::nullopt);
    EXPECT_EQ(v6(), std::nullopt);
}

TEST_F(ZRMCurrentIpAddress, IsAskedForEachTime) {
    EXPECT_EQ(v4(), (ZRMData{192, 168, 1, 20}));
    setAddresses({{"en0", {9, 9, 9, 9}}});
    EXPECT_EQ(v4(), (ZRMData{9, 9, 9, 9}));
}

TEST(ZRMInterfaceAddressText, IsEmptyWhenAbsentOrAllZeros) {
    EXPECT_TRUE(ZRMIpAddressProvider::isEmptyIpAddress(std::nullopt));
    EXPECT_TRUE(ZRMIpAddressProvider::isEmptyIpAddress("0.0.0.0"));
    EXPECT_TRUE(ZRMIpAddressProvider::isEmptyIpAddress("::"));
    EXPECT_FALSE(ZRMIpAddressProvider::isEmptyIpAddress("0.0.0.1"));
    EXPECT_FALSE(ZRMIpAddressProvider::isEmptyIpAddress("::1"));
    EXPECT_FALSE(ZRMIpAddressProvider::isEmptyIpAddress(""));
}

TEST(ZRMInterfaceAddressText, IsWrittenFromAnInterfacesAddress) {
    const auto text = &ZRMIpAddressProvider::ipAddressStringFromInterface;
    EXPECT_EQ(text({"en0", {192, 168, 0, 1}}), "192.168.0.1");
    EXPECT_EQ(text({"en0", {255, 255, 255, 255}}), "255.255.255.255");
    EXPECT_EQ(text({"en0", ipV6EndingWith(1)}), "2000::1");
    EXPECT_EQ(text({"en0", ZRMData(16, 0xFF)}), "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff");
    EXPECT_EQ(text({"en0", {1, 2, 3}}), std::nullopt);
}

}  // namespace
