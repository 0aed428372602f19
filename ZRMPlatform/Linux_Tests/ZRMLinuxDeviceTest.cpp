#include <set>

#include <gtest/gtest.h>
#include <sys/utsname.h>

#include "ZRMPlatform/Linux/ZRMLinuxDevice.h"
#include "ZRMPlatform/Linux/ZRMLinuxNamedUuid.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

class ZRMLinuxDeviceTest : public testing::Test {
  protected:
    ZRMLinuxDevice device(const std::string& maker = "com.example") {
        return ZRMLinuxDevice(maker, directory_.below("sys"), directory_.below("etc"));
    }

    ZRMTestDirectory directory_;
};

constexpr const char* kMachine = "3d1219c7c4c5404aaa1f6d2a48adfda4";

}  // namespace

TEST_F(ZRMLinuxDeviceTest, TellsTheKernelsNamesAndRelease) {
    utsname names{};
    ASSERT_EQ(uname(&names), 0);
    EXPECT_EQ(device().systemName(), names.sysname);
    EXPECT_EQ(device().systemVersion(), names.release);
    EXPECT_EQ(device().hardwareIdentifier(), names.machine);
    EXPECT_TRUE(device().isMultitaskingSupported());
}

TEST_F(ZRMLinuxDeviceTest, ThePrettyNameComesBeforeTheNodesName) {
    utsname names{};
    ASSERT_EQ(uname(&names), 0);
    EXPECT_EQ(device().name(), names.nodename);
    directory_.writeFile("etc/machine-info", "CHASSIS=handset\nPRETTY_HOSTNAME=\"Ada's phone\"\n");
    EXPECT_EQ(device().name(), "Ada's phone");
    directory_.writeFile("etc/machine-info", "PRETTY_HOSTNAME=B\xFCro\n");
    EXPECT_EQ(device().name(), "B\xEF\xBF\xBDro");
    for (const auto& nothing : {std::string("PRETTY_HOSTNAME=\n"), std::string("\xFF\xFE"),
                                "PRETTY_HOSTNAME=" + std::string(100'000, 'x')}) {
        directory_.writeFile("etc/machine-info", nothing);
        EXPECT_EQ(device().name(), names.nodename) << nothing.substr(0, 20);
    }
}

TEST_F(ZRMLinuxDeviceTest, TheModelIsTheFirmwares) {
    EXPECT_EQ(device().localizedModel(), std::nullopt);
    directory_.writeFile("sys/firmware/devicetree/base/model",
                         std::string_view("Board Model B Rev 1.4\0", 22));
    EXPECT_EQ(device().localizedModel(), "Board Model B Rev 1.4");
    directory_.writeFile("sys/class/dmi/id/product_name",
                         "Latit\xFC"
                         "de 7420 \n");
    EXPECT_EQ(device().localizedModel(),
              "Latit\xEF\xBF\xBD"
              "de 7420");
    directory_.writeFile("sys/class/dmi/id/product_name", "\n");
    EXPECT_EQ(device().localizedModel(), "Board Model B Rev 1.4");
}

TEST_F(ZRMLinuxDeviceTest, TheIdentifierStaysForOneMakerAndDiffersForOthers) {
    directory_.writeFile("etc/machine-id", std::string(kMachine) + "\n");
    const auto identifier = device().identifierForVendor();
    ASSERT_TRUE(identifier);
    EXPECT_EQ(device().identifierForVendor(), identifier);
    EXPECT_NE(device("com.other").identifierForVendor(), identifier);
    directory_.writeFile("etc/machine-id", "00000000000000000000000000000001\n");
    EXPECT_NE(device().identifierForVendor(), identifier);
}

TEST_F(ZRMLinuxDeviceTest, TheIdentifierDoesNotShowTheMachines) {
    directory_.writeFile("etc/machine-id", kMachine);
    auto identifier = device().identifierForVendor().value_or("");
    std::erase(identifier, '-');
    for (auto& each : identifier) {
        each = static_cast<char>(std::tolower(static_cast<unsigned char>(each)));
    }
    ASSERT_EQ(identifier.size(), 32U);
    const std::string_view machine = kMachine;
    for (std::size_t at = 0; at + 6 <= machine.size(); ++at) {
        EXPECT_EQ(identifier.find(machine.substr(at, 6)), std::string::npos) << at;
    }
}

TEST_F(ZRMLinuxDeviceTest, WithoutAMachineIdentifierThereIsNone) {
    EXPECT_EQ(device().identifierForVendor(), std::nullopt);
    for (const auto& garbage : {std::string(), std::string("uninitialized\n"), std::string(32, '0'),
                                std::string(31, 'a'), std::string(33, 'a'), std::string(32, 'A'),
                                std::string(32, '\xFF'), std::string(100'000, 'a')}) {
        directory_.writeFile("etc/machine-id", garbage);
        EXPECT_EQ(device().identifierForVendor(), std::nullopt) << garbage.substr(0, 40);
    }
}

TEST(ZRMLinuxNamedUuid, IsAUuidOfVersionFive) {
    std::set<std::string> seen;
    for (const char* const name : {"", "a", "b", "a longer name, of more than twenty bytes"}) {
        const auto uuid = zrm_namedUuid(name).value_or("");
        ASSERT_EQ(uuid.size(), 36U);
        EXPECT_EQ(uuid.find_first_not_of("0123456789ABCDEF-"), std::string::npos) << uuid;
        for (const std::size_t dash : {8U, 13U, 18U, 23U}) {
            EXPECT_EQ(uuid[dash], '-') << uuid;
        }
        EXPECT_EQ(uuid[14], '5') << uuid;
        EXPECT_NE(std::string_view("89AB").find(uuid[19]), std::string_view::npos) << uuid;
        EXPECT_TRUE(seen.insert(uuid).second) << uuid;
    }
}

TEST(ZRMLinuxNamedUuid, StaysFromVersionToVersion) {
    EXPECT_EQ(zrm_namedUuid("com.example"), "F8964235-1465-5508-A7A9-F443DC81B665");
}
