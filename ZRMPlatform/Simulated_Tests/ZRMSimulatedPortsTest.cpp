// What tests can set on the small bodies of the simulated device.
#include <limits>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

using testing::ElementsAre;

TEST(ZRMSimulatedTime, MicrosecondsAreRoundedAndBounded) {
    EXPECT_EQ(ZRMSimulatedTime::microseconds(1.5), 1500000);
    EXPECT_EQ(ZRMSimulatedTime::microseconds(0.0000014), 1);
    EXPECT_EQ(ZRMSimulatedTime::microseconds(1e300), ZRMSimulatedTime::microseconds(1e200));
    EXPECT_EQ(ZRMSimulatedTime::microseconds(-1e300), -ZRMSimulatedTime::microseconds(1e300));
    EXPECT_EQ(ZRMSimulatedTime::microseconds(std::numeric_limits<double>::quiet_NaN()),
              ZRMSimulatedTime::microseconds(1e300));
}

TEST(ZRMSimulatedTime, ADelayAboveZeroTakesTime) {
    const ZRMSimulatedTime time;
    const auto due = time.momentAfter(ZRMSimulatedMoment::Clock::Uptime, 1e-12);
    EXPECT_EQ(due.microseconds, time.uptimeMicroseconds() + 1);
}

TEST(ZRMSimulatedClock, TheBootTimeFollowsTheWallClockAndMayBeUnknown) {
    ZRMSimulatedDevice device;
    const auto before = device.platform()->clock->bootTime();
    device.jumpWallClock(100.25);
    const auto after = device.platform()->clock->bootTime();
    ASSERT_TRUE(before && after);
    EXPECT_EQ(after->seconds - before->seconds, 100);
    EXPECT_EQ(after->microseconds, 250000);
    device.clock().setBootTimeKnown(false);
    EXPECT_FALSE(device.platform()->clock->bootTime());
}

TEST(ZRMSimulatedClock, ABootBefore1970HasMicrosecondsAboveZero) {
    ZRMSimulatedDevice device;
    device.jumpWallClock(-ZRMSimulatedTime::kStartSecondsSince1970 - 0.25);
    const auto boot = device.platform()->clock->bootTime();
    ASSERT_TRUE(boot);
    EXPECT_EQ(boot->microseconds, 750000);
    EXPECT_EQ(boot->seconds, -3601);
}

TEST(ZRMSimulatedConsole, KeepsTextAndLines) {
    ZRMSimulatedDevice device;
    device.platform()->consoleLog->write("one\ntw");
    device.platform()->consoleLog->write("o\n");
    EXPECT_THAT(device.console().lines(), ElementsAre("one", "two"));
    EXPECT_TRUE(device.console().contains("two"));
    EXPECT_FALSE(device.console().contains("three"));
    device.console().clear();
    EXPECT_EQ(device.console().text(), "");
}

TEST(ZRMSimulatedRandom, RepeatsWithItsSeedAndGoesOnOverRestarts) {
    const auto draw = [](ZRMSimulatedDevice& device) {
        ZRMData bytes(16);
        device.platform()->random->fill(bytes);
        return bytes;
    };
    ZRMSimulatedDevice one;
    ZRMSimulatedDevice two;
    const ZRMData first = draw(one);
    EXPECT_EQ(first, draw(two));
    one.restartProcess();
    EXPECT_NE(draw(one), first);
    one.random().setSeed(5);
    EXPECT_NE(draw(one), draw(two));
}

TEST(ZRMSimulatedRandom, CanBeFixed) {
    ZRMSimulatedDevice device;
    device.random().setFixed({1, 2});
    ZRMData bytes(5);
    device.platform()->random->fill(bytes);
    EXPECT_EQ(bytes, (ZRMData{1, 2, 1, 2, 1}));
    device.random().setFixed({});
    device.platform()->random->fill(bytes);
    EXPECT_NE(bytes, (ZRMData{1, 2, 1, 2, 1}));
}

TEST(ZRMSimulatedKeychain, AnswersTheStatusThatWasSetAndRecordsCalls) {
    ZRMSimulatedDevice device;
    using Operation = ZRMSimulatedKeychain::Operation;
    const auto items = device.platform()->keychainItems;
    const ZRMKeychainQuery query{.account = "tag"};
    ZRMData value;
    device.keychain().setStatus(Operation::Add, ZRMKeychainInteractionNotAllowed);
    device.keychain().setStatus(Operation::CopyMatching, ZRMKeychainParameterError);
    device.keychain().setStatus(Operation::Update, -1);
    device.keychain().setStatus(Operation::Remove, -2);
    EXPECT_EQ(items->add(query, {1}), ZRMKeychainInteractionNotAllowed);
    EXPECT_EQ(items->copyMatching(query, value), ZRMKeychainParameterError);
    EXPECT_EQ(items->update(query, {1}), -1);
    EXPECT_EQ(items->remove(query), -2);
    EXPECT_TRUE(device.keychain().items().empty());
    device.keychain().setStatus(Operation::Add, std::nullopt);
    EXPECT_EQ(items->add(query, {'h', 'i'}), ZRMKeychainSuccess);
    EXPECT_EQ(device.keychain().textOf("tag"), "hi");
    EXPECT_FALSE(device.keychain().textOf("other"));
    ASSERT_EQ(device.keychain().calls().size(), 5u);
    EXPECT_EQ(device.keychain().calls()[1].operation, Operation::CopyMatching);
    EXPECT_EQ(device.keychain().calls()[1].status, ZRMKeychainParameterError);
    EXPECT_EQ(device.keychain().calls()[4].query, query);
}

