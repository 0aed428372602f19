#include <cerrno>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

struct Single {
    int number = 0;
};

std::shared_ptr<Single> singleOf(const ZRMPlatform& platform) {
    return platform.instances->shared<Single>([] { return std::make_shared<Single>(); });
}

const std::string kSurvivor = "/device/home/file";

void makeHome(ZRMSimulatedDevice& device) {
    ASSERT_FALSE(device.platform()->fileManager->createDirectory("/device/home"));
}

}  // namespace

TEST(ZRMSimulatedProcess, RestartDropsTasksTimersAndExchanges) {
    ZRMSimulatedDevice device;
    bool ran = false;
    const auto platform = device.platform();
    platform->executor->mainQueue()->post([&] { ran = true; });
    platform->executor->mainQueue()->postAfter(1, [&] { ran = true; });
    platform->executor->mainQueue()->postEvery(1, [&] { ran = true; });
    const auto session = platform->urlSessions->makeSession({});
    session->start({.url = "https://risk.example.com/stat"}, [&](auto) { ran = true; });
    device.restartProcess();
    device.advanceBy(100);
    EXPECT_FALSE(ran);
}

TEST(ZRMSimulatedProcess, RestartFreesWhatDroppedTasksOwned) {
    ZRMSimulatedDevice device;
    const auto owned = std::make_shared<int>(1);
    const auto queue = device.platform()->executor->mainQueue();
    queue->post([owned] {});
    queue->post([owned] {});
    const auto handle = queue->postAfter(1, [owned] {});
    const auto session = device.platform()->urlSessions->makeSession({});
    session->start({.url = "https://risk.example.com/"}, [owned](auto) {});
    device.restartProcess();
    queue->post([owned] {});
    EXPECT_EQ(owned.use_count(), 2) << "the exchange's completion lives as long as its session";
}

TEST(ZRMSimulatedProcess, RestartMakesNewSingleInstances) {
    ZRMSimulatedDevice device;
    singleOf(*device.platform())->number = 7;
    const std::weak_ptr<Single> old = singleOf(*device.platform());
    EXPECT_EQ(old.lock()->number, 7);
    device.restartProcess();
    EXPECT_TRUE(old.expired());
    EXPECT_EQ(singleOf(*device.platform())->number, 0);
}

TEST(ZRMSimulatedProcess, RestartKeepsClockDiskKeychainDefaultsConsoleAndNetworkRecord) {
    ZRMSimulatedDevice device;
    device.advanceBy(5);
    const ZRMDate now = device.now();
    makeHome(device);
    const auto platform = device.platform();
    EXPECT_FALSE(platform->fileManager->writeFileAtomically(kSurvivor, {1, 2}));
    EXPECT_EQ(platform->keychainItems->add({.account = "tag"}, {3}), 0);
    platform->userDefaults->openSuite("suite")->setDouble("key", 4);
    platform->consoleLog->write("line\n");
    const auto session = platform->urlSessions->makeSession({});
    session->start({.url = "https://risk.example.com/stat"}, [](auto) {});
    device.restartProcess();
    EXPECT_EQ(device.now(), now);
    const auto again = device.platform();
    EXPECT_EQ(again->fileManager->readFile(kSurvivor).value(), (ZRMData{1, 2}));
    ZRMData value;
    EXPECT_EQ(again->keychainItems->copyMatching({.account = "tag"}, value), 0);
    EXPECT_EQ(value, ZRMData{3});
    EXPECT_EQ(again->userDefaults->openSuite("suite")->doubleForKey("key"), 4);
    EXPECT_TRUE(device.console().contains("line"));
    EXPECT_EQ(device.network().requestsTo("/stat").size(), 1u);
}

