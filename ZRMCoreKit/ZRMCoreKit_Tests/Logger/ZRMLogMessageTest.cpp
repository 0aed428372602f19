#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLogMessage.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

// A clock that stands still.
class StubClock final : public ZRMClock {
  public:
    explicit StubClock(double secondsSince1970) : now_{secondsSince1970} {}
    [[nodiscard]] ZRMDate now() const override { return now_; }
    [[nodiscard]] std::optional<ZRMBootTime> bootTime() const override { return std::nullopt; }
    [[nodiscard]] double uptimeSeconds() const override { return 0; }

  private:
    ZRMDate now_;
};

class ZRMLogMessageTest : public testing::Test {
  protected:
    std::string line(const std::string& message, ZRMLogLevel level) {
        return ZRMLogMessage::logForMessage(*device_.platform()->clock,
                                            *device_.platform()->executor, message, level);
    }
    std::string dateOf(double secondsSince1970) {
        const auto text = ZRMLogMessage::logForMessage(
            StubClock(secondsSince1970), *device_.platform()->executor, "", kZRMLogLevelError);
        return text.substr(1, text.find(']') - 1);
    }

    ZRMSimulatedDevice device_;
};

}  // namespace

TEST_F(ZRMLogMessageTest, HoldsDateThreadLevelAndMessageAndEndsWithALineFeed) {
    EXPECT_EQ(line("text", kZRMLogLevelError), "[2026-01-01 00:00:00 +0000] [2] [ERR] text\n");
}

TEST_F(ZRMLogMessageTest, MarksTheMainThread) {
    std::string text;
    device_.platform()->executor->mainQueue()->post(
        [&] { text = line("text", kZRMLogLevelVerbose); });
    device_.runUntilIdle();
    EXPECT_EQ(text, "[2026-01-01 00:00:00 +0000] [1:main] [VER] text\n");
}

TEST_F(ZRMLogMessageTest, DoesNotMarkAnotherQueue) {
    std::string text;
    const auto queue =
        device_.platform()->executor->makeSerialQueue("q", ZRMQualityOfService::Default);
    queue->post([&] { text = line("text", kZRMLogLevelVerbose); });
    device_.runUntilIdle();
    EXPECT_EQ(text.find(":main"), std::string::npos);
}

TEST_F(ZRMLogMessageTest, LevelsWithoutANameAreNotAvailable) {
    EXPECT_NE(line("text", 2).find("] [N/A] text"), std::string::npos);
    EXPECT_NE(line("text", -1).find("] [N/A] text"), std::string::npos);
}

TEST_F(ZRMLogMessageTest, DateIsInUtcWithFractionsCut) {
    EXPECT_EQ(dateOf(1709622489.999), "2024-03-05 07:08:09 +0000");
    EXPECT_EQ(dateOf(0), "1970-01-01 00:00:00 +0000");
    EXPECT_EQ(dateOf(-0.5), "1969-12-31 23:59:59 +0000");
    EXPECT_EQ(dateOf(951782400), "2000-02-29 00:00:00 +0000");
}

TEST_F(ZRMLogMessageTest, ClockFarOffStaysAReadableDate) {
    EXPECT_EQ(dateOf(1e300), "9999-12-31 23:59:59 +0000");
    EXPECT_EQ(dateOf(-1e300), "0000-01-01 00:00:00 +0000");
    EXPECT_EQ(dateOf(std::numeric_limits<double>::infinity()), "9999-12-31 23:59:59 +0000");
    EXPECT_EQ(dateOf(std::nan("")), "1970-01-01 00:00:00 +0000");
}

TEST(ZRMLogText, NamesObjectFileAndLine) {
    const int object = 0;
    const auto text = zrm_logText(&object, "/a/b/NSData+ZRMCoreKit.cpp", 42, "what");
    EXPECT_EQ(text.rfind("<0x", 0), 0u);
    EXPECT_NE(text.find(" NSData+ZRMCoreKit.cpp:(42)> what"), std::string::npos);
    EXPECT_EQ(zrm_logText(nullptr, "File.cpp", 1, "x"), "<0x0 File.cpp:(1)> x");
}
