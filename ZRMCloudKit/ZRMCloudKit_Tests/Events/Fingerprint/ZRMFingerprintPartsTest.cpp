#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintBattery.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintKernel.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintScreen.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintSimCard.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintVolume.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The object as it is sent.
template <class Source>
std::string written(const Source& source, std::span<const ZRMEventField<Source>> fields) {
    return zrm_compactJsonText(zrm_eventBody(source, fields)).value();
}

std::string battery(ZRMPower& power) {
    return written(ZRMFingerprintBattery::read(power), ZRMFingerprintBattery::fields());
}

TEST(ZRMFingerprintBattery, IsReadWithMonitoringOnAndLeavesItOffWhereItWasOff) {
    ZRMSimulatedPower power;
    EXPECT_EQ(battery(power), R"({"batteryLife":0.75,"batteryState":2})");
    EXPECT_FALSE(power.monitoring);
    EXPECT_EQ(power.monitoringChanges, 2);
}

TEST(ZRMFingerprintBattery, LeavesMonitoringAloneWhereItIsOn) {
    ZRMSimulatedPower power;
    power.monitoring = true;
    EXPECT_EQ(battery(power), R"({"batteryLife":0.75,"batteryState":2})");
    EXPECT_TRUE(power.monitoring);
    EXPECT_EQ(power.monitoringChanges, 0);
}

TEST(ZRMFingerprintBattery, TellsEachState) {
    ZRMSimulatedPower power;
    for (const auto state : {ZRMBatteryState::Unknown, ZRMBatteryState::Unplugged,
                             ZRMBatteryState::Charging, ZRMBatteryState::Full}) {
        power.state = state;
        EXPECT_EQ(ZRMFingerprintBattery::read(power).state, static_cast<int>(state));
    }
}

TEST(ZRMFingerprintBattery, WritesTheLevelWithoutTheNoiseOfAWiderNumber) {
    ZRMSimulatedPower power;
    const std::vector<std::pair<float, std::string>> levels{
        {0.8F, "0.8"}, {0.01F, "0.01"}, {0.35F, "0.35"}, {1.0F, "1"}, {0.0F, "0"}, {-1.0F, "-1"}};
    for (const auto& [level, text] : levels) {
        power.level = level;
        EXPECT_EQ(battery(power), R"({"batteryLife":)" + text + R"(,"batteryState":2})");
    }
}

TEST(ZRMFingerprintBattery, IsUnknownWhereTheLevelIsNoNumber) {
    ZRMSimulatedPower power;
    for (const float level :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        power.level = level;
        EXPECT_EQ(ZRMFingerprintBattery::read(power).life, -1);
    }
}

std::string simCard(const ZRMCarrier& carrier) {
    return written(carrier, zrm_fingerprintSimCardFields());
}

TEST(ZRMFingerprintSimCard, TellsItsCarrier) {
    EXPECT_EQ(simCard({true, "at", "232", "01", "Alpine Mobile"}),
              R"({"carrierAllowsVOIP":true,"carrierIsoCountryCode":"at",)"
              R"("carrierMobileCountryCode":"232","carrierMobileNetworkCode":"01",)"
              R"("carrierName":"Alpine Mobile"})");
}

constexpr const char* kEmptySimCard =
    R"({"carrierAllowsVOIP":false,"carrierIsoCountryCode":"","carrierMobileCountryCode":"",)"
    R"("carrierMobileNetworkCode":"","carrierName":""})";

TEST(ZRMFingerprintSimCard, IsEmptyWhereTheCarrierIsNotKnown) {
    EXPECT_EQ(simCard({}), kEmptySimCard);
}

TEST(ZRMFingerprintSimCard, IsEmptyForWhatIsReportedWithoutACard) {
    EXPECT_EQ(simCard({false, "--", "65535", "65535", "--"}), kEmptySimCard);
}

TEST(ZRMFingerprintSimCard, KeepsThePlaceholderOfAnotherMember) {
    EXPECT_EQ(simCard({false, "65535", "--", "--", "65535"}),
              R"({"carrierAllowsVOIP":false,"carrierIsoCountryCode":"65535",)"
              R"("carrierMobileCountryCode":"--","carrierMobileNetworkCode":"--",)"
              R"("carrierName":"65535"})");
}

