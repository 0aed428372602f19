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
