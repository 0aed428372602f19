// The archive file as builds before this one wrote it on Linux (docs/formats/archive.md).
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitSettingsValues.h"
#include "ZRMCloudKit/ZRMCloudKit_Tests/Support/ZRMGoldenFile.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

namespace {

ZRMCloudKitSettingsValues exampleValues() {
    ZRMCloudKitSettingsValues values;
    values.installationId = "7C9E6679-7425-40DE-944B-E07FC1F90AE7";
    values.installationDate = ZRMDate{1767225600.25};
    values.applicationMd5SendDate = ZRMDate{1767312000};
    values.touchIdDomainState = ZRMTouchIdInfo(true, false, ZRMData{0xDE, 0xAD, 0xBE, 0xEF});
    values.secureDeviceTag = "0F8FAD5B-D9CB-469F-A165-70867728950E";
    values.secureDeviceTagRefreshDate = ZRMDate{1767319200};
    values.secureDeviceTagRefreshInterval = 7200.5;
    return values;
}

ZRMData goldenArchive() {
    return zrm_dataFromText(zrm_goldenFile("ZRMCloudKitSettings"));
}

TEST(ZRMCloudKitArchiveFormat, StillReadsTheArchivesOfEarlierBuilds) {
    const auto object = zrm_makeDefaultPlatform()->keyedArchiver->decode(goldenArchive());
    ASSERT_TRUE(object);
    auto expected = exampleValues();
    expected.secureDeviceTagRefreshInterval = 7200;
    EXPECT_EQ(ZRMCloudKitSettingsValues::decode(object.value()), expected);
}

TEST(ZRMCloudKitArchiveFormat, AFieldOfAnotherTypeMakesItNone) {
    const auto object = exampleValues().encode();
    ASSERT_TRUE(ZRMCloudKitSettingsValues::decode(object));
    for (const auto& [key, value] : object.fields) {
        auto changed = object;
        changed.fields[key] = true;
        EXPECT_FALSE(ZRMCloudKitSettingsValues::decode(changed)) << key;
    }
}

TEST(ZRMCloudKitArchiveFormat, StillWritesTheSameBytes) {
    const auto bytes = zrm_makeDefaultPlatform()->keyedArchiver->encode(exampleValues().encode());
    ASSERT_TRUE(bytes);
    EXPECT_EQ(bytes.value(), goldenArchive());
}

}  // namespace
