// What the small ports promise: device, link layer, locale, location, environment, bundles, random,
// console.
#include <set>

#include <gmock/gmock.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"
#include "ZRMPlatform/Linux/ZRMLinuxSystemText.h"

namespace {

class ZRMDeviceContract : public ZRMContract {};

}  // namespace

TEST_P(ZRMDeviceContract, EveryPortIsPresent) {
    const auto& body = *platform();
    EXPECT_TRUE(body.executor && body.clock && body.urlSessions && body.digests && body.rsaKeys);
    EXPECT_TRUE(body.trust);
    EXPECT_TRUE(body.fileManager && body.directories && body.userDefaults && body.keyedArchiver);
    EXPECT_TRUE(body.keychainItems && body.mainBundle && body.resourceBundles);
    EXPECT_TRUE(body.reachabilityTargets && body.device && body.linkLayer && body.locale);
    EXPECT_TRUE(body.locationAuthorization && body.processEnvironment && body.consoleLog);
    EXPECT_TRUE(body.loader && body.fileAccess && body.urlOpener && body.commandProcessor);
    EXPECT_TRUE(body.screens && body.networkInterfaces && body.wifi);
    EXPECT_TRUE(body.processInformation && body.power && body.carriers && body.volumes);
    EXPECT_TRUE(body.kernelValues);
    EXPECT_TRUE(body.random && body.instances);
    EXPECT_TRUE(body.calls && body.notifications && body.locationServices);
    EXPECT_TRUE(body.localAuthentication);
}

TEST_P(ZRMDeviceContract, TheSystemHasANameAndAVersion) {
    EXPECT_FALSE(platform()->device->systemName().empty());
    const auto version = platform()->device->systemVersion();
    EXPECT_TRUE(!version || !version->empty());
}

TEST_P(ZRMDeviceContract, WhatTheDeviceIsCalledIsText) {
    const auto& device = *platform()->device;
    for (const auto& text : {device.name(), device.localizedModel()}) {
        EXPECT_TRUE(!text || (!text->empty() && zrm_wellFormedText(*text) == *text));
    }
    EXPECT_FALSE(device.hardwareIdentifier().empty());
}

TEST_P(ZRMDeviceContract, TheIdentifierForTheVendorIsAUuidThatOutlivesTheProcess) {
    const auto identifier = platform()->device->identifierForVendor();
    EXPECT_THAT(identifier.value_or("00000000-0000-0000-0000-000000000000"),
                testing::MatchesRegex("[0-9A-F]{8}-([0-9A-F]{4}-){3}[0-9A-F]{12}"));
    body_->restart();
    EXPECT_EQ(platform()->device->identifierForVendor(), identifier);
}

TEST_P(ZRMDeviceContract, AnInterfaceThatIsNotThereHasTheIndexZero) {
    EXPECT_EQ(platform()->linkLayer->interfaceIndex("no such interface"), 0u);
    EXPECT_EQ(platform()->linkLayer->interfaceIndex(""), 0u);
}

TEST_P(ZRMDeviceContract, ARecordHoldsTheNameThenSixBytesOfAddress) {
    const auto& layer = *platform()->linkLayer;
    const auto index = layer.interfaceIndex("en0");
    if (index == 0) {
        EXPECT_FALSE(layer.recordLength(index));
        return;
    }
    const auto length = layer.recordLength(index);
    ASSERT_TRUE(length);
    ZRMData record(*length);
    ASSERT_TRUE(layer.readRecord(index, record));
    ASSERT_GE(record.size(), 7u);
    EXPECT_EQ(record.size(), 1u + record[0] + 6u);
}

TEST_P(ZRMDeviceContract, ARecordIsNotReadIntoTooSmallARoom) {
    const auto& layer = *platform()->linkLayer;
    ZRMData room(1, 0xee);
    EXPECT_FALSE(layer.readRecord(layer.interfaceIndex("en0"), room));
    EXPECT_FALSE(layer.readRecord(0, room));
    EXPECT_FALSE(layer.readRecord(layer.interfaceIndex("en0"), {}));
}

TEST_P(ZRMDeviceContract, TheTimeZoneAndTheLocaleAreKnown) {
    EXPECT_FALSE(platform()->locale->timeZoneIdentifier().empty());
    EXPECT_FALSE(platform()->locale->localeIdentifier().empty());
    EXPECT_EQ(platform()->locale->localeIdentifier().find('-'), std::string::npos);
}

TEST_P(ZRMDeviceContract, TheSystemsLocaleHasTheSameForm) {
    EXPECT_FALSE(platform()->locale->systemLocaleIdentifier().empty());
    EXPECT_EQ(platform()->locale->systemLocaleIdentifier().find('-'), std::string::npos);
}

TEST_P(ZRMDeviceContract, PreferredLanguagesAreTagsEachNamedOnce) {
    const auto tags = platform()->locale->preferredLanguages();
    EXPECT_THAT(tags, testing::Each(testing::MatchesRegex("[a-z]{2,3}(-[A-Za-z0-9]+)*")));
    EXPECT_EQ(std::set<std::string>(tags.begin(), tags.end()).size(), tags.size());
}

TEST_P(ZRMDeviceContract, TheLocationAuthorizationIsOneOfTheFive) {
    EXPECT_THAT(platform()->locationAuthorization->status(),
                testing::AllOf(testing::Ge(0), testing::Le(4)));
}

TEST_P(ZRMDeviceContract, AVariableThatIsNotSetIsAbsent) {
    EXPECT_FALSE(platform()->processEnvironment->variable("ZRM_NO_SUCH_VARIABLE"));
}

TEST_P(ZRMDeviceContract, TheBundlePathIsAbsoluteWithoutASlashAtTheEnd) {
    const auto path = platform()->mainBundle->path();
    EXPECT_TRUE(path.starts_with("/")) << path;
    EXPECT_FALSE(path.ends_with("/")) << path;
    EXPECT_FALSE(platform()->mainBundle->infoText("ZRMNoSuchKey"));
}

TEST_P(ZRMDeviceContract, AResourceBundleThatIsNotThereIsAbsent) {
    for (const std::string name : {"ZRMNoSuchResources.bundle", "", "..", "a/b"}) {
        EXPECT_FALSE(platform()->resourceBundles->pathForBundle(name)) << name;
    }
}

TEST_P(ZRMDeviceContract, RandomFillsTheWholeSpanDifferentlyEachTime) {
    std::set<ZRMData> seen;
    for (int draw = 0; draw < 10; ++draw) {
        ZRMData bytes(64);
        platform()->random->fill(bytes);
        EXPECT_TRUE(seen.insert(bytes).second);
        EXPECT_NE(ZRMData(bytes.end() - 16, bytes.end()), ZRMData(16));
    }
    platform()->random->fill({});
}

TEST_P(ZRMDeviceContract, TheConsoleTakesAnyText) {
    platform()->consoleLog->write("");
    platform()->consoleLog->write("contract test line\n");
    EXPECT_NE(platform()->consoleLog, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMDeviceContract, zrm_contractBodies(), zrm_contractBodyName);
