#include <cstdlib>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMDateFormatter.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMHttpDate.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMIcuDateFormat.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMIcu.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMRegularExpression.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMScanner.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

namespace {

void expectMissingWhatNeedsIcu() {
    EXPECT_EQ(ZRMIcu::shared(), nullptr);
    EXPECT_EQ(ZRMIcuDateFormat::withStyles(UDAT_SHORT, UDAT_NONE, "GMT", "de_DE"), nullptr);
    EXPECT_EQ(zrm_lowercasedText("\xC3\x84 A"), "\xC3\x84 a");
    EXPECT_EQ(zrm_uppercasedText("\xC3\xA4 a"), "\xC3\xA4 A");
    EXPECT_EQ(zrm_trimmedControlCharacters("\x01\xE2\x80\x8B a"), "\xE2\x80\x8B a");
    EXPECT_FALSE(ZRMScanner("\xC2\xA0").isAtEnd());
    EXPECT_EQ(ZRMRegularExpression("a").firstMatch("a"), std::nullopt);
    const ZRMDateFormatter formatter(kZRMHttpDatePattern, "GMT", kZRMPosixLocaleIdentifier);
    EXPECT_EQ(formatter.stringFromDate({0}), "");
    EXPECT_EQ(formatter.dateFromString("Thu, 1 Jan 1970 00:00:00 UTC"), std::nullopt);
}

void expectAllElse() {
    EXPECT_EQ(zrm_lowercasedText("A"), "a");
    EXPECT_EQ(zrm_trimmedControlCharacters("\x01 a"), " a");
    EXPECT_TRUE(ZRMScanner(" \t\n").isAtEnd());
    const ZRMDateFormatter reading(kZRMHttpDatePattern, "GMT", kZRMPosixLocaleIdentifier);
    EXPECT_EQ(reading.dateFromString("Thu, 01 Jan 1970 00:00:01 GMT"), ZRMDate{1});
    const ZRMDateFormatter writing("yyyyMMdd'T'HHmmss", "UTC", kZRMPosixLocaleIdentifier);
    EXPECT_EQ(writing.stringFromDate({0}), "19700101T000000");
}

// No file can be opened any more, ICU's library neither.
[[noreturn]] void exitWithoutIcu() {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_NOFILE, &none);
    expectMissingWhatNeedsIcu();
    expectAllElse();
    std::_Exit(testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
}

}  // namespace

TEST(ZRMIcu, IsFoundWithEveryFunction) {
    EXPECT_NE(ZRMIcu::shared(), nullptr);
}

TEST(ZRMIcu, ATextLongerThanExpectedIsAskedForAgain) {
    const auto write = [](UChar* buffer, std::int32_t capacity, UErrorCode* status) {
        return ZRMIcu::shared()->u_strToUpper(buffer, capacity, u"stra\u00DFe", 6, "", status);
    };
    EXPECT_EQ(zrm_icuText(0, write), u"STRASSE");
    EXPECT_EQ(zrm_icuText(6, write), u"STRASSE");
    EXPECT_EQ(zrm_icuText(7, write), u"STRASSE");
    EXPECT_EQ(zrm_icuText(64, write), u"STRASSE");
}

TEST(ZRMIcu, ATextThatFailsIsEmpty) {
    EXPECT_EQ(zrm_icuText(8,
                          [](UChar*, std::int32_t, UErrorCode* status) {
                              *status = U_ILLEGAL_ARGUMENT_ERROR;
                              return 3;
                          }),
              u"");
}

TEST(ZRMIcuDeathTest, WithoutItOnlyWhatNeedsItIsMissing) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exitWithoutIcu(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}
