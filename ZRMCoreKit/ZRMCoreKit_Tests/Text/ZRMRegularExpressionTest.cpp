#include <string>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMRegularExpression.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

TEST(ZRMRegularExpression, FindsTheFirstMatchInUtf16Units) {
    const ZRMRegularExpression expression("b+");
    EXPECT_EQ(expression.firstMatch("abbcb"), (ZRMTextRange{1, 2}));
    EXPECT_EQ(expression.firstMatch("😀b"), (ZRMTextRange{2, 1}));
    EXPECT_EQ(expression.firstMatch("ac"), std::nullopt);
}

TEST(ZRMRegularExpression, MatchAtStartIsTheFirstMatchWhenThatBeginsThere) {
    const ZRMRegularExpression expression("a|ab");
    for (const auto* text : {"ab", "a", "ba", "", "xab"}) {
        const auto first = expression.firstMatch(text);
        const auto expected = first && first->location == 0 ? first : std::nullopt;
        EXPECT_EQ(expression.matchAtStart(text), expected) << text;
    }
}

TEST(ZRMRegularExpression, RegardsCaseUnlessTold) {
    EXPECT_FALSE(ZRMRegularExpression("a").firstMatch("A"));
    EXPECT_TRUE(ZRMRegularExpression("a", ZRMRegularExpression::CaseSensitivity::Insensitive)
                    .firstMatch("A"));
}

TEST(ZRMRegularExpression, MatchesNothingInTextThatIsNotUtf8) {
    EXPECT_FALSE(ZRMRegularExpression("a").firstMatch("a\xFF"));
}

TEST(ZRMRegularExpression, AMatchThatTakesTooMuchMemoryIsNone) {
    EXPECT_FALSE(ZRMRegularExpression("(a)*b").firstMatch(std::string(3000000, 'a') + "b"));
}

TEST(ZRMRegularExpression, RefusesAPatternThatDoesNotCompile) {
    EXPECT_THROW(ZRMRegularExpression("(a"), ZRMInvalidArgument);
}
