#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSRegularExpression/NSRegularExpression+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSURL/NSURL+ZRMCoreKit.h"

namespace {

bool isValid(const std::string& text) {
    const auto url = ZRMUrl::fromText(text);
    return url && zrm_isValidHttpUrl(*url);
}

}  // namespace

TEST(ZRMHttpUrl, AcceptsHostsPathsPortsAndQueries) {
    for (const auto* text :
         {"http://example.com", "https://example.com", "HTTPS://EXAMPLE.COM", "example.com",
          "https://example.com/", "https://a.b.example.co/stat?cid=bank&x=1",
          "https://example.com:8443/stat", "https://example.com:/", "https://example.com:port/",
          "https://example.com?q=1", "https://example.com/a_b~c/%20#fragment", "1.2.3.co",
          "https://example.com/a;b", "https://example.com/it's,so", "-.-.de"}) {
        EXPECT_TRUE(zrm_isValidHttpUrlString(text)) << text;
    }
}

TEST(ZRMHttpUrl, RefusesOtherTexts) {
    for (const auto* text :
         {"", "localhost", "https://localhost:8443/stat", "https://127.0.0.1/stat", "http://",
          "ftp://example.com", "https:/example.com", " https://example.com", "https://example.com ",
          "https://example.com/a b", "https://example.com\n", "https://ex_ample.com",
          "https://user@example.com", "https://[::1]/", "https://example.com/a!b",
          "https://example.com/(a)", "https://ex\xC3\xA4mple.com", "https://example.com/\xFF"}) {
        EXPECT_FALSE(zrm_isValidHttpUrlString(text)) << text;
    }
}

TEST(ZRMHttpUrl, TopLevelDomainsHaveTwoOrThreeLetters) {
    EXPECT_FALSE(zrm_isValidHttpUrlString("example.c"));
    EXPECT_TRUE(zrm_isValidHttpUrlString("example.co"));
    EXPECT_TRUE(zrm_isValidHttpUrlString("example.com"));
    EXPECT_FALSE(zrm_isValidHttpUrlString("example.c0m"));
    // What follows three letters may belong to the path, which needs no slash.
    EXPECT_TRUE(zrm_isValidHttpUrlString("https://example.info"));
    EXPECT_FALSE(zrm_isValidHttpUrlString("https://example.info:8443"));
}

TEST(ZRMHttpUrl, TheEntityInThePatternAdmitsItsLetters) {
    EXPECT_TRUE(zrm_isValidHttpUrlString("https://example.com/&amp;"));
    EXPECT_TRUE(zrm_isValidHttpUrlString("https://example.com/;"));
    EXPECT_FALSE(zrm_isValidHttpUrlString("https://example.com/|"));
}

TEST(ZRMHttpUrl, TheQuickCheckAgreesWithTheExpression) {
    constexpr std::array<std::string_view, 30> kPieces = {
        "http://", "https://", "HTTPS://", "http:/", "http", "://", "a",  "b.",  ".co",   ".com",
        ".c",      ".c0",      "1",        "-",      ".",    ":",   "80", ":80", "/",     "?",
        "#",       "=",        ";",        "\\",     "_",    "'",   "|",  "@",   "&amp;", "~%$+,"};
    std::uint64_t state = 1;
    int matches = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text = round % 2 == 0 ? "" : "example.com";
        for (int piece = 0; piece < 1 + round % 9; ++piece) {
            state = state * 6364136223846793005U + 1442695040888963407U;
            text += kPieces.at((state >> 33U) % kPieces.size());
        }
        const bool isMatch = zrm_fullStringMatch(*zrm_httpUrlRegularExpression(), text);
        ASSERT_EQ(zrm_isValidHttpUrlString(text), isMatch) << text;
        matches += isMatch ? 1 : 0;
    }
    EXPECT_GT(matches, 500);
    EXPECT_LT(matches, 19500);
}

TEST(ZRMHttpUrl, LettersBeyondAsciiThatFoldToTheExpressionsCountAsTheseDo) {
    for (const auto* text : {"http\u017F://example.com", "example.\u212Aom", "example.com/\u017F",
                             "example.com/\u00E4"}) {
        EXPECT_EQ(zrm_isValidHttpUrlString(text),
                  zrm_fullStringMatch(*zrm_httpUrlRegularExpression(), text))
            << text;
    }
}

