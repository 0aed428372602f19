#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMUtf16.h"

TEST(ZRMUtf16, WellFormedTextComesBack) {
    for (const std::string_view text :
         {"", "plain", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_EQ(zrm_utf8FromUtf16(zrm_utf16FromUtf8(text)), text);
    }
    EXPECT_EQ(zrm_utf16FromUtf8("a\xC3\xA9\xF0\x9F\x98\x80"), u"a\u00E9\U0001F600");
    EXPECT_EQ(zrm_utf16FromUtf8(std::string_view("a\0b", 3)), std::u16string_view(u"a\0b", 3));
}

TEST(ZRMUtf16, IllFormedSequencesBecomeReplacementCharacters) {
    EXPECT_EQ(zrm_utf16FromUtf8("a\xFF\xE2\x82z\xC3"), u"a\uFFFD\uFFFDz\uFFFD");
}

TEST(ZRMUtf16, SurrogatesWithoutTheirOtherHalfBecomeReplacementCharacters) {
    const std::u16string alone{u'a', char16_t{0xD83D}, u'b', char16_t{0xDE00}};
    EXPECT_EQ(zrm_utf8FromUtf16(alone),
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD");
}
