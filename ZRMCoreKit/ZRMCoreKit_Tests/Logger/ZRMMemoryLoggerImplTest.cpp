#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLoggerImpl.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

constexpr const char* kPrefix = "[2026-01-01 00:00:00 +0000] [2] [ERR] ";

class FakeObserver final : public ZRMMemoryLoggerObserver {
  public:
    std::vector<std::string> received;
    std::function<void(ZRMMemoryLogger&)> reaction;

    void memoryLogger(ZRMMemoryLogger& logger, const std::string& didReceiveLog) override {
        received.push_back(didReceiveLog);
        if (reaction) {
            reaction(logger);
        }
    }
};

class ZRMMemoryLoggerImplTest : public testing::Test {
  protected:
    void log(const std::string& text) { logger_.logMessage(text, kZRMLogLevelError); }

    ZRMSimulatedDevice device_;
    ZRMMemoryLoggerImpl logger_{device_.platform()->consoleLog, device_.platform()->clock,
                                device_.platform()->executor};
};

// Ports that hold still and may be used by several threads.
class StillClock final : public ZRMClock {
  public:
    [[nodiscard]] ZRMDate now() const override { return {}; }
    [[nodiscard]] std::optional<ZRMBootTime> bootTime() const override { return std::nullopt; }
    [[nodiscard]] double uptimeSeconds() const override { return 0; }
};

}  // namespace

TEST_F(ZRMMemoryLoggerImplTest, BeginsEmptyWithErrorsOnly) {
    EXPECT_EQ(logger_.logLevel(), kZRMLogLevelError);
    EXPECT_THAT(logger_.logs(), testing::IsEmpty());
    EXPECT_EQ(logger_.logsSizeInBytes(), 0);
}

TEST_F(ZRMMemoryLoggerImplTest, KeepsLinesWithoutLineFeedOldestFirst) {
    log("one");
    log("two");
    EXPECT_EQ(logger_.logs(), (std::vector<std::string>{std::string(kPrefix) + "one",
                                                        std::string(kPrefix) + "two"}));
}

TEST_F(ZRMMemoryLoggerImplTest, PassesOverWhatIsBelowItsLevel) {
    logger_.logMessage("verbose", kZRMLogLevelVerbose);
    EXPECT_THAT(logger_.logs(), testing::IsEmpty());
    EXPECT_EQ(logger_.logsSizeInBytes(), 0);
    logger_.setLogLevel(kZRMLogLevelVerbose);
    logger_.logMessage("verbose", kZRMLogLevelVerbose);
    EXPECT_EQ(logger_.logs().size(), 1u);
}

TEST_F(ZRMMemoryLoggerImplTest, TrimsControlCharactersAtTheEnds) {
    log("text\r\n\x07\xE2\x80\x8B");  // ends with the format character U+200B
    EXPECT_EQ(logger_.logs().at(0), std::string(kPrefix) + "text");
    log("in\nside");
    EXPECT_EQ(logger_.logs().at(1), std::string(kPrefix) + "in\nside");
}

TEST_F(ZRMMemoryLoggerImplTest, SizeGrowsByUtf8BytesOfTheTrimmedLine) {
    log("a");
    const auto prefixLength = static_cast<std::int64_t>(std::string(kPrefix).size());
    EXPECT_EQ(logger_.logsSizeInBytes(), prefixLength + 1);
    log("\xE2\x82\xAC");  // one character, three bytes
    EXPECT_EQ(logger_.logsSizeInBytes(), 2 * prefixLength + 4);
}

TEST_F(ZRMMemoryLoggerImplTest, CleanForgetsLinesAndSize) {
    log("a");
    logger_.clean();
    EXPECT_THAT(logger_.logs(), testing::IsEmpty());
    EXPECT_EQ(logger_.logsSizeInBytes(), 0);
    log("b");
    EXPECT_EQ(logger_.logs().size(), 1u);
}

