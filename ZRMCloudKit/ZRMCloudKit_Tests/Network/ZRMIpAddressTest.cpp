#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Network/ZRMIpAddress.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const ZRMData kLinkLocal = {0xFE, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};

class ZRMIpAddressText : public testing::Test {
  protected:
    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMRecordedLog log_;
};

TEST_F(ZRMIpAddressText, OfTheFourthVersionYieldsFourBytes) {
    const auto address = ZRMIpAddress::ipAddressWithString("192.168.0.1");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->type(), ZRMIpAddressType::IPv4);
    EXPECT_EQ(address->dataValue(), (ZRMData{192, 168, 0, 1}));
    EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_F(ZRMIpAddressText, OfTheSixthVersionYieldsSixteenBytes) {
    const auto address = ZRMIpAddress::ipAddressWithString("fe80::1");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->type(), ZRMIpAddressType::IPv6);
    EXPECT_EQ(address->dataValue(), kLinkLocal);
    EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_F(ZRMIpAddressText, OfAnIpV4AddressWrittenTheIpV6WayIsIpV6) {
    EXPECT_EQ(ZRMIpAddress::typeOfIpAddressString("::ffff:10.0.0.1"), ZRMIpAddressType::IPv6);
    const auto address = ZRMIpAddress::ipAddressWithString("::ffff:10.0.0.1");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->type(), ZRMIpAddressType::IPv6);
    EXPECT_EQ(address->dataValue(),
              (ZRMData{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 10, 0, 0, 1}));
}

TEST_F(ZRMIpAddressText, ThatIsNoAddressYieldsNothingAndAnErrorLine) {
    const std::vector<std::string> texts{"localhost",   "",          "1.2.3",     "256.0.0.1",
                                         " 10.0.0.1",   "12345::",   "1:2:3:4:5", "fe80::1%en0",
                                         "10.0.0.1/24", "1.2.3.4:80"};
    for (const auto& text : texts) {
        const ZRMRecordedLog log;
        EXPECT_FALSE(ZRMIpAddress::ipAddressWithString(text)) << text;
        EXPECT_THAT(log.errors(), ElementsAre("Incorrect address string " + text +
                                              ". For example \"192.168.0.1\"."));
        EXPECT_THAT(log.verboses(), IsEmpty());
    }
}

TEST_F(ZRMIpAddressText, WithAZeroByteIsNoAddress) {
    using namespace std::string_literals;
    EXPECT_FALSE(ZRMIpAddress::dataFromIpV4String("10.0.0.1\0x"s));
    EXPECT_FALSE(ZRMIpAddress::dataFromIpV6String("fe80::1\0"s));
}

TEST(ZRMIpAddressTypes, AreToldFromATextByItsColonBeforeItsDot) {
    EXPECT_EQ(ZRMIpAddress::typeOfIpAddressString("any.thing"), ZRMIpAddressType::IPv4);
    EXPECT_EQ(ZRMIpAddress::typeOfIpAddressString("a.b:c"), ZRMIpAddressType::IPv6);
    EXPECT_EQ(ZRMIpAddress::typeOfIpAddressString("localhost"), ZRMIpAddressType::Unknown);
    EXPECT_EQ(ZRMIpAddress::typeOfIpAddressString(""), ZRMIpAddressType::Unknown);
}

TEST(ZRMIpAddressTypes, AreToldFromTheLengthOfTheBytes) {
    EXPECT_EQ(ZRMIpAddress::typeOfIpAddressData(ZRMData(4)), ZRMIpAddressType::IPv4);
    EXPECT_EQ(ZRMIpAddress::typeOfIpAddressData(ZRMData(16)), ZRMIpAddressType::IPv6);
    for (const std::size_t length : {0U, 3U, 5U, 15U, 17U}) {
        EXPECT_EQ(ZRMIpAddress::typeOfIpAddressData(ZRMData(length)), ZRMIpAddressType::Unknown);
    }
}

TEST(ZRMIpAddressTypes, HaveTheirNumbers) {
    EXPECT_EQ(static_cast<std::uint64_t>(ZRMIpAddressType::Unknown), 0U);
    EXPECT_EQ(static_cast<std::uint64_t>(ZRMIpAddressType::IPv4), 1U);
    EXPECT_EQ(static_cast<std::uint64_t>(ZRMIpAddressType::IPv6), 2U);
}

TEST(ZRMIpAddressData, ComesFromATextOfThatVersionOnly) {
    EXPECT_EQ(ZRMIpAddress::dataFromIpV4String("1.2.3.4"), (ZRMData{1, 2, 3, 4}));
    EXPECT_EQ(ZRMIpAddress::dataFromIpV4String("fe80::1"), std::nullopt);
    EXPECT_EQ(ZRMIpAddress::dataFromIpV6String("fe80::1"), kLinkLocal);
    EXPECT_EQ(ZRMIpAddress::dataFromIpV6String("1.2.3.4"), std::nullopt);
    EXPECT_EQ(ZRMIpAddress::dataFromIpAddressString("1.2.3.4"), (ZRMData{1, 2, 3, 4}));
    EXPECT_EQ(ZRMIpAddress::dataFromIpAddressString("fe80::1"), kLinkLocal);
    EXPECT_EQ(ZRMIpAddress::dataFromIpAddressString("localhost"), std::nullopt);
}

}  // namespace
