#include <gtest/gtest.h>

#include "ZRMMobileKit/ZRMMobileKitInfo.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileServiceValueChecker.h"

namespace {

using Checker = ZRMMobileServiceValueChecker;

// `count` code points that take two UTF-16 code units each.
std::string pairs(std::size_t count) {
    std::string text;
    for (std::size_t index = 0; index < count; ++index) {
        text += "\xF0\x9F\x98\x80";
    }
    return text;
}

}  // namespace

TEST(ZRMMobileServiceValueChecker, LoginHasOneTo255Characters) {
    EXPECT_FALSE(Checker::isValidLogin(std::nullopt));
    EXPECT_FALSE(Checker::isValidLogin(""));
    EXPECT_TRUE(Checker::isValidLogin("u"));
    EXPECT_TRUE(Checker::isValidLogin(std::string(255, 'u')));
    EXPECT_FALSE(Checker::isValidLogin(std::string(256, 'u')));
}

TEST(ZRMMobileServiceValueChecker, NavigationPointHasAtMost2048CharactersAndMayBeAbsentOrEmpty) {
    EXPECT_TRUE(Checker::isValidUINavigationPoint(std::nullopt));
    EXPECT_TRUE(Checker::isValidUINavigationPoint(""));
    EXPECT_TRUE(Checker::isValidUINavigationPoint(std::string(2048, 'p')));
    EXPECT_FALSE(Checker::isValidUINavigationPoint(std::string(2049, 'p')));
}

TEST(ZRMMobileServiceValueChecker, SessionIdHasAtMost1024CharactersAndMayBeAbsentOrEmpty) {
    EXPECT_TRUE(Checker::isValidSessionId(std::nullopt));
    EXPECT_TRUE(Checker::isValidSessionId(""));
    EXPECT_TRUE(Checker::isValidSessionId(std::string(1024, 's')));
    EXPECT_FALSE(Checker::isValidSessionId(std::string(1025, 's')));
}

TEST(ZRMMobileServiceValueChecker, LengthsAreCountedInUtf16CodeUnits) {
    EXPECT_TRUE(Checker::isValidLogin(pairs(127)));
    EXPECT_FALSE(Checker::isValidLogin(pairs(128)));
    std::string umlauts;
    for (int count = 0; count < 255; ++count) {
        umlauts += "\xC3\xBC";  // one unit, two bytes
    }
    EXPECT_TRUE(Checker::isValidLogin(umlauts));
    EXPECT_FALSE(Checker::isValidLogin(umlauts + "u"));
    EXPECT_TRUE(Checker::isValidSessionId(pairs(512)));
    EXPECT_FALSE(Checker::isValidSessionId(pairs(512) + "s"));
}

TEST(ZRMMobileServiceValueChecker, TextThatIsNotUtf8NeverPasses) {
    const std::string broken = "a\xFF";
    EXPECT_FALSE(Checker::isValidLogin(broken));
    EXPECT_FALSE(Checker::isValidUINavigationPoint(broken));
    EXPECT_FALSE(Checker::isValidSessionId(broken));
    EXPECT_FALSE(Checker::isValidHttpUrl("https://a.example.com/\xFF"));
}

TEST(ZRMMobileServiceValueChecker, TextMayHoldZeroBytes) {
    EXPECT_TRUE(Checker::isValidLogin(std::string("a\0b", 3)));
}

TEST(ZRMMobileServiceValueChecker, HttpUrlsAreCheckedByTheUrlHelper) {
    EXPECT_TRUE(Checker::isValidHttpUrl("https://risk.example.com/stat?cid=bank"));
    EXPECT_TRUE(Checker::isValidHttpUrl("http://risk.example.com:8080/stat"));
    EXPECT_FALSE(Checker::isValidHttpUrl("ftp://risk.example.com/stat"));
    EXPECT_FALSE(Checker::isValidHttpUrl("https://localhost:8443/stat"));
    EXPECT_FALSE(Checker::isValidHttpUrl("https://127.0.0.1/stat"));
    EXPECT_FALSE(Checker::isValidHttpUrl("http://a b"));
    EXPECT_FALSE(Checker::isValidHttpUrl(""));
}

TEST(ZRMMobileServiceValueChecker, LimitsAreTheExportedOnes) {
    EXPECT_EQ(kZRMMaxLoginLength, 255u);
    EXPECT_EQ(kZRMMaxSessionIdLength, 1024u);
    EXPECT_EQ(kZRMMaxUINavigationPointLength, 2048u);
}
