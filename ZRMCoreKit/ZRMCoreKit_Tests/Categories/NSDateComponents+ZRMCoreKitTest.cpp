#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSCharacterSet/NSCharacterSet+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDateComponents/NSDateComponents+ZRMCoreKit.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

namespace {

auto parsed(std::string_view duration) {
    return zrm_dateComponentsFromISO8601DurationString(duration);
}

}  // namespace

TEST(ZRMDateComponents, AFreshRecordHasEveryFieldUndefined) {
    const ZRMDateComponents fresh;
    for (const auto field : {fresh.year, fresh.month, fresh.weekOfYear, fresh.day, fresh.hour,
                             fresh.minute, fresh.second}) {
        EXPECT_EQ(field, 0x7fffffffffffffff);
    }
}

TEST(ZRMDateComponents, DesignatorSetsAreUpperCase) {
    EXPECT_EQ(zrm_ISO8601DurationDateCharacters(), "YMWD");
    EXPECT_EQ(zrm_ISO8601DurationTimeCharacters(), "HMS");
}

TEST(ZRMDateComponents, UnitsAreThoseOfTheCalendar) {
    EXPECT_EQ(static_cast<int>(zrm_dateCalendarUnitForString("Y")), 4);
    EXPECT_EQ(static_cast<int>(zrm_dateCalendarUnitForString("M")), 8);
    EXPECT_EQ(static_cast<int>(zrm_dateCalendarUnitForString("W")), 8192);
    EXPECT_EQ(static_cast<int>(zrm_dateCalendarUnitForString("D")), 16);
    EXPECT_EQ(static_cast<int>(zrm_timeCalendarUnitForString("H")), 32);
    EXPECT_EQ(static_cast<int>(zrm_timeCalendarUnitForString("M")), 64);
    EXPECT_EQ(static_cast<int>(zrm_timeCalendarUnitForString("S")), 128);
}

#ifndef NDEBUG
namespace {

void expectAssertion(ZRMCalendarUnit (*unitFor)(std::string_view), const char* letter,
                     const char* message) {
    try {
        const auto unit = unitFor(letter);
        FAIL() << "unit " << static_cast<int>(unit) << " for " << letter;
    } catch (const ZRMAssertionFailure& failure) {
        EXPECT_STREQ(failure.what(), message);
    }
}

}  // namespace

TEST(ZRMDateComponents, UnsupportedLettersAssertInDevelopmentBuilds) {
    expectAssertion(zrm_dateCalendarUnitForString, "H",
                    "Unsupported string for date calendar unit");
    expectAssertion(zrm_dateCalendarUnitForString, "y",
                    "Unsupported string for date calendar unit");
    expectAssertion(zrm_timeCalendarUnitForString, "D",
                    "Unsupported string for time calendar unit");
    expectAssertion(zrm_timeCalendarUnitForString, "", "Unsupported string for time calendar unit");
}
#else
TEST(ZRMDateComponents, UnsupportedLettersHaveNoUnitInReleaseBuilds) {
    EXPECT_EQ(zrm_dateCalendarUnitForString("H"), ZRMCalendarUnit::Unsupported);
    EXPECT_EQ(zrm_timeCalendarUnitForString("D"), ZRMCalendarUnit::Unsupported);
}
#endif

TEST(ZRMDateComponents, ReadsEveryFieldOfTheDatePart) {
    const auto components = parsed("P1Y2M3W4D");
    ASSERT_TRUE(components);
    EXPECT_EQ(*components, (ZRMDateComponents{.year = 1, .month = 2, .weekOfYear = 3, .day = 4}));
}

TEST(ZRMDateComponents, ReadsDateAndTimeParts) {
    const auto components = parsed("P1Y2M4DT5H6M7S");
    ASSERT_TRUE(components);
    EXPECT_EQ(
        *components,
        (ZRMDateComponents{.year = 1, .month = 2, .day = 4, .hour = 5, .minute = 6, .second = 7}));
}

TEST(ZRMDateComponents, TheWeekIsDroppedBesideATimePartAndKeptAlone) {
    EXPECT_EQ(parsed("P1WT2H"), (ZRMDateComponents{.hour = 2}));
    EXPECT_EQ(parsed("P1W"), (ZRMDateComponents{.weekOfYear = 1}));
    EXPECT_EQ(parsed("P1WT"), ZRMDateComponents{});
}

TEST(ZRMDateComponents, OneEmptyPartLeavesTheOther) {
    EXPECT_EQ(parsed("P1DT"), (ZRMDateComponents{.day = 1}));
    EXPECT_EQ(parsed("PT1M"), (ZRMDateComponents{.minute = 1}));
}

