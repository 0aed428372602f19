#include <algorithm>
#include <limits>
#include <utility>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"

namespace {

std::string compact(const ZRMJsonValue& value) {
    const auto text = zrm_compactJsonText(value);
    return text ? text.value() : "error: " + text.error().localizedDescription();
}

std::string pretty(const ZRMJsonValue& value) {
    const auto text = zrm_prettyJsonText(value);
    return text ? text.value() : "error: " + text.error().localizedDescription();
}

void expectRefused(const ZRMJsonValue& value, const char* reason) {
    for (const auto& text : {zrm_compactJsonText(value), zrm_prettyJsonText(value)}) {
        ASSERT_FALSE(text);
        EXPECT_EQ(text.error().domain(), "NSCocoaErrorDomain");
        EXPECT_EQ(text.error().code(), 3840);
        EXPECT_NE(text.error().localizedDescription().find(reason), std::string::npos)
            << text.error().localizedDescription();
    }
}

ZRMJsonValue nested(int levels) {
    ZRMJsonValue value = 1;
    for (int level = 0; level < levels; ++level) {
        ZRMJsonArray array;
        array.emplace_back(std::move(value));
        value = std::move(array);
    }
    return value;
}

}  // namespace

TEST(ZRMJsonWriter, WritesEveryKindWithoutWhiteSpace) {
    EXPECT_EQ(compact({{"a", nullptr}, {"b", true}, {"c", false}, {"d", {1, "x"}}}),
              R"({"a":null,"b":true,"c":false,"d":[1,"x"]})");
    EXPECT_EQ(compact(ZRMDictionary{}), "{}");
    EXPECT_EQ(compact(ZRMJsonArray{}), "[]");
}

TEST(ZRMJsonWriter, ADictionaryIsWrittenLikeTheValueThatHoldsIt) {
    const ZRMDictionary dictionary{{"b", 1}, {"a", {{"c", 2}}}};
    EXPECT_EQ(zrm_compactJsonText(dictionary).value(), compact(dictionary));
    EXPECT_EQ(zrm_prettyJsonText(dictionary).value(), pretty(dictionary));
}

TEST(ZRMJsonWriter, NamesKeepTheirOrder) {
    EXPECT_EQ(compact({{"z", 1}, {"a", 2}, {"m", 3}}), R"({"z":1,"a":2,"m":3})");
}

TEST(ZRMJsonWriter, NumbersAreWrittenAsShortlyAsTheyReadBack) {
    EXPECT_EQ(compact(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(compact(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(compact(1.5), "1.5");
    EXPECT_EQ(compact(0.1), "0.1");
    EXPECT_EQ(compact(3.0), "3");
    EXPECT_EQ(compact(-0.0), "-0.0");
    EXPECT_EQ(compact(1e300), "1e+300");
    EXPECT_EQ(compact(48.208354), "48.208354");
}

TEST(ZRMJsonWriter, EscapesQuotesBackslashesAndControlCharacters) {
    EXPECT_EQ(compact("\"\\\b\f\n\r\t"), R"("\"\\\b\f\n\r\t")");
    EXPECT_EQ(compact(boost::json::string("\0\x01\x1f", 3)), R"("\u0000\u0001\u001f")");
    EXPECT_EQ(compact("a/b\x7f"), "\"a/b\x7f\"");
    EXPECT_EQ(compact({{"a\"b", "ä€😀"}}), "{\"a\\\"b\":\"ä€😀\"}");
}

TEST(ZRMJsonWriter, EscapesWhereverTheyStandInLongText) {
    const std::pair<char, std::string> escapes[] = {{'"', R"(\")"},
                                                    {'\\', R"(\\)"},
                                                    {'\x1f', R"(\u001f)"},
                                                    {'\n', R"(\n)"},
                                                    {'\0', R"(\u0000)"}};
    for (const auto& [character, escape] : escapes) {
        for (std::size_t place = 0; place < 20; ++place) {
            // Neighbours of what is escaped, and bytes beyond ASCII.
            std::string text = "! #[]~ \x7f\xD0\x96 (0)!!";
            const auto at = std::min(place, text.find('\xD0'));
            const auto expected = '"' + text.substr(0, at) + escape + text.substr(at) + '"';
            text.insert(at, 1, character);
            EXPECT_EQ(compact(ZRMJsonValue(text)), expected) << place;
        }
    }
}

TEST(ZRMJsonWriter, RefusesNumbersThatAreNotFinite) {
    expectRefused(std::numeric_limits<double>::quiet_NaN(), "not finite");
    expectRefused(std::numeric_limits<double>::infinity(), "not finite");
    expectRefused({{"a", {1, -std::numeric_limits<double>::infinity()}}}, "not finite");
}

TEST(ZRMJsonWriter, RefusesTextThatIsNotUtf8) {
    expectRefused("\xFF", "UTF-8");
    expectRefused("\xC0\x80", "UTF-8");
    expectRefused("\xED\xA0\x80", "UTF-8");
    expectRefused(ZRMDictionary{{"\xE2\x82", 1}}, "UTF-8");
}

TEST(ZRMJsonWriter, RefusesNestingBeyond512Levels) {
    EXPECT_EQ(compact(nested(512)).size(), 2U * 512 + 1);
    expectRefused(nested(513), "512 levels");
}

TEST(ZRMJsonWriter, PrettyTextHasOneMemberALine) {
    EXPECT_EQ(
        pretty({{"a", 1}, {"b", {{"c", {1, "x"}}, {"d", ZRMDictionary{}}}}, {"e", ZRMJsonArray{}}}),
        "{\n"
        "  \"a\" : 1,\n"
        "  \"b\" : {\n"
        "    \"c\" : [\n"
        "      1,\n"
        "      \"x\"\n"
        "    ],\n"
        "    \"d\" : {}\n"
        "  },\n"
        "  \"e\" : []\n"
        "}");
    EXPECT_EQ(pretty(ZRMDictionary{}), "{}");
    EXPECT_EQ(pretty("text"), "\"text\"");
}
