#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Biometry/ZRMTouchIdInfo.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Biometry/ZRMTouchIdSensor.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedHardware.h"

namespace {

// What is captured where the evaluation answers that.
ZRMTouchIdInfo infoFor(ZRMBiometricEvaluation evaluation) {
    const auto localAuthentication = std::make_shared<ZRMSimulatedLocalAuthentication>();
    localAuthentication->evaluation = std::move(evaluation);
    return ZRMTouchIdSensor(localAuthentication).currentTouchIdInfo();
}

ZRMTouchIdInfo infoForError(const std::string& domain, std::int64_t code) {
    return infoFor({false, ZRMData{1}, ZRMError(domain, code)});
}

TEST(ZRMTouchIdInfo, IsSupportedAndEnabledWithItsStateWhereBiometryCanBeEvaluated) {
    EXPECT_EQ(infoFor({true, ZRMData{1, 2}, std::nullopt}),
              ZRMTouchIdInfo(true, true, ZRMData{1, 2}));
    EXPECT_EQ(infoFor({true, std::nullopt, std::nullopt}),
              ZRMTouchIdInfo(true, true, std::nullopt));
}

TEST(ZRMTouchIdInfo, IsNotSupportedWithoutASensor) {
    EXPECT_EQ(infoForError("com.apple.LocalAuthentication", -6),
              ZRMTouchIdInfo(false, false, std::nullopt));
}

TEST(ZRMTouchIdInfo, IsSupportedButNotEnabledWhereTheSensorCannotBeUsedNow) {
    for (const std::int64_t code : {-7, -8, -5, -1, 0, 6}) {
        EXPECT_EQ(infoForError("com.apple.LocalAuthentication", code),
                  ZRMTouchIdInfo(true, false, std::nullopt))
            << code;
    }
}

TEST(ZRMTouchIdInfo, IsNotSupportedWhereAnotherDomainOrNobodySaysWhy) {
    EXPECT_EQ(infoForError("NSPOSIXErrorDomain", -7), ZRMTouchIdInfo(false, false, std::nullopt));
    EXPECT_EQ(infoFor({false, ZRMData{1}, std::nullopt}),
              ZRMTouchIdInfo(false, false, std::nullopt));
}

TEST(ZRMTouchIdInfo, DiffersAfterANewEnrolment) {
    EXPECT_EQ(infoFor({true, ZRMData{1}, std::nullopt}), infoFor({true, ZRMData{1}, std::nullopt}));
    EXPECT_NE(infoFor({true, ZRMData{1}, std::nullopt}), infoFor({true, ZRMData{2}, std::nullopt}));
}

TEST(ZRMTouchIdInfo, IsEqualWhenFlagsAndDomainStateAre) {
    const ZRMTouchIdInfo info(true, true, ZRMData{1, 2});
    EXPECT_EQ(info, ZRMTouchIdInfo(true, true, ZRMData{1, 2}));
    EXPECT_EQ(info.hash(), ZRMTouchIdInfo(true, true, ZRMData{1, 2}).hash());
    EXPECT_NE(info, ZRMTouchIdInfo(false, true, ZRMData{1, 2}));
    EXPECT_NE(info, ZRMTouchIdInfo(true, false, ZRMData{1, 2}));
    EXPECT_NE(info, ZRMTouchIdInfo(true, true, ZRMData{1, 3}));
    EXPECT_NE(info, ZRMTouchIdInfo(true, true, std::nullopt));
}

TEST(ZRMTouchIdInfo, ArchivesUnderItsKeys) {
    const auto object = ZRMTouchIdInfo(true, false, ZRMData{7}).encode();
    EXPECT_EQ(object.className, "ZRMTouchIdInfo");
    EXPECT_EQ(object.fields,
              (ZRMArchiveFields{
                  {"isSupported", true}, {"isEnabled", false}, {"domainState", ZRMData{7}}}));
    EXPECT_EQ(ZRMTouchIdInfo(true, false, std::nullopt).encode().fields.count("domainState"), 0U);
}

TEST(ZRMTouchIdInfo, ReadsBackWhatItArchived) {
    for (const auto& info :
         {ZRMTouchIdInfo(true, false, ZRMData{7}), ZRMTouchIdInfo(false, true, ZRMData{}),
          ZRMTouchIdInfo(false, false, std::nullopt)}) {
        EXPECT_EQ(ZRMTouchIdInfo::decode(info.encode()), info);
    }
}

TEST(ZRMTouchIdInfo, ReadsNothingFromAnotherClassOrTypes) {
    EXPECT_EQ(ZRMTouchIdInfo::decode({"Other", {}}), std::nullopt);
    EXPECT_EQ(ZRMTouchIdInfo::decode({"ZRMTouchIdInfo", {{"isSupported", std::string("yes")}}}),
              std::nullopt);
    EXPECT_EQ(ZRMTouchIdInfo::decode({"ZRMTouchIdInfo", {{"isEnabled", 1.0}}}), std::nullopt);
    EXPECT_EQ(ZRMTouchIdInfo::decode({"ZRMTouchIdInfo", {{"domainState", true}}}), std::nullopt);
    EXPECT_EQ(ZRMTouchIdInfo::decode({"ZRMTouchIdInfo", {}}),
              ZRMTouchIdInfo(false, false, std::nullopt));
}

}  // namespace
