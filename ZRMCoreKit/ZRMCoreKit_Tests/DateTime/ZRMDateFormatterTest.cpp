#include <limits>
#include <mutex>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMDateFormatter.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMNumericDatePattern.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

namespace {

constexpr const char* kEventPattern = "yyyy-MM-dd HH:mm:ss.SSSSSS";

std::string written(double secondsSince1970, const char* timeZone = "UTC",
                    const char* pattern = kEventPattern) {
    return ZRMDateFormatter(pattern, timeZone, "en_US_POSIX").stringFromDate({secondsSince1970});
}

// The same moment through ICU alone: an unquoted field that the fast way does not know is cut off.
std::string writtenByIcu(double secondsSince1970) {
    const ZRMDateFormatter formatter(std::string("G") + kEventPattern, "UTC", "en_US_POSIX");
    return formatter.stringFromDate({secondsSince1970}).substr(2);  // after "AD"
}

}  // namespace

TEST(ZRMDateFormatter, WritesMillisecondsAndZeros) {
    EXPECT_EQ(written(1709622489.123), "2024-03-05 07:08:09.123000");
    EXPECT_EQ(written(1709622489.123999), "2024-03-05 07:08:09.123000");
    EXPECT_EQ(written(1709622489.9999999), "2024-03-05 07:08:10.000000");
    EXPECT_EQ(written(0), "1970-01-01 00:00:00.000000");
    EXPECT_EQ(written(-0.001), "1969-12-31 23:59:59.999000");
}

TEST(ZRMDateFormatter, TheFastWayAgreesWithIcu) {
    for (const double seconds :
         {0.0, -1.0, 1709622489.123, 951782400.0, 4107542400.5, -12212553600.0, 253402300799.999,
          -12219292800.0, 1e9 + 0.25, 68169600.0, 1e10}) {
        EXPECT_EQ(written(seconds), writtenByIcu(seconds)) << seconds;
    }
    for (int day = 0; day < 40000; day += 13) {
        const auto seconds = day * 86400.0 + day;
        ASSERT_EQ(written(seconds), writtenByIcu(seconds)) << seconds;
    }
}

TEST(ZRMDateFormatter, OnlyNumbersAndClosedQuotesGoTheFastWay) {
    EXPECT_TRUE(ZRMNumericDatePattern::fromPattern("yyyy-MM-dd'T'HH:mm:ss.SSS"));
    for (const auto* pattern : {"HH 'open", "EE", "MMM", "yy", "G"}) {
        EXPECT_FALSE(ZRMNumericDatePattern::fromPattern(pattern)) << pattern;
    }
}

TEST(ZRMDateFormatter, WritesYearsOutsideTheFastWay) {
    EXPECT_EQ(written(253402300800), "10000-01-01 00:00:00.000000");
    EXPECT_EQ(written(-30000000000), "1019-04-28 18:40:00.000000");  // Julian before 1582
}

TEST(ZRMDateFormatter, WritesInItsTimeZone) {
    EXPECT_EQ(written(1709622489, "Europe/Vienna"), "2024-03-05 08:08:09.000000");
    EXPECT_EQ(written(1720000000, "Europe/Vienna"), "2024-07-03 11:46:40.000000");
    EXPECT_EQ(written(1709622489, "Nowhere/Land"), "2024-03-05 07:08:09.000000");
}

TEST(ZRMDateFormatter, WritesItsPattern) {
    EXPECT_EQ(written(1709622489, "UTC", "yyyyMMdd'T'HHmmss"), "20240305T070809");
    EXPECT_EQ(written(1709622489.456, "UTC", "ss.S|SS|SSS|SSSS"), "09.4|45|456|4560");
    EXPECT_EQ(written(1709622489, "UTC", "'it''s' HH ''mm"), "it's 07 '08");
    EXPECT_EQ(written(1709622489, "UTC", "EEE, dd MMM yyyy HH:mm:ss zzz"),
              "Tue, 05 Mar 2024 07:08:09 UTC");
    EXPECT_EQ(written(1709622489, "UTC", "M/d/yy H"), "3/5/24 7");
    EXPECT_EQ(written(1709622489, "UTC", ""), "");
}

