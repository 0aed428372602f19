#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLoggerImpl.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMCloudKit/ZRMMemoryLoggerMonitor.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

constexpr std::int64_t kLimit = 100;
constexpr double kInterval = 20;

class ZRMMemoryLoggerMonitorTest : public testing::Test {
  protected:
    void SetUp() override { logger_->setLogLevel(kZRMLogLevelVerbose); }

    // The message of each line handed over, one list a call.
    void start() {
        monitor_->startWithNotifyBlock([this](const std::vector<std::string>& logs) {
            std::vector<std::string> messages;
            for (const auto& line : logs) {
                messages.push_back(line.substr(line.rfind("] ") + 2));
            }
            notified_.push_back(std::move(messages));
            queueOfLast_ =
                device_.platform()->executor->mainQueue()->isCurrent() ? "main" : "other";
        });
    }
    void log(const std::string& text) { logger_->logMessage(text, kZRMLogLevelVerbose); }
    static std::string big() { return std::string(kLimit, 'x'); }

    ZRMSimulatedDevice device_;
    std::shared_ptr<ZRMMemoryLoggerImpl> logger_ = std::make_shared<ZRMMemoryLoggerImpl>(
        device_.platform()->consoleLog, device_.platform()->clock, device_.platform()->executor);
    std::shared_ptr<ZRMMemoryLoggerMonitor> monitor_ =
        ZRMMemoryLoggerMonitor::initWithMemoryLoggger(logger_, kLimit, kInterval,
                                                      device_.platform()->executor);
    std::vector<std::vector<std::string>> notified_;
    std::string queueOfLast_;
};

using Notified = std::vector<std::vector<std::string>>;

}  // namespace

TEST_F(ZRMMemoryLoggerMonitorTest, HandsOverTheLinesAfterEachInterval) {
    start();
    log("one");
    device_.advanceBy(kInterval - 0.001);
    EXPECT_THAT(notified_, testing::IsEmpty());
    device_.advanceBy(0.001);
    EXPECT_EQ(notified_, (Notified{{"one"}}));
    log("two");
    device_.advanceBy(kInterval);
    EXPECT_EQ(notified_, (Notified{{"one"}, {"two"}}));
    EXPECT_EQ(logger_->logsSizeInBytes(), 0);
}

TEST_F(ZRMMemoryLoggerMonitorTest, CallsBackAfterAnIntervalEvenWithoutLines) {
    start();
    device_.advanceBy(2 * kInterval);
    EXPECT_EQ(notified_, (Notified{{}, {}}));
}

TEST_F(ZRMMemoryLoggerMonitorTest, LimitReachedBeforeTheStartIsHandedOverAtTheStart) {
    log(big());
    start();
    EXPECT_EQ(notified_, (Notified{{big()}}));
    device_.advanceBy(kInterval);
    EXPECT_EQ(notified_.size(), 2u);
}

TEST_F(ZRMMemoryLoggerMonitorTest, LinesBelowTheLimitWaitAtTheStart) {
    log("one");
    start();
    EXPECT_THAT(notified_, testing::IsEmpty());
}

TEST_F(ZRMMemoryLoggerMonitorTest, LineThatReachesTheLimitIsHandedOverAtOnceWithThoseBeforeIt) {
    start();
    log("one");
    EXPECT_THAT(notified_, testing::IsEmpty());
    log(big());
    EXPECT_EQ(notified_, (Notified{{"one", big()}}));
    EXPECT_EQ(logger_->logsSizeInBytes(), 0);
}

TEST_F(ZRMMemoryLoggerMonitorTest, LimitIsReachedAtExactlyThatManyBytes) {
    log("");
    const auto prefix = logger_->logsSizeInBytes();
    logger_->clean();
    start();
    log(std::string(static_cast<std::size_t>(kLimit - prefix - 1), 'x'));
    EXPECT_THAT(notified_, testing::IsEmpty());
    logger_->clean();
    log(std::string(static_cast<std::size_t>(kLimit - prefix), 'x'));
    EXPECT_EQ(notified_.size(), 1u);
}

TEST_F(ZRMMemoryLoggerMonitorTest, IntervalBeginsAnewAfterTheLimitWasReached) {
    start();
    device_.advanceBy(15);
    log(big());
    EXPECT_EQ(notified_.size(), 1u);
    device_.advanceBy(15);
    EXPECT_EQ(notified_.size(), 1u);
    device_.advanceBy(5);
    EXPECT_EQ(notified_.size(), 2u);
}

TEST_F(ZRMMemoryLoggerMonitorTest, TimerStaysOnTheRunLoopItWasStartedOn) {
    const auto executor = device_.platform()->executor;
    executor->mainQueue()->post([this] { start(); });
    device_.runUntilIdle();
    const auto queue = executor->makeSerialQueue("other", ZRMQualityOfService::Default);
    queue->post([this] { log(big()); });
    device_.runUntilIdle();
    EXPECT_EQ(queueOfLast_, "other");
    device_.advanceBy(kInterval);
    EXPECT_EQ(notified_.size(), 2u);
    EXPECT_EQ(queueOfLast_, "main");
}

TEST_F(ZRMMemoryLoggerMonitorTest, NothingIsHandedOverAfterStop) {
    start();
    monitor_->stop();
    log(big());
    device_.advanceBy(5 * kInterval);
    EXPECT_THAT(notified_, testing::IsEmpty());
    EXPECT_EQ(logger_->logs().size(), 1u);
    EXPECT_EQ(device_.console().text(), "");
}

TEST_F(ZRMMemoryLoggerMonitorTest, CanBeStartedAgainAfterStop) {
    start();
    monitor_->stop();
    start();
    device_.advanceBy(kInterval);
    EXPECT_EQ(notified_.size(), 1u);
}

TEST_F(ZRMMemoryLoggerMonitorTest, EndsWithItsOwner) {
    start();
    monitor_.reset();
    log(big());
    device_.advanceBy(5 * kInterval);
    EXPECT_THAT(notified_, testing::IsEmpty());
}

TEST_F(ZRMMemoryLoggerMonitorTest, LinesLoggedByTheCallbackAreKeptForTheNextCall) {
    monitor_->startWithNotifyBlock([this](const std::vector<std::string>& logs) {
        notified_.push_back(logs);
        log("from the callback");
    });
    log(big());
    EXPECT_EQ(notified_.size(), 1u);
    device_.advanceBy(kInterval);
    ASSERT_EQ(notified_.size(), 2u);
    EXPECT_EQ(notified_[1].size(), 1u);
}
