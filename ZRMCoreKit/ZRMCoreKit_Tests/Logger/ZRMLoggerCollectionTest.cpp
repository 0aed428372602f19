#include <thread>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ConsoleLogger/ZRMConsoleLoggerFactory.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ConsoleLogger/ZRMConsoleLoggerImpl.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/FileLogger/ZRMFileLoggerFactory.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/FileLogger/ZRMFileLoggerImpl.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLoggerFactory.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLoggerImpl.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLoggerCollection.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using Received = std::vector<std::pair<std::string, ZRMLogLevel>>;

// Writes down what it is passed, filtered by level as every logger does, with its own name.
class FakeLogger final : public ZRMLogger {
  public:
    FakeLogger(std::string name, Received& received, ZRMLogLevel level = kZRMLogLevelVerbose)
        : name_(std::move(name)), received_(received), level_(level) {}

    void logMessage(const std::string& message, ZRMLogLevel level) override {
        if (level >= level_) {
            received_.emplace_back(name_ + ":" + message, level);
        }
    }
    [[nodiscard]] ZRMLogLevel logLevel() const override { return level_; }
    void setLogLevel(ZRMLogLevel level) override { level_ = level; }

  private:
    std::string name_;
    Received& received_;
    ZRMLogLevel level_;
};

}  // namespace

TEST(ZRMLoggerCollection, PassesMessagesToEveryLoggerInOrderOfAddition) {
    Received received;
    ZRMLoggerCollection loggers;
    loggers.addLogger(std::make_shared<FakeLogger>("a", received));
    loggers.addLogger(std::make_shared<FakeLogger>("b", received));
    loggers.addLogger(std::make_shared<FakeLogger>("c", received));
    loggers.logMessage("1", kZRMLogLevelError);
    loggers.logMessage("2", kZRMLogLevelVerbose);
    EXPECT_EQ(received,
              (Received{{"a:1", 1}, {"b:1", 1}, {"c:1", 1}, {"a:2", 0}, {"b:2", 0}, {"c:2", 0}}));
}

TEST(ZRMLoggerCollection, KeepsALoggerOnceThatIsAddedTwice) {
    Received received;
    ZRMLoggerCollection loggers;
    const auto logger = std::make_shared<FakeLogger>("a", received);
    loggers.addLogger(logger);
    loggers.addLogger(logger);
    loggers.logMessage("1", kZRMLogLevelError);
    EXPECT_EQ(received, (Received{{"a:1", 1}}));
}

TEST(ZRMLoggerCollection, TakesNoAbsentLogger) {
    ZRMLoggerCollection loggers;
    loggers.addLogger(nullptr);
    EXPECT_FALSE(loggers.accepts(kZRMLogLevelError));
    loggers.logMessage("1", kZRMLogLevelError);
}

