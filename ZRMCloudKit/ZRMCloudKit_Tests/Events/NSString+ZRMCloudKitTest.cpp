#include <limits>

#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Categories/NSString/NSString+ZRMCloudKit.h"

namespace {

TEST(ZRMEventDate, IsWrittenInUtcWithSixDigitsOfTheSecond) {
    EXPECT_EQ(zrm_stringFromDate(ZRMDate{1709622489.123}), "2024-03-05 07:08:09.123000");
    EXPECT_EQ(zrm_stringFromDate(ZRMDate{0}), "1970-01-01 00:00:00.000000");
    EXPECT_EQ(zrm_stringFromDate(ZRMDate{1700000000}), "2023-11-14 22:13:20.000000");
    EXPECT_EQ(zrm_stringFromDate(ZRMDate{-0.5}), "1969-12-31 23:59:59.500000");
}

TEST(ZRMEventDate, KeepsEveryMillisecond) {
    for (int millisecond = 0; millisecond < 1000; ++millisecond) {
        const auto text = zrm_stringFromDate(ZRMDate{1767225600 + millisecond / 1000.0});
        ASSERT_TRUE(text);
        EXPECT_EQ(std::stoi(text->substr(20)), millisecond * 1000) << *text;
    }
}

TEST(ZRMEventDate, HasNoTextForAnAbsentDateOrOneBeyondTheCalendar) {
    EXPECT_EQ(zrm_stringFromDate(std::nullopt), std::nullopt);
    EXPECT_EQ(zrm_stringFromDate(ZRMDate{std::numeric_limits<double>::quiet_NaN()}), std::nullopt);
    EXPECT_EQ(zrm_stringFromDate(ZRMDate{std::numeric_limits<double>::infinity()}), std::nullopt);
    EXPECT_EQ(zrm_stringFromDate(ZRMDate{1e300}), std::nullopt);
}

}  // namespace
