#include <filesystem>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "ZRMPlatform/HostFed/ZRMHostSignals.h"
#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"
#include "ZRMPlatform/Linux/ZRMLinuxUserDefaults.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

bool isLoaded(const char* library) {
    return ::dlopen(library, RTLD_LAZY | RTLD_NOLOAD) != nullptr;
}

}  // namespace

TEST(ZRMLinuxPlatform, EveryPortIsPresent) {
    const auto platform = zrm_makeLinuxPlatform({});
    EXPECT_TRUE(platform->executor);
    EXPECT_TRUE(platform->clock);
    EXPECT_TRUE(platform->urlSessions);
    EXPECT_TRUE(platform->digests);
    EXPECT_TRUE(platform->rsaKeys);
    EXPECT_TRUE(platform->trust);
    EXPECT_TRUE(platform->fileManager);
    EXPECT_TRUE(platform->directories);
    EXPECT_TRUE(platform->userDefaults);
    EXPECT_TRUE(platform->keyedArchiver);
    EXPECT_TRUE(platform->keychainItems);
    EXPECT_TRUE(platform->mainBundle);
    EXPECT_TRUE(platform->resourceBundles);
    EXPECT_TRUE(platform->reachabilityTargets);
    EXPECT_TRUE(platform->device);
    EXPECT_TRUE(platform->linkLayer);
    EXPECT_TRUE(platform->locale);
    EXPECT_TRUE(platform->locationAuthorization);
    EXPECT_TRUE(platform->locationServices);
    EXPECT_TRUE(platform->calls);
    EXPECT_TRUE(platform->notifications);
    EXPECT_TRUE(platform->localAuthentication);
    EXPECT_TRUE(platform->screens);
    EXPECT_TRUE(platform->networkInterfaces);
    EXPECT_TRUE(platform->wifi);
    EXPECT_TRUE(platform->processInformation);
    EXPECT_TRUE(platform->power);
    EXPECT_TRUE(platform->carriers);
    EXPECT_TRUE(platform->volumes);
    EXPECT_TRUE(platform->kernelValues);
    EXPECT_TRUE(platform->processEnvironment);
    EXPECT_TRUE(platform->loader);
    EXPECT_TRUE(platform->fileAccess);
    EXPECT_TRUE(platform->urlOpener);
    EXPECT_TRUE(platform->commandProcessor);
    EXPECT_TRUE(platform->consoleLog);
    EXPECT_TRUE(platform->random);
    EXPECT_TRUE(platform->instances);
}

TEST(ZRMLinuxPlatform, AHomeHoldsDefaultsAndSecretsAndNeedsNoSecretService) {
    const ZRMTestDirectory home;
    const auto platform = zrm_makeLinuxPlatform({.homeDirectory = home.path()});
    platform->userDefaults->openSuite("com.example.suite")->setDouble("key", 1);
    ZRMLinuxUserDefaults::synchronize();
    EXPECT_TRUE(std::filesystem::exists(home.below("Library/Preferences/com.example.suite.plist")));
    ZRMKeychainQuery query;
    query.account = "account";
    EXPECT_EQ(platform->keychainItems->add(query, {1}), ZRMKeychainSuccess);
    EXPECT_TRUE(std::filesystem::exists(home.below("Library/Keychains/zrm-keychain.plist")));
    EXPECT_EQ(platform->directories->documents(), home.below("Documents"));
    EXPECT_TRUE(isLoaded("libcurl.so.4"));
    EXPECT_FALSE(isLoaded("libsecret-1.so.0"));
    EXPECT_FALSE(isLoaded("libglib-2.0.so.0"));
}

TEST(ZRMLinuxPlatform, TheDirectoriesOfTheHostAreTaken) {
    const ZRMTestDirectory host;
    host.writeFile("res/My.bundle/file", "");
    host.writeFile("app/Info.plist", "");
    const auto platform = zrm_makeLinuxPlatform(
        {.resourcesDirectory = host.below("res"), .bundleDirectory = host.below("app")});
    EXPECT_EQ(platform->resourceBundles->pathForBundle("My.bundle"), host.below("res/My.bundle"));
    EXPECT_EQ(platform->mainBundle->path(), host.below("app"));
}

TEST(ZRMLinuxPlatform, ApplicationsOfOneMakerShareTheIdentifierForTheVendor) {
    const ZRMTestDirectory host;
    const auto identifierOf = [&host](const std::string& bundle) {
        host.writeFile("Info.plist",
                       "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>" +
                           bundle + "</string></dict></plist>");
        return zrm_makeLinuxPlatform({.bundleDirectory = host.path()})
            ->device->identifierForVendor();
    };
    const auto bank = identifierOf("com.example.bank");
    EXPECT_EQ(identifierOf("com.example.wallet"), bank);
    // On a machine without an identifier all are absent.
    for (const char* other : {"com.other.bank", "com"}) {
        EXPECT_EQ(identifierOf(other) == bank, !bank.has_value()) << other;
    }
}

TEST(ZRMLinuxPlatform, TheHostsMainQueueIsTheMainQueue) {
    const auto queue =
        zrm_makeLinuxPlatform({})->executor->makeSerialQueue("host", ZRMQualityOfService::Default);
    EXPECT_EQ(zrm_makeLinuxPlatform({.mainQueue = queue})->executor->mainQueue(), queue);
}

TEST(ZRMLinuxPlatform, WhatTheHostTellsTheProcessIsHeardUnlessOtherSignalsAreGiven) {
    const auto own = std::make_shared<ZRMHostSignals>();
    const auto platform = zrm_makeLinuxPlatform({});
    const auto other = zrm_makeLinuxPlatform({.hostSignals = own});
    ZRMHostSignals::shared()->calls.update({.uuid = "shared"});
    own->calls.update({.uuid = "own"});
    ASSERT_EQ(platform->calls->calls().size(), 1u);
    EXPECT_EQ(platform->calls->calls().front().uuid, "shared");
    ASSERT_EQ(other->calls->calls().size(), 1u);
    EXPECT_EQ(other->calls->calls().front().uuid, "own");
    ZRMHostSignals::shared()->calls.update({.uuid = "shared", .hasEnded = true});
}
