#include <cmath>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMDateFormatter.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMHttpDate.h"

namespace {

// Another spelling of the pattern, for which there is no way around ICU.
const ZRMDateFormatter& icu() {
    static const auto* const formatter =
        new ZRMDateFormatter("EEE, dd MMM yyyy HH:mm:ss z", "GMT", kZRMPosixLocaleIdentifier);
    return *formatter;
}

}  // namespace

TEST(ZRMHttpDateTest, ReadsTheDateThatServersWrite) {
    EXPECT_EQ(zrm_dateFromHttpDate("Tue, 14 Nov 2023 22:13:20 GMT"), ZRMDate{1700000000});
    EXPECT_EQ(zrm_dateFromHttpDate("Thu, 01 Jan 1970 00:00:00 GMT"), ZRMDate{0});
    EXPECT_EQ(zrm_dateFromHttpDate("Wed, 31 Dec 1969 23:59:59 GMT"), ZRMDate{-1});
}

TEST(ZRMHttpDateTest, ReadsEveryMonthAndDayOfTheWeek) {
    constexpr double kSecondsPerDay = 86400;
    for (int day = 0; day < 366; ++day) {
        const ZRMDate date{1704067200 + day * kSecondsPerDay};  // of the year 2024
        EXPECT_EQ(zrm_dateFromHttpDate(icu().stringFromDate(date)), date) << day;
    }
}

TEST(ZRMHttpDateTest, KnowsLeapYears) {
    EXPECT_TRUE(zrm_dateFromHttpDate("Thu, 29 Feb 2024 00:00:00 GMT"));
    EXPECT_TRUE(zrm_dateFromHttpDate("Tue, 29 Feb 2000 00:00:00 GMT"));
    EXPECT_FALSE(zrm_dateFromHttpDate("Wed, 29 Feb 2023 00:00:00 GMT"));
    EXPECT_FALSE(zrm_dateFromHttpDate("Thu, 29 Feb 2100 00:00:00 GMT"));
}

TEST(ZRMHttpDateTest, LeavesEverythingElseAlone) {
    for (const auto* const text : {
             "",
             "Tue, 14 Nov 2023 22:13:20 GMT ",
             "Tue, 14 Nov 2023 22:13:20 UTC",
             "Tue, 14 Nov 2023 22:13:20 gmt",
             "tue, 14 Nov 2023 22:13:20 GMT",
             "Tue, 14 nov 2023 22:13:20 GMT",
             "Tue, 14 Nob 2023 22:13:20 GMT",
             "Mon, 14 Nov 2023 22:13:20 GMT",
             "Xyz, 14 Nov 2023 22:13:20 GMT",
             "Tue; 14 Nov 2023 22:13:20 GMT",
             "Tue, 4 Nov 2023 022:13:20 GMT",
             "Tue, 14 Nov 2023 24:13:20 GMT",
             "Tue, 14 Nov 2023 22:60:20 GMT",
             "Tue, 14 Nov 2023 22:13:60 GMT",
             "Tue, 00 Nov 2023 22:13:20 GMT",
             "Tue, 31 Nov 2023 22:13:20 GMT",
             "Tue, 14 Nov 1582 22:13:20 GMT",
             "Tuesday, 14-Nov-23 22:13:20 GMT",
             "Tue Nov 14 22:13:20 2023",
         }) {
        EXPECT_FALSE(zrm_dateFromHttpDate(text)) << text;
    }
}

TEST(ZRMHttpDateTest, ReadsWhatIcuReads) {
    constexpr double kSecondsIn1583 = -12212553600;
    constexpr double kSecondsIn9999 = 253402300799;
    std::mt19937_64 random(20231114);
    std::uniform_real_distribution<double> anySecond(kSecondsIn1583, kSecondsIn9999);
    std::uniform_int_distribution<std::size_t> anyPlace(0, 28);
    constexpr std::string_view kOtherBytes = "0123456789: ,GMTJanNovSu";
    std::uniform_int_distribution<std::size_t> anyByte(0, kOtherBytes.size() - 1);
    int read = 0;
    for (int round = 0; round < 2000; ++round) {
        auto text = icu().stringFromDate(ZRMDate{std::floor(anySecond(random))});
        EXPECT_EQ(zrm_dateFromHttpDate(text), icu().dateFromString(text)) << text;
        text[anyPlace(random)] = kOtherBytes[anyByte(random)];
        if (const auto date = zrm_dateFromHttpDate(text)) {
            EXPECT_EQ(date, icu().dateFromString(text)) << text;
            ++read;
        }
    }
    EXPECT_GT(read, 0);
}