TEST_F(ZRMMemoryLoggerImplTest, TakeReturnsTheLinesAndForgetsThem) {
    log("a");
    EXPECT_EQ(logger_.takeLogs(), std::vector<std::string>{std::string(kPrefix) + "a"});
    EXPECT_THAT(logger_.logs(), testing::IsEmpty());
    EXPECT_EQ(logger_.logsSizeInBytes(), 0);
    EXPECT_THAT(logger_.takeLogs(), testing::IsEmpty());
}

TEST_F(ZRMMemoryLoggerImplTest, TellsObserversOfEachAcceptedLineOnceItIsHeld) {
    const auto observer = std::make_shared<FakeObserver>();
    std::size_t heldThen = 0;
    observer->reaction = [&](ZRMMemoryLogger& logger) { heldThen = logger.logs().size(); };
    logger_.addObserver(observer);
    log("a");
    logger_.logMessage("verbose", kZRMLogLevelVerbose);
    EXPECT_EQ(observer->received, std::vector<std::string>{std::string(kPrefix) + "a"});
    EXPECT_EQ(heldThen, 1u);
}

TEST_F(ZRMMemoryLoggerImplTest, RemovedAndDestroyedObserversAreNotTold) {
    const auto removed = std::make_shared<FakeObserver>();
    auto destroyed = std::make_shared<FakeObserver>();
    logger_.addObserver(removed);
    logger_.addObserver(destroyed);
    logger_.removeObserver(removed.get());
    destroyed.reset();
    log("a");
    EXPECT_THAT(removed->received, testing::IsEmpty());
}

TEST_F(ZRMMemoryLoggerImplTest, DoubleAndUnknownObserversAreToldOnTheConsole) {
    const auto observer = std::make_shared<FakeObserver>();
    logger_.addObserver(observer);
    logger_.addObserver(observer);
    EXPECT_EQ(device_.console().text(),
              "<WARNING>: Attempt to add observer which had been added already\n");
    log("a");
    EXPECT_EQ(observer->received.size(), 1u);
    device_.console().clear();
    logger_.removeObserver(observer.get());
    logger_.removeObserver(observer.get());
    EXPECT_EQ(device_.console().text(),
              "<WARNING>: Attempt to remove observer which hasn't been added yet\n");
}

TEST_F(ZRMMemoryLoggerImplTest, ObserverMayTakeTheLines) {
    const auto observer = std::make_shared<FakeObserver>();
    std::vector<std::string> taken;
    observer->reaction = [&](ZRMMemoryLogger& logger) { taken = logger.takeLogs(); };
    logger_.addObserver(observer);
    log("a");
    EXPECT_EQ(taken.size(), 1u);
    EXPECT_EQ(logger_.logsSizeInBytes(), 0);
}

TEST_F(ZRMMemoryLoggerImplTest, WhatAnObserverLogsIsKeptButNotAnnounced) {
    const auto observer = std::make_shared<FakeObserver>();
    observer->reaction = [](ZRMMemoryLogger& logger) {
        logger.logMessage("echo", kZRMLogLevelError);
    };
    logger_.addObserver(observer);
    log("a");
    EXPECT_EQ(observer->received.size(), 1u);
    EXPECT_EQ(logger_.logs(), (std::vector<std::string>{std::string(kPrefix) + "a",
                                                        std::string(kPrefix) + "echo"}));
    log("b");
    EXPECT_EQ(observer->received.size(), 2u);
}

TEST_F(ZRMMemoryLoggerImplTest, NoLineIsLostBetweenLoggersAndTakers) {
    const auto real = ZRMPlatform::current();
    ZRMMemoryLoggerImpl logger(real->consoleLog, std::make_shared<StillClock>(), real->executor);
    constexpr int kThreads = 4;
    constexpr int kLines = 500;
    std::atomic<int> running = kThreads;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&] {
            for (int line = 0; line < kLines; ++line) {
                logger.logMessage("x", kZRMLogLevelError);
            }
            --running;
        });
    }
    std::size_t taken = 0;
    while (running > 0) {
        taken += logger.takeLogs().size();
    }
    for (auto& thread : threads) {
        thread.join();
    }
    taken += logger.takeLogs().size();
    EXPECT_EQ(taken, static_cast<std::size_t>(kThreads * kLines));
    EXPECT_EQ(logger.logsSizeInBytes(), 0);
}
