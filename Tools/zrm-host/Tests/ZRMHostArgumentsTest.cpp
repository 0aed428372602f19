#include <array>
#include <string>

#include <gtest/gtest.h>

#include "Tools/zrm-host/ZRMHostArguments.h"

namespace {

TEST(ZRMHostArguments, ReadsEveryLoginResultByNumberAndByText) {
    constexpr std::array texts{"SUCCESS",         "INCORRECT_LOGIN",   "INCORRECT_PASSWORD",
                               "DROP_CONNECTION", "CLOSE_APPLICATION", "AUTH_TIMEOUT",
                               "UNKNOWN_ERROR"};
    for (std::size_t number = 0; number < texts.size(); ++number) {
        const auto expected = static_cast<ZRMLoginResult>(number);
        EXPECT_EQ(zrm_loginResultFromText(texts[number]), expected);
        EXPECT_EQ(zrm_loginResultFromText(std::to_string(number)), expected);
    }
}

TEST(ZRMHostArguments, RefusesOtherLoginResults) {
    for (const auto* text : {"", "7", "-1", "00", "success", "SUCCESS ", "0x0"}) {
        EXPECT_EQ(zrm_loginResultFromText(text), std::nullopt) << text;
    }
}

TEST(ZRMHostArguments, ReadsSecondsWithFractions) {
    EXPECT_EQ(zrm_secondsFromText("0")->count(), 0);
    EXPECT_EQ(zrm_secondsFromText("30")->count(), 30000);
    EXPECT_EQ(zrm_secondsFromText("0.25")->count(), 250);
    EXPECT_EQ(zrm_secondsFromText("86400")->count(), 86400000);
}

TEST(ZRMHostArguments, RefusesOtherSeconds) {
    for (const auto* text : {"", "-1", "86401", "1s", "nan", "inf", "1e3", "abc", "+1", " 1"}) {
        EXPECT_EQ(zrm_secondsFromText(text), std::nullopt) << text;
    }
}

TEST(ZRMHostArguments, ReadsNumbersOfEitherSign) {
    EXPECT_EQ(zrm_numberFromText("48.25"), 48.25);
    EXPECT_EQ(zrm_numberFromText("-16"), -16);
    for (const auto* text : {"", "1e3", "nan", "-inf", "0x1", "1 ", "--1"}) {
        EXPECT_EQ(zrm_numberFromText(text), std::nullopt) << text;
    }
}

TEST(ZRMHostArguments, ReadsSwitches) {
    EXPECT_EQ(zrm_switchFromText("on"), true);
    EXPECT_EQ(zrm_switchFromText("off"), false);
    for (const auto* text : {"", "ON", "true", "1"}) {
        EXPECT_EQ(zrm_switchFromText(text), std::nullopt) << text;
    }
}

}  // namespace