TEST(ZRMDateComponents, OneMalformedPartLeavesTheOther) {
    EXPECT_EQ(parsed("P1XT2H"), (ZRMDateComponents{.hour = 2}));
    EXPECT_EQ(parsed("P1DT2X"), (ZRMDateComponents{.day = 1}));
}

TEST(ZRMDateComponents, ALaterDesignatorOverwritesAnEarlierOne) {
    EXPECT_EQ(parsed("P1D2D"), (ZRMDateComponents{.day = 2}));
}

TEST(ZRMDateComponents, DesignatorsComeInAnyOrder) {
    EXPECT_EQ(parsed("P1D1Y"), (ZRMDateComponents{.year = 1, .day = 1}));
    EXPECT_EQ(parsed("PT3S2M1H"), (ZRMDateComponents{.hour = 1, .minute = 2, .second = 3}));
}

TEST(ZRMDateComponents, NumbersMayBeSigned) {
    EXPECT_EQ(parsed("P-1D"), (ZRMDateComponents{.day = -1}));
    EXPECT_EQ(parsed("PT+2H"), (ZRMDateComponents{.hour = 2}));
}

TEST(ZRMDateComponents, NumbersSaturateAt32Bits) {
    EXPECT_EQ(parsed("P2147483647D")->day, 2147483647);
    EXPECT_EQ(parsed("P2147483648D")->day, 2147483647);
    EXPECT_EQ(parsed("P-2147483648D")->day, -2147483648LL);
    EXPECT_EQ(parsed("P-99999999999999999999999999D")->day, -2147483648LL);
    EXPECT_EQ(parsed("P99999999999999999999999999D")->day, 2147483647);
}

TEST(ZRMDateComponents, WhiteSpaceIsSkippedBeforeEachToken) {
    EXPECT_EQ(parsed("PT 5M"), (ZRMDateComponents{.minute = 5}));
    EXPECT_EQ(parsed("PT5 M"), (ZRMDateComponents{.minute = 5}));
    EXPECT_EQ(parsed("PT\t5\r\nM \n"), (ZRMDateComponents{.minute = 5}));
    EXPECT_EQ(parsed("PT\xC2\xA0"
                     "5M\xE2\x80\xA8"),  // no-break space, line separator
              (ZRMDateComponents{.minute = 5}));
}

TEST(ZRMDateComponents, NoWhiteSpaceMayPartASignOrTheDigitsOfANumber) {
    EXPECT_FALSE(parsed("PT- 5M"));
    EXPECT_FALSE(parsed("PT1 5M"));
}

TEST(ZRMDateComponents, APartOfNothingButWhiteSpaceIsAnEmptyRecord) {
    EXPECT_EQ(parsed("P "), ZRMDateComponents{});
    EXPECT_EQ(parsed("P T5M"), (ZRMDateComponents{.minute = 5}));
}

TEST(ZRMDateComponents, RefusesWhatIsNoDuration) {
    for (const auto* text :
         {"",     " ",     "P",      "PT",      "T",         "T1H",     "2H",  "p1D",
          " P1D", "P1d",   "PT1h",   "pt1h",    "PT1H1M1S1", "PT1HT1M", "PTT", "P1DTT1H",
          "PTH",  "PT2HM", "PT1.5H", "PT1,5H",  "P1H",       "PT1D",    "PD",  "P1",
          "P-D",  "P+-1D", "P0x1D",  "P1D\xFF", "P\xFF"}) {
        EXPECT_FALSE(parsed(text)) << text;
    }
}

TEST(ZRMDateComponents, OnePartIsReadByItsOwnDesignators) {
    EXPECT_EQ(static_cast<int>(ZRMDurationPart::Date), 0);
    EXPECT_EQ(static_cast<int>(ZRMDurationPart::Time), 1);
    EXPECT_EQ(zrm_dateComponentsForISO8601DurationString("1M", ZRMDurationPart::Date),
              (ZRMDateComponents{.month = 1}));
    EXPECT_EQ(zrm_dateComponentsForISO8601DurationString("1M", ZRMDurationPart::Time),
              (ZRMDateComponents{.minute = 1}));
    EXPECT_FALSE(zrm_dateComponentsForISO8601DurationString("", ZRMDurationPart::Date));
    EXPECT_FALSE(zrm_dateComponentsForISO8601DurationString("1S", ZRMDurationPart::Date));
    EXPECT_FALSE(zrm_dateComponentsForISO8601DurationString("1Y", ZRMDurationPart::Time));
}
