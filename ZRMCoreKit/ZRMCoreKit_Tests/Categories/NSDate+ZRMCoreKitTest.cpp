#include <limits>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDate/NSDate+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDateFormatter/NSDateFormatter+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+Json.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

constexpr ZRMDate kMoment{1709622489};  // 2024-03-05 07:08:09 UTC, a Tuesday

ZRMSimulatedLocaleSource placeOf(const std::string& timeZone, const std::string& locale) {
    ZRMSimulatedLocaleSource place;
    place.setTimeZoneIdentifier(timeZone);
    place.setLocaleIdentifier(locale);
    return place;
}

const ZRMSimulatedLocaleSource kVienna = placeOf("Europe/Vienna", "de_AT");

// A process on a device in that time zone, as long as it lives.
class ProcessIn {
  public:
    explicit ProcessIn(const std::string& timeZone) : installed_(device_) {
        device_.locale().setTimeZoneIdentifier(timeZone);
    }

  private:
    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_;
};

}  // namespace

TEST(ZRMDate, KnowsTheSecondsOfItsUnits) {
    EXPECT_EQ(zrm_secondsPerDay(), 86400);
    EXPECT_EQ(zrm_secondsPerHour(), 3600);
    EXPECT_EQ(zrm_secondsPerMinute(), 60);
}

TEST(ZRMDate, DurationsAreSeconds) {
    const std::pair<const char*, double> cases[] = {
        {"PT2H", 7200},      {"P1D", 86400},    {"P1DT1H1M1S", 90061}, {"PT 5M", 300},
        {"P1WT1H", 3600},    {"PT60S", 60},     {"PT30M", 1800},       {"P-1D", -86400},
        {"PT-1H30M", -1800}, {"P1D2D", 172800}, {"P1DT", 86400},       {"P ", 0},
    };
    for (const auto& [duration, seconds] : cases) {
        EXPECT_EQ(zrm_timeIntervalFromISO8601DurationString(duration), seconds) << duration;
    }
}

TEST(ZRMDate, YearsMonthsAndWeeksOfADurationCountNothing) {
    for (const auto* duration : {"P1Y", "P2M", "P1W", "P2W", "P1Y2M3W"}) {
        EXPECT_EQ(zrm_timeIntervalFromISO8601DurationString(duration), 0) << duration;
    }
}

TEST(ZRMDate, WhatIsNoDurationIsMinusOneSecond) {
    for (const auto* text :
         {"", "PT", "P", "2H", "PT1H1M1S1", "PT1HT1M", "pt1h", "PT1.5H", "PT2HM"}) {
        EXPECT_EQ(zrm_timeIntervalFromISO8601DurationString(text), -1) << text;
    }
}

TEST(ZRMDate, TheLongestDurationDoesNotOverflow) {
    EXPECT_EQ(zrm_timeIntervalFromISO8601DurationString("P9999999999DT9999999999H"),
              2147483647.0 * 86400 + 2147483647.0 * 3600);
}

TEST(ZRMDate, WritesDurations) {
    const std::pair<double, const char*> cases[] = {
        {0, "P"},        {59, "PT59S"},      {60, "PT1M"}, {60.9, "PT1M"},        {3600, "PT1H"},
        {86400, "P1D"},  {0.9, "P"},         {-0.9, "P"},  {90061, "P1DT1H1M1S"}, {86401, "P1DT1S"},
        {1800, "PT30M"}, {8640000, "P100D"},
    };
    for (const auto& [seconds, duration] : cases) {
        EXPECT_EQ(timeIntervalAsISO8601DurationString(seconds), duration) << seconds;
    }
}

TEST(ZRMDate, ANegativeIntervalIsWrittenWithoutAnyPart) {
    EXPECT_EQ(timeIntervalAsISO8601DurationString(-5), "PT");
    EXPECT_EQ(timeIntervalAsISO8601DurationString(-90061), "PT");
    EXPECT_EQ(timeIntervalAsISO8601DurationString(-86400), "P");
}

TEST(ZRMDate, IntervalsBeyondWholeNumbersSaturate) {
    EXPECT_EQ(timeIntervalAsISO8601DurationString(1e300), "P106751991167300DT15H30M7S");
    EXPECT_EQ(timeIntervalAsISO8601DurationString(-1e300), "PT");
    EXPECT_EQ(timeIntervalAsISO8601DurationString(std::numeric_limits<double>::quiet_NaN()), "P");
}

TEST(ZRMDate, IsoDescriptionIsInTheDevicesTimeZone) {
    {
        const ProcessIn process("Europe/Vienna");
        EXPECT_EQ(zrm_isoDescription(kMoment), "20240305T080809");
    }
    const ProcessIn process("America/New_York");
    EXPECT_EQ(zrm_isoDescription(kMoment), "20240305T020809");
}

TEST(ZRMDate, ServerTimeDescriptionNamesTheDevicesTimeZone) {
    {
        const ProcessIn process("GMT");
        EXPECT_EQ(zrm_serverTimeDescription(kMoment), "Tue, 05 Mar 2024 07:08:09 GMT");
    }
    const ProcessIn process("Europe/Vienna");
    EXPECT_EQ(zrm_serverTimeDescription(kMoment), "Tue, 05 Mar 2024 08:08:09 GMT+1");
}

TEST(ZRMDateFormatters, KeepTheTimeZoneTheyWereMadeIn) {
    ZRMSimulatedDevice device;
    const ZRMScopedPlatform installed(device);
    device.locale().setTimeZoneIdentifier("Asia/Tokyo");
    EXPECT_EQ(zrm_isoDescription(kMoment), "20240305T160809");
    device.locale().setTimeZoneIdentifier("GMT");
    EXPECT_EQ(zrm_isoDescription(kMoment), "20240305T160809");
    device.restartProcess();
    EXPECT_EQ(zrm_isoDescription(kMoment), "20240305T070809");
}