TEST(ZRMHttpUrl, TheSharedExpressionIsMadeOnce) {
    EXPECT_EQ(zrm_httpUrlRegularExpression(), zrm_httpUrlRegularExpression());
}

TEST(ZRMHttpUrl, AFullMatchBeginsAtTheStartAndHasTheLengthOfTheText) {
    const ZRMRegularExpression expression("ab+");
    EXPECT_TRUE(zrm_fullStringMatch(expression, "abbb"));
    EXPECT_FALSE(zrm_fullStringMatch(expression, "abbc"));
    EXPECT_FALSE(zrm_fullStringMatch(expression, "cabb"));
    EXPECT_FALSE(zrm_fullStringMatch(expression, ""));
    // The first match counts, not the longest one there could be.
    EXPECT_FALSE(zrm_fullStringMatch(ZRMRegularExpression("a|ab"), "ab"));
}

TEST(ZRMHttpUrl, AFullMatchCountsUtf16Units) {
    EXPECT_TRUE(zrm_fullStringMatch(ZRMRegularExpression("x.y"), "x\xF0\x9F\x98\x80y"));
}

TEST(ZRMHttpUrl, TheWholeTextHasAtMost2000Units) {
    const std::string start = "https://example.com/";
    EXPECT_TRUE(isValid(start + std::string(2000 - start.size(), 'a')));
    EXPECT_FALSE(isValid(start + std::string(2001 - start.size(), 'a')));
    EXPECT_TRUE(zrm_isValidHttpUrlString(start + std::string(2001 - start.size(), 'a')));
}

TEST(ZRMHttpUrl, TheHostHasLessThan256Units) {
    EXPECT_TRUE(isValid("https://" + std::string(251, 'a') + ".com/"));
    EXPECT_FALSE(isValid("https://" + std::string(252, 'a') + ".com/"));
}

TEST(ZRMHttpUrl, AReferenceWithoutHostPassesTheHostCheck) {
    EXPECT_TRUE(isValid("example.com"));
    EXPECT_TRUE(isValid(std::string(300, 'a') + ".com"));
    EXPECT_FALSE(isValid("abc"));
}

TEST(ZRMHttpUrl, HostileTextsAreAnsweredSoon) {
    EXPECT_FALSE(zrm_isValidHttpUrlString(std::string(100000, 'a')));
    EXPECT_FALSE(zrm_isValidHttpUrlString(std::string(100000, '.') + "|"));
    EXPECT_FALSE(zrm_isValidHttpUrlString("a.com/" + std::string(3000000, 'a') + "|"));
}

TEST(ZRMDirectoryUrl, EndsInASlashAndEscapesWhatAPathOfAUrlMayNotHold) {
    EXPECT_EQ(zrm_directoryUrlText("/device/Host.app"), "file:///device/Host.app/");
    EXPECT_EQ(zrm_directoryUrlText("/device/Host.app/"), "file:///device/Host.app/");
    EXPECT_EQ(zrm_directoryUrlText("/"), "file:///");
    EXPECT_EQ(zrm_directoryUrlText("/a b/100%/x?y#z;\"<>[]^`{|}\\"),
              "file:///a%20b/100%25/x%3Fy%23z%3B%22%3C%3E%5B%5D%5E%60%7B%7C%7D%5C/");
    EXPECT_EQ(zrm_directoryUrlText("/a-._~!$&'()*+,:=@Z9"), "file:///a-._~!$&'()*+,:=@Z9/");
}

TEST(ZRMDirectoryUrl, EscapesEveryByteOfOtherScriptsAndOfIllFormedText) {
    EXPECT_EQ(zrm_directoryUrlText("/Überweisung/銀行"),
              "file:///%C3%9Cberweisung/%E9%8A%80%E8%A1%8C/");
    EXPECT_EQ(zrm_directoryUrlText("/\xFF\xC3\x01"), "file:///%FF%C3%01/");
}
