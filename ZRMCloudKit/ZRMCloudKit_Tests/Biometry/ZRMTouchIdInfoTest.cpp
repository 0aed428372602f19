#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Biometry/ZRMTouchIdInfo.h"

namespace {

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
