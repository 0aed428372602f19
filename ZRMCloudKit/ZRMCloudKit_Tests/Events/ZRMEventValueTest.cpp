#include <array>
#include <limits>

#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventField.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventValue.h"

namespace {

struct Thing {
    std::string text = "text";
    bool flag = true;
    std::uint64_t number = 18446744073709551615U;
    double real = 0.5;
    std::optional<std::int64_t> perhaps;
    std::vector<std::string> lines = {"a", "b\xC3"};
    ZRMDate date{0};
    [[nodiscard]] bool negated() const { return !flag; }
};

std::string shouted(const Thing& thing) {
    return thing.text + "!";
}

constexpr std::array kFields{
    zrm_eventField<&Thing::text>("t", ""),    zrm_eventField<&Thing::flag>("f", ""),
    zrm_eventField<&Thing::number>("n", ""),  zrm_eventField<&Thing::real>("r", ""),
    zrm_eventField<&Thing::perhaps>("p", ""), zrm_eventField<&Thing::lines>("l", ""),
    zrm_eventField<&Thing::date>("d", ""),    zrm_eventField<&Thing::negated>("g", ""),
    zrm_eventField<&shouted>("s", ""),
};

TEST(ZRMEventField, ReadsMembersGettersAndFunctionsInTheOrderOfTheTable) {
    Thing thing;
    const ZRMDictionary expected{{"t", "text"},
                                 {"f", true},
                                 {"n", 18446744073709551615U},
                                 {"r", 0.5},
                                 {"l", ZRMJsonArray{"a", "b\uFFFD"}},
                                 {"d", "1970-01-01 00:00:00.000000"},
                                 {"g", false},
                                 {"s", "text!"}};
    const auto body = zrm_eventBody(thing, kFields);
    EXPECT_EQ(body, expected);
    EXPECT_EQ(body.begin()->key(), "t");
    thing.perhaps = -1;
    EXPECT_EQ(zrm_eventBody(thing, kFields).at("p"), -1);
}

TEST(ZRMEventField, LeavesOutNumbersThatJsonCannotExpress) {
    Thing thing;
    thing.real = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(zrm_eventBody(thing, kFields).contains("r"));
}

TEST(ZRMEventField, KnowsTheJsonTypeForTheDocumentation) {
    const std::array expected{"string",           "bool",          "number", "number", "number",
                              "array of strings", "string (date)", "bool",   "string"};
    for (std::size_t index = 0; index < kFields.size(); ++index) {
        EXPECT_STREQ(kFields.at(index).jsonType, expected.at(index)) << kFields.at(index).key;
    }
}

TEST(ZRMEventValue, RepairsTextsAndNamesAtEveryDepth) {
    const ZRMDictionary broken{
        {"k\xFF", ZRMJsonArray{"v\xFF", ZRMDictionary{{"\xC0", "ok"}}, 1, nullptr}}};
    const ZRMDictionary repaired{
        {"k\uFFFD", ZRMJsonArray{"v\uFFFD", ZRMDictionary{{"\uFFFD", "ok"}}, 1, nullptr}}};
    EXPECT_EQ(zrm_repairedJson(broken), repaired);
    EXPECT_EQ(zrm_eventValue(broken), ZRMJsonValue(repaired));
}

}  // namespace
