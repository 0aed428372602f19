#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ConsoleLogger/ZRMConsoleLoggerImpl.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

class ZRMConsoleLoggerImplTest : public testing::Test {
  protected:
    ZRMSimulatedDevice device_;
    ZRMConsoleLoggerImpl logger_{device_.platform()->consoleLog, device_.platform()->clock,
                                 device_.platform()->executor};
};

}  // namespace

TEST_F(ZRMConsoleLoggerImplTest, WritesTheLineOfAnAcceptedMessage) {
    logger_.logMessage("100 % text", kZRMLogLevelError);
    EXPECT_EQ(device_.console().text(), "[2026-01-01 00:00:00 +0000] [2] [ERR] 100 % text\n");
}

TEST_F(ZRMConsoleLoggerImplTest, AcceptsMessagesAtOrAboveItsLevel) {
    logger_.logMessage("verbose", kZRMLogLevelVerbose);
    EXPECT_EQ(device_.console().text(), "");
    logger_.setLogLevel(kZRMLogLevelVerbose);
    logger_.logMessage("verbose", kZRMLogLevelVerbose);
    logger_.logMessage("above", 7);
    EXPECT_EQ(device_.console().lines().size(), 2u);
    logger_.setLogLevel(8);
    logger_.logMessage("below", 7);
    EXPECT_EQ(device_.console().lines().size(), 2u);
}

TEST_F(ZRMConsoleLoggerImplTest, BeginsWithTheLevelItIsGiven) {
    EXPECT_EQ(logger_.logLevel(), kZRMLogLevelError);
    const ZRMConsoleLoggerImpl verbose(device_.platform()->consoleLog, device_.platform()->clock,
                                       device_.platform()->executor, kZRMLogLevelVerbose);
    EXPECT_EQ(verbose.logLevel(), kZRMLogLevelVerbose);
}
