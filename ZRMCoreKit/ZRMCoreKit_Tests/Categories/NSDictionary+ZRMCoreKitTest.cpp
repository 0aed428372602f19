#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDictionary/NSDictionary+ZRMCoreKit.h"

namespace {

std::string merged(const char* first, const char* second) {
    return boost::json::serialize(zrm_mergeDictionary(boost::json::parse(first).as_object(),
                                                      boost::json::parse(second).as_object()));
}

}  // namespace

TEST(ZRMDictionary, MergeKeepsTheFirstAndAddsTheSecond) {
    EXPECT_EQ(merged(R"({"a":1,"b":2})", R"({"c":3})"), R"({"a":1,"b":2,"c":3})");
    EXPECT_EQ(merged("{}", "{}"), "{}");
    EXPECT_EQ(merged("{}", R"({"a":1})"), R"({"a":1})");
    EXPECT_EQ(merged(R"({"a":1})", "{}"), R"({"a":1})");
}

TEST(ZRMDictionary, TheSecondWinsAConflict) {
    EXPECT_EQ(merged(R"({"a":1,"b":2})", R"({"a":"x"})"), R"({"a":"x","b":2})");
    EXPECT_EQ(merged(R"({"a":[1,2]})", R"({"a":[3]})"), R"({"a":[3]})");
    EXPECT_EQ(merged(R"({"a":1})", R"({"a":null})"), R"({"a":null})");
}

TEST(ZRMDictionary, ADictionaryAndAnotherValueAreAConflict) {
    EXPECT_EQ(merged(R"({"a":{"b":1}})", R"({"a":2})"), R"({"a":2})");
    EXPECT_EQ(merged(R"({"a":2})", R"({"a":{"b":1}})"), R"({"a":{"b":1}})");
}

TEST(ZRMDictionary, TwoDictionariesUnderOneKeyAreMergedAtEveryDepth) {
    EXPECT_EQ(merged(R"({"a":{"b":{"c":1,"d":2},"e":3}})", R"({"a":{"b":{"d":4,"f":5}}})"),
              R"({"a":{"b":{"c":1,"d":4,"f":5},"e":3}})");
}

TEST(ZRMDictionary, MergeLeavesItsInputsAlone) {
    const ZRMDictionary first{{"a", {{"b", 1}}}};
    const ZRMDictionary second{{"a", {{"c", 2}}}};
    const auto both = zrm_dictionaryByMergingWith(first, second);
    EXPECT_EQ(first, (ZRMDictionary{{"a", {{"b", 1}}}}));
    EXPECT_EQ(second, (ZRMDictionary{{"a", {{"c", 2}}}}));
    EXPECT_EQ(both, (ZRMDictionary{{"a", {{"b", 1}, {"c", 2}}}}));
}