TEST(ZRMLoggerCollection, LoggersSeeTheLinesOfAllThreadsInOneOrder) {
    constexpr int kThreads = 4;
    constexpr int kLines = 500;
    Received first;
    Received second;
    ZRMLoggerCollection loggers;
    loggers.addLogger(std::make_shared<FakeLogger>("x", first));
    loggers.addLogger(std::make_shared<FakeLogger>("x", second));
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&loggers, thread] {
            for (int line = 0; line < kLines; ++line) {
                loggers.logMessage(std::to_string(thread * kLines + line), kZRMLogLevelError);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(first.size(), static_cast<std::size_t>(kThreads * kLines));
    EXPECT_EQ(first, second);
}

TEST(ZRMLoggerCollection, PassesOverTheExcludedLogger) {
    Received received;
    ZRMLoggerCollection loggers;
    const auto excluded = std::make_shared<FakeLogger>("a", received);
    loggers.addLogger(excluded);
    loggers.addLogger(std::make_shared<FakeLogger>("b", received));
    loggers.logMessage("1", kZRMLogLevelError, excluded.get());
    EXPECT_EQ(received, (Received{{"b:1", 1}}));
}

TEST(ZRMLoggerCollection, AcceptsALevelWhenSomeLoggerDoes) {
    Received received;
    ZRMLoggerCollection loggers;
    EXPECT_FALSE(loggers.accepts(kZRMLogLevelError));
    const auto logger = std::make_shared<FakeLogger>("a", received, kZRMLogLevelError);
    loggers.addLogger(logger);
    EXPECT_TRUE(loggers.accepts(kZRMLogLevelError));
    EXPECT_FALSE(loggers.accepts(kZRMLogLevelVerbose));
    loggers.addLogger(std::make_shared<FakeLogger>("b", received, kZRMLogLevelVerbose));
    EXPECT_TRUE(loggers.accepts(kZRMLogLevelVerbose));
}

TEST(ZRMLoggerCollection, SeesALoggerChangeItsLevel) {
    Received received;
    ZRMLoggerCollection loggers;
    const auto logger = std::make_shared<FakeLogger>("a", received, kZRMLogLevelError);
    loggers.addLogger(logger);
    logger->setLogLevel(kZRMLogLevelVerbose);
    EXPECT_TRUE(loggers.accepts(kZRMLogLevelVerbose));
}

TEST(ZRMLoggerCollection, LoggerMayLogThroughItExcludingItself) {
    Received received;
    ZRMLoggerCollection loggers;
    class Chatty final : public ZRMLogger {
      public:
        explicit Chatty(ZRMLoggerCollection& loggers) : loggers_(loggers) {}
        void logMessage(const std::string& message, ZRMLogLevel level) override {
            loggers_.logMessage("about " + message, level, this);
        }
        [[nodiscard]] ZRMLogLevel logLevel() const override { return kZRMLogLevelVerbose; }
        void setLogLevel(ZRMLogLevel) override {}

      private:
        ZRMLoggerCollection& loggers_;
    };
    loggers.addLogger(std::make_shared<Chatty>(loggers));
    loggers.addLogger(std::make_shared<FakeLogger>("b", received));
    loggers.logMessage("1", kZRMLogLevelError);
    EXPECT_EQ(received, (Received{{"b:about 1", 1}, {"b:1", 1}}));
}

TEST(ZRMLoggerCollection, IsSharedByAProcess) {
    ZRMSimulatedDevice device;
    const ZRMScopedPlatform installed(device);
    const auto first = ZRMLoggerCollection::sharedInstance();
    EXPECT_EQ(first, ZRMLoggerCollection::sharedInstance());
    EXPECT_FALSE(first->accepts(kZRMLogLevelError));
    device.restartProcess();
    EXPECT_NE(first, ZRMLoggerCollection::sharedInstance());
}

TEST(ZRMLoggerFactories, HandOutTheSharedLoggers) {
    ZRMSimulatedDevice device;
    const ZRMScopedPlatform installed(device);
    EXPECT_EQ(ZRMConsoleLoggerFactory::createLogger(), ZRMConsoleLoggerImpl::sharedInstance());
    EXPECT_EQ(ZRMConsoleLoggerFactory::createLogger(), ZRMConsoleLoggerFactory::createLogger());
    EXPECT_EQ(ZRMFileLoggerFactory::createLogger(), ZRMFileLoggerImpl::sharedInstance());
    EXPECT_EQ(ZRMFileLoggerFactory::createLogger(), ZRMFileLoggerFactory::createLogger());
    EXPECT_EQ(ZRMMemoryLoggerFactory::createLogger(), ZRMMemoryLoggerImpl::sharedInstance());
    EXPECT_EQ(ZRMMemoryLoggerFactory::createLogger(), ZRMMemoryLoggerFactory::createLogger());
}

TEST(ZRMLoggerFactories, LoggersBeginWithErrorsOnly) {
    ZRMSimulatedDevice device;
    const ZRMScopedPlatform installed(device);
    EXPECT_EQ(ZRMConsoleLoggerFactory::createLogger()->logLevel(), kZRMLogLevelError);
    EXPECT_EQ(ZRMFileLoggerFactory::createLogger()->logLevel(), kZRMLogLevelError);
    EXPECT_EQ(ZRMMemoryLoggerFactory::createLogger()->logLevel(), kZRMLogLevelError);
}

TEST(ZRMLog, VerboseMessageReachesNoLoggerAtDefaultLevelsAndLaterThatOneAlone) {
    ZRMSimulatedDevice device;
    const ZRMScopedPlatform installed(device);
    const auto console = ZRMConsoleLoggerFactory::createLogger();
    const auto memory = ZRMMemoryLoggerFactory::createLogger();
    ZRMLoggerCollection::sharedInstance()->addLogger(console);
    ZRMLoggerCollection::sharedInstance()->addLogger(memory);

    zrm_logVerbose(nullptr, "quiet");
    EXPECT_EQ(device.console().text(), "");
    EXPECT_TRUE(memory->logs().empty());

    memory->setLogLevel(kZRMLogLevelVerbose);
    zrm_logVerbose(nullptr, "loud");
    EXPECT_EQ(device.console().text(), "");
    ASSERT_EQ(memory->logs().size(), 1u);
    EXPECT_NE(memory->logs()[0].find("loud"), std::string::npos);
}

TEST(ZRMLog, MakesATextOnlyWhenSomeLoggerTakesIt) {
    ZRMSimulatedDevice device;
    const ZRMScopedPlatform installed(device);
    const auto console = ZRMConsoleLoggerFactory::createLogger();
    ZRMLoggerCollection::sharedInstance()->addLogger(console);
    int made = 0;
    const auto makeText = [&made] {
        ++made;
        return std::string("text");
    };
    zrm_logVerbose(nullptr, makeText);
    EXPECT_EQ(made, 0);
    console->setLogLevel(kZRMLogLevelVerbose);
    zrm_logVerbose(nullptr, makeText);
    EXPECT_EQ(made, 1);
    EXPECT_TRUE(device.console().contains("[VER] <0x0 ZRMLoggerCollectionTest.cpp:("));
}

TEST(ZRMLog, FollowsTheInstalledPlatform) {
    for (int round = 0; round < 2; ++round) {
        ZRMSimulatedDevice device;
        const ZRMScopedPlatform installed(device);
        ZRMLoggerCollection::sharedInstance()->addLogger(ZRMConsoleLoggerFactory::createLogger());
        zrm_logError(nullptr, "to this device");
        EXPECT_EQ(device.console().lines().size(), 1u);
    }
}
