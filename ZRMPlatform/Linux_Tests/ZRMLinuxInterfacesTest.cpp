#include <gtest/gtest.h>
#include <net/if.h>

#include "ZRMPlatform/Linux/ZRMLinuxInterfaces.h"
#include "ZRMPlatform/Linux/ZRMLinuxLinkLayer.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

// A device tree as the kernel would show it.
class ZRMLinuxLinkLayerTest : public testing::Test {
  protected:
    void add(const std::string& name, int index, bool isPhysical,
             const std::string& address = "02:00:00:00:00:01", const std::string& event = "",
             int type = 1) {
        directory_.writeFile(name + "/ifindex", std::to_string(index) + "\n");
        directory_.writeFile(name + "/type", std::to_string(type) + "\n");
        directory_.writeFile(name + "/address", address + "\n");
        directory_.writeFile(name + "/uevent", "INTERFACE=" + name + "\n" + event);
        if (isPhysical) {
            directory_.writeFile(name + "/device/vendor", "");
        }
    }
    void addLoopback() { add("lo", 1, false, "00:00:00:00:00:00", "", 772); }
    ZRMLinuxLinkLayer layer() { return ZRMLinuxLinkLayer(ZRMLinuxInterfaces(directory_.path())); }

    ZRMTestDirectory directory_;
};

}  // namespace

TEST_F(ZRMLinuxLinkLayerTest, En0IsTheFirstInterfaceWithADevice) {
    addLoopback();
    add("br0", 2, false);
    add("wlan0", 12, true);
    add("eth0", 9, true);
    EXPECT_EQ(layer().interfaceIndex("en0"), 9U);
}

TEST_F(ZRMLinuxLinkLayerTest, WithoutADeviceEn0IsTheFirstThatIsNoLoopback) {
    addLoopback();
    add("veth1", 4, false);
    add("veth0", 7, false);
    EXPECT_EQ(layer().interfaceIndex("en0"), 4U);
}

TEST_F(ZRMLinuxLinkLayerTest, PdpIp0IsTheFirstModemAndNeverEn0) {
    addLoopback();
    add("wwan0", 2, true);
    add("usb0", 3, true, "02:00:00:00:00:02", "DEVTYPE=wwan\n");
    EXPECT_EQ(layer().interfaceIndex("pdp_ip0"), 2U);
    EXPECT_EQ(layer().interfaceIndex("en0"), 0U);
    add("eth0", 5, true);
    EXPECT_EQ(layer().interfaceIndex("en0"), 5U);
}

TEST_F(ZRMLinuxLinkLayerTest, AMissingInterfaceHasNoIndex) {
    addLoopback();
    EXPECT_EQ(layer().interfaceIndex("en0"), 0U);
    EXPECT_EQ(layer().interfaceIndex("pdp_ip0"), 0U);
    EXPECT_EQ(layer().interfaceIndex("eth9"), 0U);
    EXPECT_EQ(layer().interfaceIndex("lo"), 1U);
    EXPECT_EQ(ZRMLinuxLinkLayer(ZRMLinuxInterfaces(directory_.below("none"))).interfaceIndex("en0"),
              0U);
}

TEST_F(ZRMLinuxLinkLayerTest, TheRecordIsNameLengthNameAndAddress) {
    add("eth0", 3, true, "0a:1B:2c:3d:4e:ff");
    ASSERT_EQ(layer().recordLength(3), 11U);
    std::vector<std::uint8_t> record(12, 0xEE);
    EXPECT_TRUE(layer().readRecord(3, record));
    EXPECT_EQ(record, (std::vector<std::uint8_t>{4, 'e', 't', 'h', '0', 0x0a, 0x1b, 0x2c, 0x3d,
                                                 0x4e, 0xff, 0xEE}));
}

TEST_F(ZRMLinuxLinkLayerTest, TooLittleRoomIsRefused) {
    add("eth0", 3, true);
    std::vector<std::uint8_t> record(10, 0xEE);
    EXPECT_FALSE(layer().readRecord(3, record));
    EXPECT_EQ(record, std::vector<std::uint8_t>(10, 0xEE));
}

TEST_F(ZRMLinuxLinkLayerTest, AnInterfaceWithoutASixByteAddressHasNoRecord) {
    add("tun0", 3, false, "");
    add("ib0", 4, true, "80:00:00:48:fe:80:00:00");
    add("bad0", 5, true, "zz:00:00:00:00:01");
    add("odd0", 6, true, "00-00-00-00-00-01");
    std::vector<std::uint8_t> record(64);
    for (const std::uint32_t index : {3U, 4U, 5U, 6U, 99U}) {
        EXPECT_EQ(layer().recordLength(index), std::nullopt);
        EXPECT_FALSE(layer().readRecord(index, record));
    }
}

TEST_F(ZRMLinuxLinkLayerTest, EntriesWithoutAnIndexAreLeftOut) {
    directory_.writeFile("bonding_masters", "");
    directory_.writeFile("broken/ifindex", "x");
    add("eth0", 3, true);
    EXPECT_EQ(ZRMLinuxInterfaces(directory_.path()).all().size(), 1U);
}

TEST_F(ZRMLinuxLinkLayerTest, AWirelessInterfaceIsKnownByItsKind) {
    add("eth0", 3, true);
    add("wlp3s0", 4, true, "02:00:00:00:00:02", "DEVTYPE=wlan\nIFINDEX=4\n");
    const ZRMLinuxInterfaces interfaces(directory_.path());
    EXPECT_FALSE(interfaces.withIndex(3)->isWireless);
    EXPECT_TRUE(interfaces.withIndex(4)->isWireless);
    EXPECT_FALSE(interfaces.withIndex(4)->isCellular);
}

TEST(ZRMLinuxInterfaces, TheMachinesOwnListHoldsItsLoopback) {
    const auto loopback = ZRMLinuxInterfaces().withIndex(if_nametoindex("lo"));
    ASSERT_TRUE(loopback.has_value());
    EXPECT_EQ(loopback->name, "lo");
    EXPECT_TRUE(loopback->isLoopback);
    EXPECT_FALSE(loopback->isPhysical);
    EXPECT_FALSE(loopback->isCellular);
}
