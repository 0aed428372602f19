#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ConsoleLogger/ZRMConsoleLoggerFactory.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/FileLogger/ZRMFileLoggerFactory.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLoggerFactory.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMMobileKit/ZRMMobileKit_Tests/Support/ZRMServiceFixture.h"

namespace {

constexpr const char* kTraces = "/device/home/Documents/zrm-traces.log";

class ZRMMobileServiceLoggers : public ZRMServiceFixture {
  protected:
    void keepLogs(double seconds) {
        provider_->settings.logger() = ZRMLoggerSettings(true, true, seconds);
    }
    std::string traces() { return zrm_textFromData(device_.disk().bytesOf(kTraces)); }
};

}  // namespace

TEST_F(ZRMMobileServiceLoggers, ConsoleGetsTheLevelOfTheConfiguration) {
    static_cast<void>(service());
    EXPECT_EQ(ZRMConsoleLoggerFactory::createLogger()->logLevel(), kZRMLogLevelError);
    service_.reset();
    configuration_.setLogLevel(0);
    static_cast<void>(service());
    EXPECT_EQ(ZRMConsoleLoggerFactory::createLogger()->logLevel(), kZRMLogLevelVerbose);
}

TEST_F(ZRMMobileServiceLoggers, ConsoleListensFromTheConstructionOn) {
    static_cast<void>(service());
    zrm_logError(nullptr, "text");
    EXPECT_TRUE(device_.console().contains("> text"));
}

TEST_F(ZRMMobileServiceLoggers, SecondServiceAddsNoSecondConsole) {
    static_cast<void>(service());
    const auto first = service_;
    service_.reset();
    static_cast<void>(service());
    device_.console().clear();
    zrm_logError(nullptr, "text");
    EXPECT_EQ(device_.console().lines().size(), 1u);
}

TEST_F(ZRMMobileServiceLoggers, NoTraceFileByDefault) {
    activate();
    zrm_logError(nullptr, "text");
    device_.runUntilIdle();
    EXPECT_FALSE(device_.disk().holdsFile(kTraces));
}

TEST_F(ZRMMobileServiceLoggers, TraceFileIsWrittenAtTheLevelOfTheConfiguration) {
    provider_->settings.logger().setWriteLogsToFile(true);
    configuration_.setLogLevel(0);
    activate();
    device_.runUntilIdle();
    EXPECT_EQ(ZRMFileLoggerFactory::createLogger()->logLevel(), kZRMLogLevelVerbose);
    EXPECT_NE(traces().find("activation successfuly complete"), std::string::npos);
}

TEST_F(ZRMMobileServiceLoggers, TraceFileHoldsErrorsAloneByDefault) {
    provider_->settings.logger().setWriteLogsToFile(true);
    activate();
    zrm_logVerbose(nullptr, "verbose text");
    zrm_logError(nullptr, "error text");
    device_.runUntilIdle();
    EXPECT_EQ(traces().find("verbose text"), std::string::npos);
    EXPECT_NE(traces().find("error text"), std::string::npos);
}

TEST_F(ZRMMobileServiceLoggers, TracesOfEarlierRunsAreClearedUnlessKept) {
    device_.disk().put(kTraces, "old line\n");
    provider_->settings.logger().setWriteLogsToFile(true);
    activate();
    device_.runUntilIdle();
    EXPECT_TRUE(device_.disk().holdsFile(kTraces));
    EXPECT_EQ(traces(), "");
}

TEST_F(ZRMMobileServiceLoggers, KeptTracesAreAppendedTo) {
    device_.disk().put(kTraces, "old line\n");
    keepLogs(60);
    device_.advanceBy(60);
    activate();
    zrm_logError(nullptr, "new line");
    device_.runUntilIdle();
    EXPECT_EQ(traces().rfind("old line\n", 0), 0u);
    EXPECT_NE(traces().find("new line"), std::string::npos);
}

TEST_F(ZRMMobileServiceLoggers, KeptTracesAreDeletedOnceOlderThanTheInterval) {
    device_.disk().put(kTraces, "old line\n");
    keepLogs(60);
    device_.advanceBy(60.5);
    activate();
    zrm_logError(nullptr, "new line");
    device_.runUntilIdle();
    EXPECT_EQ(traces().find("old line"), std::string::npos);
    EXPECT_NE(traces().find("new line"), std::string::npos);
}

TEST_F(ZRMMobileServiceLoggers, KeptTracesWithoutACreationDateAreDeleted) {
    device_.disk().put(kTraces, "old line\n");
    keepLogs(60);
    device_.disk().faults().add(
        {.operation = ZRMSimulatedDiskOperation::Inspect, .pathPattern = kTraces, .times = 1});
    activate();
    device_.runUntilIdle();
    EXPECT_FALSE(device_.disk().holdsFile(kTraces));
}

TEST_F(ZRMMobileServiceLoggers, TracesAreLeftAloneWhenNoneAreWritten) {
    device_.disk().put(kTraces, "old line\n");
    activate();
    device_.runUntilIdle();
    EXPECT_EQ(traces(), "old line\n");
}

TEST_F(ZRMMobileServiceLoggers, MemoryLoggerIsMadeOnlyWhenTheLogIsUploaded) {
    activate();
    EXPECT_EQ(memoryLogger_, nullptr);
    zrm_logError(nullptr, "text");
    EXPECT_TRUE(ZRMMemoryLoggerFactory::createLogger()->logs().empty());
}

TEST_F(ZRMMobileServiceLoggers, MemoryLoggerIsVerboseWhateverTheConfigurationSays) {
    provider_->settings.events().enableLogDataEvent();
    activate();
    ASSERT_EQ(memoryLogger_, ZRMMemoryLoggerFactory::createLogger());
    EXPECT_EQ(memoryLogger_->logLevel(), kZRMLogLevelVerbose);
    memoryLogger_->clean();
    zrm_logVerbose(nullptr, "text");
    EXPECT_EQ(memoryLogger_->logs().size(), 1u);
}