TEST(ZRMDateFormatter, WritesTheDigitsOfItsLocale) {
    EXPECT_EQ(ZRMDateFormatter("yyyy", "UTC", "ar_EG").stringFromDate({1709622489}), "٢٠٢٤");
}

TEST(ZRMDateFormatter, TheCalendarIsGregorianInEveryLocale) {
    EXPECT_EQ(
        ZRMDateFormatter("yyyy", "UTC", "th_TH@calendar=buddhist").stringFromDate({1709622489}),
        "2024");
}

TEST(ZRMDateFormatter, ADateThatIsNoneIsEmpty) {
    EXPECT_EQ(written(std::numeric_limits<double>::quiet_NaN()), "");
    EXPECT_EQ(written(std::numeric_limits<double>::infinity()), "");
    EXPECT_EQ(written(-std::numeric_limits<double>::infinity()), "");
    EXPECT_EQ(written(1e300), "");
    EXPECT_NE(written(1e14), "");
}

TEST(ZRMDateFormatter, ReadsBackWhatItWrote) {
    const ZRMDateFormatter formatter(kEventPattern, "UTC", "en_US_POSIX");
    for (const double seconds : {0.0, -1.5, 1709622489.123, 253402300799.999}) {
        const auto read = formatter.dateFromString(formatter.stringFromDate({seconds}));
        ASSERT_TRUE(read);
        EXPECT_NEAR(read->secondsSince1970, seconds, 1e-6);
    }
}

TEST(ZRMDateFormatter, ReadsTheWholeTextOrNothing) {
    const ZRMDateFormatter formatter("yyyy-MM-dd", "UTC", "en_US_POSIX");
    EXPECT_EQ(formatter.dateFromString("2024-03-05"), ZRMDate{1709596800});
    for (const auto* text : {"", "2024-03-05x", "2024-03-05 ", "2024-13-05", "2024-02-30",
                             "2024-03", "x", "\xFF", "2024-03-05\xFF"}) {
        EXPECT_FALSE(formatter.dateFromString(text)) << text;
    }
}

TEST(ZRMDateFormatter, APatternThatIsNoneWritesAndReadsNothing) {
    const ZRMDateFormatter formatter("yyyy-bbbbbbbbbbbbbbb-'", "UTC", "en_US_POSIX");
    EXPECT_EQ(formatter.dateFromString("2024"), std::nullopt);
}

TEST(ZRMDateFormatter, ALocaleWithDigitsThatNobodyKnowsWritesAndReadsNothing) {
    const ZRMDateFormatter formatter("yyyy", "UTC", "en_US@numbers=unknown");
    EXPECT_EQ(formatter.stringFromDate({1709622489}), "");
    EXPECT_EQ(formatter.dateFromString("2024"), std::nullopt);
}

TEST(ZRMDateFormatter, MayBeUsedFromManyThreadsAtOnce) {
    const ZRMDateFormatter formatter("EEE, dd MMM yyyy HH:mm:ss zzz", "GMT", "en_US_POSIX");
    const auto executor = zrm_makeDefaultPlatform()->executor;
    const auto queue = executor->concurrentQueue(ZRMQualityOfService::Default);
    const auto finished = executor->makeCondition();
    int mistakes = 0;
    int running = 4;
    for (int task = 0; task < 4; ++task) {
        queue->post([&, task] {
            int ownMistakes = 0;
            for (int turn = 0; turn < 300; ++turn) {
                const ZRMDate date{86400.0 * (task * 1000 + turn)};
                ownMistakes += formatter.dateFromString(formatter.stringFromDate(date)) != date;
            }
            const std::lock_guard lock(*finished);
            mistakes += ownMistakes;
            --running;
            finished->signal();
        });
    }
    const std::lock_guard lock(*finished);
    while (running > 0) {
        finished->waitUntil({4102444800});  // the year 2100
    }
    EXPECT_EQ(mistakes, 0);
}
