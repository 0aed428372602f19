#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

TEST(ZRMText, TellsWhetherTextIsUtf8) {
    for (const auto* text : {"", "abc", "ä€😀", "\xEF\xBF\xBF", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_TRUE(zrm_isValidUtf8(text)) << text;
    }
    EXPECT_TRUE(zrm_isValidUtf8(std::string_view("a\0b", 3)));
    for (const auto* text : {"\x80", "\xC0\x80", "\xC3", "abc\xE2\x82", "\xED\xA0\x80",
                             "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\xFF", "\xE2\x28\xA1"}) {
        EXPECT_FALSE(zrm_isValidUtf8(text)) << text;
    }
}

TEST(ZRMText, TellsUtf8WhereverInAsciiItStands) {
    for (std::size_t before = 0; before < 20; ++before) {
        for (std::size_t behind = 0; behind < 20; ++behind) {
            const std::string start(before, 'a');
            const std::string end(behind, 'z');
            EXPECT_TRUE(zrm_isValidUtf8(start + end));
            EXPECT_TRUE(zrm_isValidUtf8(start + "ä" + end)) << before << " " << behind;
            EXPECT_TRUE(zrm_isValidUtf8(start + "😀" + end + "€")) << before << " " << behind;
            EXPECT_FALSE(zrm_isValidUtf8(start + "\x80" + end)) << before << " " << behind;
            EXPECT_FALSE(zrm_isValidUtf8(start + "ä" + end + "\xE2\x82"))
                << before << " " << behind;
            EXPECT_EQ(zrm_repairedUtf8(start + "\xFF" + end), start + "\xEF\xBF\xBD" + end);
        }
    }
}

TEST(ZRMText, CharactersOfTwoBytesAreWellFormedFromTheirFirstToTheirLast) {
    EXPECT_TRUE(zrm_isValidUtf8("\xC2\x80\xDF\xBF"));
    EXPECT_TRUE(zrm_isValidUtf8("\xD0\x96\xE2\x82\xAC\xD0\x96\xF0\x9F\x98\x80z"));
    EXPECT_FALSE(zrm_isValidUtf8("\xC1\xBF"));
    EXPECT_FALSE(zrm_isValidUtf8("\xC2\x7F"));
    EXPECT_FALSE(zrm_isValidUtf8("\xC2\xC2\x80"));
    EXPECT_FALSE(zrm_isValidUtf8("\xD0\x96\xD0"));
    EXPECT_FALSE(zrm_isValidUtf8("\xD0\x96\xE0\x96"));
    EXPECT_EQ(zrm_utf16Length("\xD0\x96z\xE2\x82\xAC\xF0\x9F\x98\x80\xD0\x96"), 6U);
}

TEST(ZRMText, CountsUtf16Units) {
    EXPECT_EQ(zrm_utf16Length(""), 0U);
    EXPECT_EQ(zrm_utf16Length("abc"), 3U);
    EXPECT_EQ(zrm_utf16Length("ä€"), 2U);
    EXPECT_EQ(zrm_utf16Length("😀"), 2U);
    EXPECT_EQ(zrm_utf16Length("e\xCC\x81"), 2U);
    EXPECT_EQ(zrm_utf16Length("a\xFFz"), 3U);
}

TEST(ZRMText, LengthAgreesWithTheRepairedText) {
    for (const auto* text : {"\xE2\x82",
                             "\xE2\x82"
                             "a",
                             "\xF0\x9F\x98", "\xED\xA0\x80", "\xC0\xAF", "x\x80\x80y"}) {
        EXPECT_EQ(zrm_utf16Length(text), zrm_utf16Length(zrm_repairedUtf8(text))) << text;
    }
}

TEST(ZRMText, RepairReplacesIllFormedSequences) {
    EXPECT_EQ(zrm_repairedUtf8("ä€😀"), "ä€😀");
    EXPECT_EQ(zrm_repairedUtf8("a\xFFz"), "a\xEF\xBF\xBDz");
    EXPECT_EQ(zrm_repairedUtf8("\xE2\x82"), "\xEF\xBF\xBD");
    EXPECT_EQ(zrm_repairedUtf8("\xE2\x82z"), "\xEF\xBF\xBDz");
    EXPECT_EQ(zrm_repairedUtf8("\xC0\xAF"), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(ZRMText, TrimsControlCharactersAtBothEnds) {
    EXPECT_EQ(zrm_trimmedControlCharacters("line\n"), "line");
    EXPECT_EQ(zrm_trimmedControlCharacters("\r\n\t\x01 line \x7f\n"), " line ");
    EXPECT_EQ(zrm_trimmedControlCharacters("one\ntwo"), "one\ntwo");
    EXPECT_EQ(zrm_trimmedControlCharacters("\n\n"), "");
    EXPECT_EQ(zrm_trimmedControlCharacters(""), "");
    EXPECT_EQ(zrm_trimmedControlCharacters("\xC2\x85ä\xE2\x80\x8E"),
              "ä");  // NEL; left-to-right mark
    EXPECT_EQ(zrm_trimmedControlCharacters("\n\xFF\n"), "\xFF");
}

TEST(ZRMText, MapsCaseWithoutRegardToLocale) {
    EXPECT_EQ(zrm_lowercasedText("FALSE Ä Σ"), "false ä σ");
    EXPECT_EQ(zrm_uppercasedText("straße i"), "STRASSE I");
    EXPECT_EQ(zrm_lowercasedText("I"), "i");
    EXPECT_EQ(zrm_lowercasedText(""), "");
    EXPECT_EQ(zrm_lowercasedText("A\xFF"), "a\xEF\xBF\xBD");
}

TEST(ZRMText, MapsTheCaseOfAsciiLettersAndOfNothingBesideThem) {
    EXPECT_EQ(zrm_lowercasedText("@AMZ[`amz{ 0"), "@amz[`amz{ 0");
    EXPECT_EQ(zrm_uppercasedText("@AMZ[`amz{ 0"), "@AMZ[`AMZ{ 0");
    EXPECT_EQ(zrm_uppercasedText(std::string_view("a\0b", 3)), std::string_view("A\0B", 3));
}

TEST(ZRMText, AsciiIsWhatHasNoHighBit) {
    EXPECT_TRUE(zrm_isAscii(""));
    EXPECT_TRUE(zrm_isAscii("abcdefghijk\x7F"));
    EXPECT_FALSE(zrm_isAscii("abcdefghijk\x80"));
    EXPECT_FALSE(zrm_isAscii("\xC3\xA4"));
}

TEST(ZRMText, WritesAddressesInLowerCaseHexadecimalWithoutLeadingZeros) {
    EXPECT_EQ(zrm_addressText(nullptr), "0x0");
    EXPECT_EQ(zrm_addressText(reinterpret_cast<const void*>(std::uintptr_t{0xABCDEF})), "0xabcdef");
}