TEST(ZRMDateFormatters, AreMadeOnceForTheProcess) {
    const ProcessIn process("Europe/Vienna");
    EXPECT_EQ(zrm_iso8601DateTimeFormatter(), zrm_iso8601DateTimeFormatter());
    EXPECT_EQ(zrm_serverTimeFormatter(), zrm_serverTimeFormatter());
    EXPECT_NE(zrm_iso8601DateTimeFormatter(), zrm_serverTimeFormatter());
}

TEST(ZRMDateFormatters, ServerTimeReadsTheDateHeaderOfAnyZone) {
    const ProcessIn process("Asia/Tokyo");
    const std::pair<const char*, double> cases[] = {
        {"Tue, 05 Mar 2024 07:08:09 GMT", 1709622489},
        {"Tue, 05 Mar 2024 07:08:09 UTC", 1709622489},
        {"Tue, 05 Mar 2024 08:08:09 +0100", 1709622489},
        {"Sun, 06 Nov 1994 08:49:37 GMT", 784111777},
    };
    for (const auto& [text, seconds] : cases) {
        EXPECT_EQ(zrm_serverTimeFormatter()->dateFromString(text), ZRMDate{seconds}) << text;
    }
}

TEST(ZRMDateFormatters, ServerTimeRefusesOtherTexts) {
    const ProcessIn process("GMT");
    for (const auto* text : {"", "now", "2024-03-05T07:08:09Z", "Tue, 05 Mar 2024 07:08:09",
                             "05 Mar 2024 07:08:09 GMT", "Tue, 32 Mar 2024 07:08:09 GMT",
                             "Tue, 05 Mar 2024 25:08:09 GMT", "Die, 05 Mar 2024 07:08:09 GMT",
                             "Tue, 05 Mar 2024 07:08:09 GMT!", "Tuesday, 05-Mar-24 07:08:09 GMT",
                             "Tue Mar  5 07:08:09 2024", "Tue, 05 Mar 2024 07:08:09 GMT\xFF"}) {
        EXPECT_FALSE(zrm_serverTimeFormatter()->dateFromString(text)) << text;
    }
}

TEST(ZRMDate, DescriptionStylesHaveTheirNumbers) {
    EXPECT_EQ(static_cast<int>(ZRMDateFormatterStyle::None), 0);
    EXPECT_EQ(static_cast<int>(ZRMDateFormatterStyle::Short), 1);
    EXPECT_EQ(static_cast<int>(ZRMDateFormatterStyle::Medium), 2);
    EXPECT_EQ(static_cast<int>(ZRMDateFormatterStyle::Long), 3);
    EXPECT_EQ(static_cast<int>(ZRMDateFormatterStyle::Full), 4);
}

TEST(ZRMDate, DescriptionFollowsTheGivenLocaleAndStyles) {
    const auto described = [](const char* locale, ZRMDateFormatterStyle date,
                              ZRMDateFormatterStyle time) {
        return zrm_descriptionWithLocale(kVienna, kMoment, locale, date, time);
    };
    using Style = ZRMDateFormatterStyle;
    EXPECT_EQ(described("en_US", Style::Short, Style::None), "3/5/24");
    EXPECT_EQ(described("en_US", Style::Medium, Style::None), "Mar 5, 2024");
    EXPECT_EQ(described("en_US", Style::Long, Style::None), "March 5, 2024");
    EXPECT_EQ(described("en_US", Style::Full, Style::None), "Tuesday, March 5, 2024");
    EXPECT_EQ(described("de_DE", Style::None, Style::Short), "08:08");
    EXPECT_EQ(described("de_DE", Style::Medium, Style::Medium), "05.03.2024, 08:08:09");
    EXPECT_EQ(described("en_US", Style::None, Style::None), "");
}

TEST(ZRMDate, LocalDescriptionsTakeTheDevicesLocaleAndTimeZone) {
    EXPECT_EQ(zrm_localDescriptionWithDateStyle(kVienna, kMoment, ZRMDateFormatterStyle::Long,
                                                ZRMDateFormatterStyle::Short),
              "5. März 2024 um 08:08");
    EXPECT_EQ(zrm_mediumLocalDescriptionForDate(kVienna, kMoment), "05.03.2024");
    const auto auckland = placeOf("Pacific/Auckland", "en_NZ");
    EXPECT_EQ(zrm_mediumLocalDescriptionForDate(auckland, ZRMDate{1709636400}), "6/03/2024");
}

TEST(ZRMDate, DescriptionsOfUnheardOfPlacesAndTimesDoNotFail) {
    const auto nowhere = placeOf("Nowhere/Land", "xx_YY_ZZZ@calendar=none");
    EXPECT_NE(zrm_mediumLocalDescriptionForDate(nowhere, kMoment), "");
    EXPECT_NE(zrm_mediumLocalDescriptionForDate(kVienna, ZRMDate{1e300}), "");
    EXPECT_NE(zrm_mediumLocalDescriptionForDate(kVienna, ZRMDate{-1e300}), "");
    EXPECT_EQ(zrm_mediumLocalDescriptionForDate(kVienna,
                                                ZRMDate{std::numeric_limits<double>::quiet_NaN()}),
              "");
    EXPECT_EQ(zrm_mediumLocalDescriptionForDate(kVienna,
                                                ZRMDate{std::numeric_limits<double>::infinity()}),
              "");
}
