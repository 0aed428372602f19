#include <limits>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/UIDevice/UIDevice+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

// A link layer that answers as far as it is told to.
class ScriptedLinkLayer final : public ZRMLinkLayer {
  public:
    std::uint32_t index = 4;
    ZRMData record = {3, 'e', 'n', '0', 0x02, 0x0A, 0xB0, 0x00, 0xFF, 0x10};
    bool tellsLength = true;
    std::optional<std::size_t> claimedLength;
    bool readable = true;

    [[nodiscard]] std::uint32_t interfaceIndex(const std::string& name) const override {
        return name == "en0" ? index : 0;
    }
    [[nodiscard]] std::optional<std::size_t> recordLength(std::uint32_t asked) const override {
        return tellsLength && asked == index ? std::optional(claimedLength.value_or(record.size()))
                                             : std::nullopt;
    }
    bool readRecord(std::uint32_t asked, std::span<std::uint8_t> buffer) const override {
        if (!readable || asked != index) {
            return false;
        }
        std::copy_n(record.begin(), std::min(record.size(), buffer.size()), buffer.begin());
        return true;
    }
};

void expectFailure(const ScriptedLinkLayer& linkLayer, const char* message) {
    ZRMSimulatedDevice device;
    const ZRMScopedPlatform installed(device);
    const ZRMRecordedLog log;
    EXPECT_EQ(zrm_deviceMacAddress(linkLayer), std::nullopt);
    EXPECT_EQ(log.errors(), std::vector<std::string>{std::string("Error: ") + message});
}

}  // namespace

TEST(ZRMDeviceMacAddress, FollowsTheNameInUpperCaseHexadecimal) {
    const ScriptedLinkLayer linkLayer;
    EXPECT_EQ(zrm_deviceMacAddress(linkLayer), "02:0A:B0:00:FF:10");
}

TEST(ZRMDeviceMacAddress, SkipsANameOfAnyLength) {
    ScriptedLinkLayer linkLayer;
    linkLayer.record = {0, 1, 2, 3, 4, 5, 6};
    EXPECT_EQ(zrm_deviceMacAddress(linkLayer), "01:02:03:04:05:06");
    linkLayer.record = {5, 'e', 'n', 'p', '3', 's', 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF, 0x77};
    EXPECT_EQ(zrm_deviceMacAddress(linkLayer), "AA:BB:CC:DD:EE:FF");
}

TEST(ZRMDeviceMacAddress, FailsWithoutTheInterface) {
    ScriptedLinkLayer linkLayer;
    linkLayer.index = 0;
    expectFailure(linkLayer, "if_nametoindex failure");
}

TEST(ZRMDeviceMacAddress, FailsWithoutTheLengthOfTheRecord) {
    ScriptedLinkLayer linkLayer;
    linkLayer.tellsLength = false;
    expectFailure(linkLayer, "sysctl mgmtInfoBase failure");
}

TEST(ZRMDeviceMacAddress, FailsWithoutMemoryForTheRecord) {
    ScriptedLinkLayer linkLayer;
    linkLayer.claimedLength = std::numeric_limits<std::size_t>::max();
    expectFailure(linkLayer, "buffer allocation failure");
}

TEST(ZRMDeviceMacAddress, FailsWithoutTheRecord) {
    ScriptedLinkLayer linkLayer;
    linkLayer.readable = false;
    expectFailure(linkLayer, "sysctl msgBuffer failure");
}

TEST(ZRMDeviceMacAddress, ARecordTooShortForItsAddressCannotBeRead) {
    ScriptedLinkLayer linkLayer;
    for (const auto& record : {ZRMData{}, ZRMData{3}, ZRMData{0, 1, 2, 3, 4, 5},
                               ZRMData{3, 'e', 'n', '0', 1, 2, 3, 4, 5}, ZRMData{255, 1, 2, 3}}) {
        linkLayer.record = record;
        expectFailure(linkLayer, "sysctl msgBuffer failure");
    }
}

TEST(ZRMDeviceTag, IsKeptInTheKeychain) {
    ZRMSimulatedDevice device;
    EXPECT_EQ(zrm_deviceTag(*device.platform()->keychainItems), std::nullopt);
    EXPECT_TRUE(zrm_setDeviceTag(*device.platform()->keychainItems, "tag"));
    EXPECT_EQ(zrm_deviceTag(*device.platform()->keychainItems), "tag");
    EXPECT_EQ(device.keychain().textOf("ZRMDeviceTag"), "tag");
    EXPECT_EQ(device.keychain().items().front().query.accessGroup, std::nullopt);

    device.restartProcess();
    EXPECT_EQ(zrm_deviceTag(*device.platform()->keychainItems), "tag");
}

TEST(ZRMDeviceTag, IsAbsentWhenTheKeychainCannotBeRead) {
    ZRMSimulatedDevice device;
    auto& items = *device.platform()->keychainItems;
    ASSERT_TRUE(zrm_setDeviceTag(items, "tag"));
    device.keychain().setStatus(ZRMSimulatedKeychain::Operation::CopyMatching,
                                ZRMKeychainInteractionNotAllowed);
    EXPECT_EQ(zrm_deviceTag(items), std::nullopt);
}

TEST(ZRMDeviceTag, TellsWhenItWasNotWritten) {
    ZRMSimulatedDevice device;
    device.keychain().setStatus(ZRMSimulatedKeychain::Operation::Add, ZRMKeychainNotAvailable);
    EXPECT_FALSE(zrm_setDeviceTag(*device.platform()->keychainItems, "tag"));
}