class ZRMFingerprintVolumes : public testing::Test {
  protected:
    std::string volume() {
        return written(zrm_fingerprintVolume(device_.volumes(), *device_.platform()->directories),
                       zrm_fingerprintVolumeFields());
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMRecordedLog log_;
};

TEST_F(ZRMFingerprintVolumes, TellWhatTheRootVolumeCouldGiveToSomethingImportant) {
    EXPECT_EQ(volume(), R"({"size":128000000000,"free":64000000000})");
    EXPECT_THAT(device_.volumes().questions, ElementsAre("/"));
    EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_F(ZRMFingerprintVolumes, TellTheDocumentsFileSystemWhereThereIsNoSuchDistinction) {
    device_.volumes().important = std::nullopt;
    EXPECT_EQ(volume(), R"({"size":127000000000,"free":63000000000})");
    EXPECT_THAT(device_.volumes().questions, ElementsAre("/", "/device/home/Documents"));
    EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_F(ZRMFingerprintVolumes, CountUpTo64Bits) {
    constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
    device_.volumes().important = ZRMResult(ZRMVolumeCapacity{kMost, kMost - 1});
    EXPECT_EQ(volume(), R"({"size":18446744073709551615,"free":18446744073709551614})");
}

TEST_F(ZRMFingerprintVolumes, AreZeroWithTheReasonInTheLogWhenTheRootCannotBeRead) {
    device_.volumes().important = ZRMResult<ZRMVolumeCapacity>(
        ZRMError::withDescription(kZRMPosixErrorDomain, 13, "Permission denied"));
    EXPECT_EQ(volume(), R"({"size":0,"free":0})");
    EXPECT_THAT(device_.volumes().questions, ElementsAre("/"));
    EXPECT_THAT(log_.errors(), ElementsAre("Error: Permission denied"));
    ASSERT_EQ(log_.messages().size(), 1U);
    EXPECT_THAT(log_.messages()[0].first,
                testing::MatchesRegex("<0x[0-9a-f]+ ZRMFingerprintVolume\\.cpp:\\([0-9]+\\)> "
                                      "Error: Permission denied"));
}

TEST_F(ZRMFingerprintVolumes, AreZeroWithTheReasonInTheLogWhenTheFileSystemCannotBeRead) {
    device_.volumes().important = std::nullopt;
    device_.volumes().fileSystem = ZRMError(kZRMPosixErrorDomain, 2);
    EXPECT_EQ(volume(), R"({"size":0,"free":0})");
    EXPECT_THAT(log_.errors(), ElementsAre("Error: The operation could not be completed. "
                                           "(NSPOSIXErrorDomain error 2.)"));
}

std::string screen(const ZRMScreens& screens) {
    return written(ZRMFingerprintScreen::read(screens), ZRMFingerprintScreen::fields());
}

TEST(ZRMFingerprintScreen, TellsTheBoundsInPointsAndInPixels) {
    const ZRMSimulatedScreens screens;
    EXPECT_EQ(screen(screens),
              R"({"amountOfScreens":1,"availableModes":[],"isScreenMirrored":false,)"
              R"("nativeScaleFactor":3,"scaleFactor":3,)"
              R"("sizeInPoints":{"height":844,"width":390},)"
              R"("sizeInPixels":{"height":2532,"width":1170}})");
}

TEST(ZRMFingerprintScreen, TellsOfTheMainOneAndCountsTheOthers) {
    ZRMSimulatedScreens screens;
    screens.setScreens({{.isCaptured = std::nullopt,
                         .hasMirroredScreen = true,
                         .width = 414,
                         .height = 736,
                         .scale = 3,
                         .nativeScale = 2.608},
                        {.isCaptured = std::nullopt,
                         .hasMirroredScreen = false,
                         .width = 1920,
                         .height = 1080,
                         .scale = 1,
                         .nativeScale = 1}});
    EXPECT_EQ(screen(screens),
              R"({"amountOfScreens":2,"availableModes":[],"isScreenMirrored":true,)"
              R"("nativeScaleFactor":2.608,"scaleFactor":3,)"
              R"("sizeInPoints":{"height":736,"width":414},)"
              R"("sizeInPixels":{"height":2208,"width":1242}})");
}

constexpr const char* kNothingOnTheScreen =
    R"("availableModes":[],"isScreenMirrored":false,"nativeScaleFactor":0,"scaleFactor":0,)"
    R"("sizeInPoints":{"height":0,"width":0},"sizeInPixels":{"height":0,"width":0}})";

TEST(ZRMFingerprintScreen, IsAllZeroWithoutAny) {
    ZRMSimulatedScreens screens;
    screens.setScreens({});
    EXPECT_EQ(screen(screens), std::string(R"({"amountOfScreens":0,)") + kNothingOnTheScreen);
}

TEST(ZRMFingerprintScreen, IsZeroWhereANumberIsNone) {
    constexpr auto kNone = std::numeric_limits<double>::quiet_NaN();
    ZRMSimulatedScreens screens;
    screens.setScreens({{.isCaptured = std::nullopt,
                         .hasMirroredScreen = false,
                         .width = kNone,
                         .height = std::numeric_limits<double>::infinity(),
                         .scale = kNone,
                         .nativeScale = kNone}});
    EXPECT_EQ(screen(screens), std::string(R"({"amountOfScreens":1,)") + kNothingOnTheScreen);
}

std::string kernel(const ZRMKernelValues& values) {
    return written(values, zrm_fingerprintKernelFields());
}

TEST(ZRMFingerprintKernel, TellsEachValue) {
    const ZRMSimulatedKernelValues values;
    EXPECT_EQ(kernel(values),
              R"({"hwmachine":"iPhone10,3","hwmodel":"D22AP","hwncpu":6,"hwphysmem":-1073741824,)"
              R"("kernhostid":"42","kernhostname":"pocket","kernosrevision":"-1",)"
              R"("kernostype":"Darwin"})");
}

TEST(ZRMFingerprintKernel, WritesTheHostsIdentifierAsASignedDecimal) {
    ZRMSimulatedKernelValues values;
    values.integers["kern.hostid"] = std::numeric_limits<std::int32_t>::min();
    EXPECT_THAT(kernel(values), testing::HasSubstr(R"("kernhostid":"-2147483648")"));
}

TEST(ZRMFingerprintKernel, NeverReadsTheRevision) {
    ZRMSimulatedKernelValues values;
    values.integers["kern.osrevision"] = 199506;
    values.texts["kern.osrevision"] = "199506";
    EXPECT_THAT(kernel(values), testing::HasSubstr(R"("kernosrevision":"-1")"));
}

TEST(ZRMFingerprintKernel, IsEmptyOrZeroWhereTheKernelHasNoSuchValue) {
    ZRMSimulatedKernelValues values;
    values.texts.clear();
    values.integers.clear();
    EXPECT_EQ(kernel(values),
              R"({"hwmachine":"","hwmodel":"","hwncpu":0,"hwphysmem":0,"kernhostid":"",)"
              R"("kernhostname":"","kernosrevision":"-1","kernostype":""})");
}

}  // namespace