TEST(ZRMSimulatedUserDefaults, AFailedWriteStaysInTheProcessAndSaysSoOnTheConsole) {
    ZRMSimulatedDevice device;
    device.platform()->userDefaults->openSuite("suite")->setString("key", "old");
    device.userDefaults().setWritesFail(true);
    device.platform()->userDefaults->openSuite("suite")->setString("key", "new");
    EXPECT_EQ(device.platform()->userDefaults->openSuite("suite")->stringForKey("key"), "new");
    EXPECT_TRUE(device.console().contains("suite"));
    device.restartProcess();
    EXPECT_EQ(device.platform()->userDefaults->openSuite("suite")->stringForKey("key"), "old");
}

TEST(ZRMSimulatedUserDefaults, ALaterWriteThatSucceedsReplacesOneThatFailed) {
    ZRMSimulatedDevice device;
    const auto suite = device.platform()->userDefaults->openSuite("suite");
    device.userDefaults().setWritesFail(true);
    suite->setDouble("key", 1);
    device.userDefaults().setWritesFail(false);
    suite->setDouble("key", 2);
    EXPECT_EQ(suite->doubleForKey("key"), 2);
    device.restartProcess();
    EXPECT_EQ(device.platform()->userDefaults->openSuite("suite")->doubleForKey("key"), 2);
}

TEST(ZRMSimulatedKeyedArchiver, CanRefuseToEncode) {
    ZRMSimulatedDevice device;
    device.keyedArchiver().setEncodingFails(true);
    EXPECT_FALSE(device.platform()->keyedArchiver->encode({"ZRMClass", {}}));
    device.keyedArchiver().setEncodingFails(false);
    EXPECT_TRUE(device.platform()->keyedArchiver->encode({"ZRMClass", {}}));
}

TEST(ZRMSimulatedKeyedArchiver, ObjectsThatNestTooDeepOrAreMissingAreNotArchived) {
    const ZRMSimulatedKeyedArchiver archiver;
    auto object = std::make_shared<const ZRMArchiveObject>(ZRMArchiveObject{"ZRMInner", {}});
    for (int depth = 1; depth < 32; ++depth) {
        object = std::make_shared<const ZRMArchiveObject>(
            ZRMArchiveObject{"ZRMOuter", {{"inner", object}}});
    }
    const auto bytes = archiver.encode(*object);
    ASSERT_TRUE(bytes);
    EXPECT_TRUE(archiver.decode(bytes.value()));
    EXPECT_FALSE(archiver.encode({"ZRMOuter", {{"inner", object}}}));
    EXPECT_FALSE(
        archiver.encode({"ZRMOuter", {{"inner", std::shared_ptr<const ZRMArchiveObject>()}}}));
}

TEST(ZRMSimulatedDigests, CanBeMissingAndCanFail) {
    ZRMSimulatedDevice device;
    const auto digests = device.platform()->digests;
    device.digests().setAvailable(ZRMDigestAlgorithm::Md5, false);
    EXPECT_EQ(digests->makeContext(ZRMDigestAlgorithm::Md5), nullptr);
    EXPECT_NE(digests->makeContext(ZRMDigestAlgorithm::Sha1), nullptr);
    device.digests().setAvailable(ZRMDigestAlgorithm::Md5, true);
    EXPECT_TRUE(digests->makeContext(ZRMDigestAlgorithm::Md5)->finish());
    device.digests().setFinishFails(true);
    EXPECT_FALSE(digests->makeContext(ZRMDigestAlgorithm::Md5)->finish());
}

TEST(ZRMSimulatedLinkLayer, FailsAtTheStepThatWasSet) {
    using Step = ZRMSimulatedLinkLayer::Step;
    ZRMSimulatedLinkLayer layer;
    layer.setAddress({1, 2, 3, 4, 5, 6});
    const auto index = layer.interfaceIndex("en0");
    ASSERT_NE(index, 0u);
    ZRMData record(*layer.recordLength(index));
    EXPECT_TRUE(layer.readRecord(index, record));
    EXPECT_EQ(record, (ZRMData{3, 'e', 'n', '0', 1, 2, 3, 4, 5, 6}));
    layer.failAt(Step::Record);
    EXPECT_FALSE(layer.readRecord(index, record));
    layer.failAt(Step::Length);
    EXPECT_FALSE(layer.recordLength(index));
    layer.failAt(Step::Index);
    EXPECT_EQ(layer.interfaceIndex("en0"), 0u);
}

