#include <limits>

#include <gtest/gtest.h>

#include "Benchmarks/ZRMFigure.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"

namespace {

ZRMFigure figure(double value, double target, ZRMFigure::Must must) {
    return {"login: p50", value, "us", target, must};
}

constexpr auto kAtMost = ZRMFigure::Must::BeAtMost;
constexpr auto kAtLeast = ZRMFigure::Must::BeAtLeast;
constexpr auto kKnown = ZRMFigure::Must::BeKnown;

}  // namespace

TEST(ZRMFigure, AtMostIsMetUpToTheTarget) {
    EXPECT_TRUE(figure(49.9, 50, kAtMost).isMet());
    EXPECT_TRUE(figure(50, 50, kAtMost).isMet());
    EXPECT_FALSE(figure(50.1, 50, kAtMost).isMet());
}

TEST(ZRMFigure, AtLeastIsMetFromTheTargetOn) {
    EXPECT_FALSE(figure(14999, 15000, kAtLeast).isMet());
    EXPECT_TRUE(figure(15000, 15000, kAtLeast).isMet());
    EXPECT_TRUE(figure(15001, 15000, kAtLeast).isMet());
}

TEST(ZRMFigure, WithoutATargetANumberIsEnough) {
    EXPECT_TRUE(figure(24, 0, kKnown).isMet());
    EXPECT_EQ(figure(24, 0, kKnown).targetText(), "-");
    EXPECT_TRUE(zrm_tableLine(figure(24, 0, kKnown)).ends_with(" us       -          -\n"));
}

TEST(ZRMFigure, WhatIsNoNumberIsNeverMet) {
    const auto nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(figure(nan, 50, kAtMost).isMet());
    EXPECT_FALSE(figure(nan, 50, kAtLeast).isMet());
    EXPECT_FALSE(figure(nan, 0, kKnown).isMet());
}

TEST(ZRMFigure, TargetTellsItsDirection) {
    EXPECT_EQ(figure(1, 2.5, kAtMost).targetText(), "<= 2.5");
    EXPECT_EQ(figure(1, 15000, kAtLeast).targetText(), ">= 15000");
}

TEST(ZRMFigure, LineOfTheTableHoldsEverything) {
    EXPECT_EQ(zrm_tableLine(figure(12.3456, 50, kAtMost)), "  login: p50" + std::string(64, ' ') +
                                                               "       12.346 us       <= 50"
                                                               "      met\n");
    EXPECT_TRUE(zrm_tableLine(figure(60, 50, kAtMost)).ends_with(" NOT MET\n"));
}

TEST(ZRMFigure, LineOfTheTableCutsANameThatIsTooLong) {
    auto long_ = figure(1, 50, kAtMost);
    long_.name = std::string(1000, 'x');
    EXPECT_TRUE(zrm_tableLine(long_).ends_with(" met\n"));
}

TEST(ZRMFigure, JsonHoldsTheFiveMembers) {
    const auto text = zrm_compactJsonText(zrm_jsonFromFigure(figure(12.5, 50, kAtMost)));
    EXPECT_EQ(text.value(),
              R"({"name":"login: p50","value":12.5,"unit":"us","target":"<= 50","met":true})");
}

TEST(ZRMFigure, JsonWritesWhatIsNoNumberAsNull) {
    const auto json =
        zrm_jsonFromFigure(figure(std::numeric_limits<double>::infinity(), 50, kAtMost));
    EXPECT_TRUE(json.at("value").is_null());
    EXPECT_FALSE(json.at("met").as_bool());
}
