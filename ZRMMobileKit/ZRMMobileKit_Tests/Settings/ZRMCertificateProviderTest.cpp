#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Certificate/ZRMCertificateProvider.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

class ZRMCertificateProviderTest : public testing::Test {
  protected:
    ZRMData rootCertificate() {
        return ZRMCertificateProvider::rootCertificate(*device_.platform()->resourceBundles,
                                                       *device_.platform()->fileManager);
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMRecordedLog log_;
};

}  // namespace

TEST_F(ZRMCertificateProviderTest, YieldsTheBytesOfTheResource) {
    device_.resourceBundles().put("ZRMMobileKitResources.bundle", "VelorinRootCA.crt", {1, 2, 3});
    EXPECT_EQ(rootCertificate(), (ZRMData{1, 2, 3}));
    EXPECT_THAT(log_.messages(), testing::IsEmpty());
}

TEST_F(ZRMCertificateProviderTest, MissingBundleIsLoggedAndYieldsEmptyBytes) {
    EXPECT_THAT(rootCertificate(), testing::IsEmpty());
    EXPECT_THAT(log_.errors(),
                testing::ElementsAre("Error: Bundle 'ZRMMobileKitResources.bundle' not found"));
}

TEST_F(ZRMCertificateProviderTest, BundleWithoutTheCertificateYieldsEmptyBytes) {
    device_.resourceBundles().put("ZRMMobileKitResources.bundle", "other.crt", {1});
    EXPECT_THAT(rootCertificate(), testing::IsEmpty());
}