TEST(ZRMSimulatedReachability, CanRefuseTargetsCallbacksAndScheduling) {
    ZRMSimulatedDevice device;
    const auto target = device.platform()->reachabilityTargets->targetForHost("a.b");
    device.reachability().setCallbacksRefused(true);
    device.reachability().setSchedulingRefused(true);
    device.reachability().setTargetsRefused(true);
    EXPECT_FALSE(target->setCallback([](std::uint32_t) {}));
    EXPECT_TRUE(target->setCallback({}));
    EXPECT_FALSE(target->schedule(device.platform()->executor->mainQueue()));
    EXPECT_EQ(device.platform()->reachabilityTargets->targetForHost("a.b"), nullptr);
}

TEST(ZRMSimulatedReachability, AHostMayHaveFlagsOfItsOwn) {
    ZRMSimulatedDevice device;
    device.reachability().setFlagsOfHost("a.b", 0);
    const auto targets = device.platform()->reachabilityTargets;
    EXPECT_EQ(targets->targetForHost("a.b")->flags(), 0u);
    EXPECT_EQ(targets->targetForHost("c.d")->flags(), ZRMReachabilityReachable);
}

TEST(ZRMSimulatedDescription, SaysWhatWasSet) {
    ZRMSimulatedDevice device;
    device.description().setSystemName("iOS");
    device.description().setSystemVersion(std::nullopt);
    device.locale().setTimeZoneIdentifier("UTC");
    device.locale().setLocaleIdentifier("en_US");
    device.locationAuthorization().setStatus(4);
    device.processEnvironment().setVariable("NAME", "");
    const auto platform = device.platform();
    EXPECT_EQ(platform->device->systemName(), "iOS");
    EXPECT_FALSE(platform->device->systemVersion());
    EXPECT_EQ(platform->locale->timeZoneIdentifier(), "UTC");
    EXPECT_EQ(platform->locale->localeIdentifier(), "en_US");
    EXPECT_EQ(platform->locationAuthorization->status(), 4);
    EXPECT_EQ(platform->processEnvironment->variable("NAME"), "");
    device.processEnvironment().setVariable("NAME", std::nullopt);
    EXPECT_FALSE(platform->processEnvironment->variable("NAME"));
}

TEST(ZRMSimulatedBundles, SayWhatWasSet) {
    ZRMSimulatedDevice device;
    const auto bundle = device.platform()->mainBundle;
    EXPECT_EQ(bundle->path(), ZRMSimulatedMainBundle::kDefaultPath);
    device.mainBundle().setPath("/elsewhere/Other.app");
    device.mainBundle().setIdentifier(std::nullopt);
    device.mainBundle().setInfoText("CFBundleVersion", "9");
    EXPECT_EQ(bundle->path(), "/elsewhere/Other.app");
    EXPECT_FALSE(bundle->identifier());
    EXPECT_EQ(bundle->infoText("CFBundleVersion"), "9");
    device.mainBundle().setInfoText("CFBundleVersion", std::nullopt);
    EXPECT_FALSE(bundle->infoText("CFBundleVersion"));
}

TEST(ZRMSimulatedBundles, AResourceBundleIsThereOnceAFileIsPutIntoIt) {
    ZRMSimulatedDevice device;
    const std::string name = "ZRMMobileKitResources.bundle";
    EXPECT_FALSE(device.platform()->resourceBundles->pathForBundle(name));
    device.resourceBundles().put(name, "VelorinRootCA.crt", {1, 2});
    const auto path = device.platform()->resourceBundles->pathForBundle(name);
    ASSERT_TRUE(path);
    EXPECT_EQ(device.platform()->fileManager->readFile(*path + "/VelorinRootCA.crt").value(),
              (ZRMData{1, 2}));
}

TEST(ZRMSimulatedRsaKeys, AnswerTheStatusThatWasSet) {
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> made(EVP_RSA_gen(2048),
                                                                   &EVP_PKEY_free);
    ZRMData der(static_cast<std::size_t>(i2d_PUBKEY(made.get(), nullptr)));
    std::uint8_t* cursor = der.data();
    i2d_PUBKEY(made.get(), &cursor);
    ZRMSimulatedDevice device;
    const auto key = device.platform()->rsaKeys->publicKeyFromDer(der);
    ASSERT_NE(key, nullptr);
    device.rsaKeys().setStatus(-67808);
    ZRMData signature(key->blockSize());
    std::size_t length = 0;
    EXPECT_EQ(key->signDigest(ZRMData(32), signature, length), -67808);
    EXPECT_EQ(key->verifyDigest(ZRMData(32), signature), -67808);
    device.rsaKeys().setStatus(std::nullopt);
    EXPECT_NE(key->verifyDigest(ZRMData(32), signature), -67808);
}
