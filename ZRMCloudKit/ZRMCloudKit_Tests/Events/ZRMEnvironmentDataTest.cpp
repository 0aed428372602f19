#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMEnvironmentDataProvider.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

std::vector<std::string> keysOf(const ZRMDictionary& dictionary) {
    std::vector<std::string> keys;
    for (const auto& member : dictionary) {
        keys.emplace_back(member.key());
    }
    return keys;
}

class ZRMEnvironmentDataTest : public testing::Test {
  protected:
    std::shared_ptr<const ZRMEnvironmentDataImpl> snapshot() {
        return ZRMEnvironmentDataProvider::providerWithClientId(device_.platform(), "client",
                                                                "session", "tag", "product", "1.2",
                                                                ZRMDate{1700000000.25})
            ->environmentData();
    }

    ZRMSimulatedDevice device_;
};

TEST_F(ZRMEnvironmentDataTest, IsFilledFromTheDeviceTheBundleAndTheFactorysValues) {
    const auto data = snapshot();
    EXPECT_EQ(data->osName, "SimulatedOS");
    EXPECT_EQ(data->osVersion, "17.1");
    EXPECT_EQ(data->deviceTag, "tag");
    EXPECT_EQ(data->productName, "product");
    EXPECT_EQ(data->productVersion, "1.2");
    EXPECT_EQ(data->applicationId, "com.example.host");
    EXPECT_EQ(data->applicationVersion, "1.2.3.4");
    EXPECT_EQ(data->applicationInstallationDate, ZRMDate{1700000000.25});
    EXPECT_EQ(data->clientId, "client");
    EXPECT_EQ(data->execSessionId, "session");
    EXPECT_EQ(data->uptime, 3600000);
    EXPECT_EQ(data->startDateTime, 1767222000000);
}

TEST_F(ZRMEnvironmentDataTest, IsANewSnapshotOfTheUptimeOnEachCall) {
    const auto first = snapshot();
    device_.advanceBy(1.5);
    const auto second = snapshot();
    EXPECT_EQ(first->uptime, 3600000);
    EXPECT_EQ(second->uptime, 3601500);
}

TEST_F(ZRMEnvironmentDataTest, HasEmptyTextsWhereNamesAndVersionsAreNotKnown) {
    device_.mainBundle().setIdentifier(std::nullopt);
    device_.mainBundle().setInfoText("CFBundleVersion", std::nullopt);
    const auto data = ZRMEnvironmentDataProvider(device_.platform(), "client", "session", "tag",
                                                 std::nullopt, std::nullopt, std::nullopt)
                          .environmentData();
    EXPECT_EQ(data->productName, "");
    EXPECT_EQ(data->productVersion, "");
    EXPECT_EQ(data->applicationId, "");
    EXPECT_EQ(data->applicationVersion, "");
    EXPECT_EQ(data->dictionary().at("applicationVersion"), "");
}

TEST_F(ZRMEnvironmentDataTest, CountsTheUptimeFrom1970WithoutABootTime) {
    device_.clock().setBootTimeKnown(false);
    const auto data = snapshot();
    EXPECT_EQ(data->startDateTime, std::nullopt);
    EXPECT_EQ(data->uptime, 1767225600000);
    EXPECT_FALSE(data->dictionary().contains("startDateTime"));
}

TEST_F(ZRMEnvironmentDataTest, WritesItsPropertiesInOrder) {
    const auto dictionary = snapshot()->dictionary();
    EXPECT_THAT(
        keysOf(dictionary),
        testing::ElementsAre("osName", "osVersion", "deviceTag", "productName", "productVersion",
                             "applicationId", "applicationVersion", "clientId", "execSessionId",
                             "uptime", "startDateTime", "applicationDateInstall"));
    EXPECT_EQ(dictionary.at("uptime"), 3600000);
    EXPECT_EQ(dictionary.at("startDateTime"), 1767222000000);
    EXPECT_EQ(dictionary.at("applicationDateInstall"), "2023-11-14 22:13:20.250000");
}

TEST(ZRMEnvironmentDataImpl, LeavesOutEveryPropertyWithoutAValue) {
    EXPECT_TRUE(ZRMEnvironmentDataImpl().dictionary().empty());
    ZRMEnvironmentDataImpl data;
    data.clientId = "";
    EXPECT_THAT(keysOf(data.dictionary()), testing::ElementsAre("clientId"));
}

TEST(ZRMEnvironmentDataImpl, RepairsTextThatIsNotUtf8) {
    ZRMEnvironmentDataImpl data;
    data.clientId = "bank\xFF";
    EXPECT_EQ(data.dictionary().at("clientId"), "bank\uFFFD");
}

}  // namespace
