#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMScanner.h"

TEST(ZRMScanner, ReadsNumbersAndRunsInTurn) {
    ZRMScanner scanner(" 12 AB -3C");
    EXPECT_EQ(scanner.scanInt(), 12);
    EXPECT_EQ(scanner.scanCharactersFromSet("AB"), "AB");
    EXPECT_EQ(scanner.scanInt(), -3);
    EXPECT_FALSE(scanner.isAtEnd());
    EXPECT_EQ(scanner.scanCharactersFromSet("ABC"), "C");
    EXPECT_TRUE(scanner.isAtEnd());
}

TEST(ZRMScanner, ConsumesNothingWhenTheTokenIsAnother) {
    ZRMScanner scanner(" x1");
    EXPECT_EQ(scanner.scanInt(), std::nullopt);
    EXPECT_EQ(scanner.scanCharactersFromSet("1"), "");
    EXPECT_EQ(scanner.scanCharactersFromSet("x"), "x");
    EXPECT_EQ(scanner.scanInt(), 1);
}

TEST(ZRMScanner, ASignWithoutDigitsIsNoNumber) {
    ZRMScanner scanner("-x");
    EXPECT_EQ(scanner.scanInt(), std::nullopt);
    EXPECT_EQ(scanner.scanCharactersFromSet("-x"), "-x");
}

TEST(ZRMScanner, TrailingWhiteSpaceIsTheEnd) {
    EXPECT_TRUE(ZRMScanner("").isAtEnd());
    EXPECT_TRUE(ZRMScanner(" \n\t\xE3\x80\x80").isAtEnd());
    EXPECT_FALSE(ZRMScanner(" \xFF").isAtEnd());
}

TEST(ZRMScanner, NumbersSaturate) {
    EXPECT_EQ(ZRMScanner("2147483647").scanInt(), 2147483647);
    EXPECT_EQ(ZRMScanner("2147483648").scanInt(), 2147483647);
    EXPECT_EQ(ZRMScanner("-2147483648").scanInt(), -2147483647 - 1);
    EXPECT_EQ(ZRMScanner("-2147483649").scanInt(), -2147483647 - 1);
    EXPECT_EQ(ZRMScanner(std::string(10000, '9')).scanInt(), 2147483647);
}