TEST(ZRMSimulatedProcess, TheOldProcessCanDoNothingAfterARestart) {
    ZRMSimulatedDevice device;
    makeHome(device);
    const auto old = device.platform();
    ASSERT_FALSE(old->fileManager->writeFileAtomically(kSurvivor, {1}));
    auto handle = old->fileManager->openForUpdating(kSurvivor);
    ASSERT_TRUE(handle);
    device.restartProcess();
    EXPECT_EQ(old->fileManager->writeFileAtomically(kSurvivor, {2})->code(), EIO);
    EXPECT_EQ(handle.value()->write(ZRMData{3})->code(), EIO);
    EXPECT_FALSE(old->fileManager->fileExists(kSurvivor));
    EXPECT_EQ(old->keychainItems->add({.account = "a"}, {1}), ZRMKeychainNotAvailable);
    old->userDefaults->openSuite("suite")->setDouble("key", 4);
    old->consoleLog->write("ghost");
    bool ran = false;
    old->executor->mainQueue()->post([&] { ran = true; });
    device.advanceBy(1);
    EXPECT_FALSE(ran);
    EXPECT_EQ(device.disk().bytesOf(kSurvivor), ZRMData{1});
    EXPECT_TRUE(device.keychain().items().empty());
    EXPECT_TRUE(device.userDefaults().suites().empty());
    EXPECT_FALSE(device.console().contains("ghost"));
}

TEST(ZRMSimulatedProcess, AKilledTaskFinishesWithoutEffectAndNothingRunsAfterIt) {
    ZRMSimulatedDevice device;
    makeHome(device);
    const auto platform = device.platform();
    bool later = false;
    platform->executor->mainQueue()->post([&] {
        device.killProcess();
        EXPECT_TRUE(platform->fileManager->createFile(kSurvivor));
    });
    platform->executor->mainQueue()->post([&] { later = true; });
    device.runUntilIdle();
    EXPECT_FALSE(device.isProcessAlive());
    EXPECT_FALSE(later);
    EXPECT_FALSE(device.disk().holdsFile(kSurvivor));
    device.restartProcess();
    EXPECT_TRUE(device.isProcessAlive());
}

TEST(ZRMSimulatedProcess, AWaitInAKilledProcessUnwindsItsTask) {
    ZRMSimulatedDevice device;
    const auto platform = device.platform();
    const auto condition = platform->executor->makeCondition();
    bool wentOn = false;
    platform->executor->mainQueue()->post([&] {
        condition->lock();
        condition->waitUntil(device.now().addingSeconds(100));
        wentOn = true;
    });
    platform->executor->concurrentQueue(ZRMQualityOfService::Default)->post([&] {
        device.killProcess();
    });
    device.advanceBy(200);
    EXPECT_FALSE(wentOn);
    EXPECT_FALSE(device.isProcessAlive());
}

TEST(ZRMSimulatedProcess, KillsAtTheDiskOperationOfThatNumber) {
    ZRMSimulatedDevice device;
    makeHome(device);
    device.killAtDiskOperation(device.disk().faults().operationCount() + 3);
    const auto manager = device.platform()->fileManager;
    EXPECT_FALSE(manager->createFile(kSurvivor + "1"));
    EXPECT_FALSE(manager->createFile(kSurvivor + "2"));
    EXPECT_TRUE(manager->createFile(kSurvivor + "3"));
    EXPECT_FALSE(device.isProcessAlive());
    EXPECT_EQ(device.disk().filesBelow("/device/home").size(), 2u);
}

TEST(ZRMSimulatedProcess, ARebootStartsTheUptimeAgainAndKeepsTheWallClock) {
    ZRMSimulatedDevice device;
    const ZRMDate now = device.now();
    device.reboot();
    EXPECT_EQ(device.platform()->clock->uptimeSeconds(), 0);
    EXPECT_EQ(device.now(), now);
    EXPECT_EQ(static_cast<double>(device.platform()->clock->bootTime()->seconds),
              now.secondsSince1970);
}

TEST(ZRMScopedPlatform, InstallsEachNewProcessAndNothingAfterIt) {
    ZRMSimulatedDevice device;
    {
        const ZRMScopedPlatform installed(device);
        EXPECT_EQ(ZRMPlatform::current(), device.platform());
        device.restartProcess();
        EXPECT_EQ(ZRMPlatform::current(), device.platform());
    }
    EXPECT_NE(ZRMPlatform::current(), device.platform());
    ZRMPlatform::install(nullptr);
}

TEST(ZRMScopedPlatform, InstallsAGivenPlatform) {
    const auto platform = std::make_shared<const ZRMPlatform>();
    const ZRMScopedPlatform installed(platform);
    EXPECT_EQ(ZRMPlatform::current(), platform);
}
