#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMPlatform/Ports/Values/ZRMData.h"

namespace {

void expectRefused(std::string_view text, const ZRMJsonReadingOptions& options = {}) {
    const auto value = zrm_jsonFromText(text, options);
    ASSERT_FALSE(value) << text;
    EXPECT_EQ(value.error().domain(), "NSCocoaErrorDomain");
    EXPECT_EQ(value.error().code(), 3840);
    EXPECT_NE(value.error().localizedDescription(), "");
}

std::string nested(std::size_t levels) {
    return std::string(levels, '[') + std::string(levels, ']');
}

}  // namespace

TEST(ZRMJsonReader, ReadsEveryKind) {
    const auto value = zrm_jsonFromText(
        " {\"a\" : null, \"b\":[true,false], \"c\":-1, \"d\":1.5, \"e\":\"x\\u00e4\\n\"} \n");
    ASSERT_TRUE(value);
    EXPECT_EQ(
        value.value(),
        (ZRMJsonValue{{"a", nullptr}, {"b", {true, false}}, {"c", -1}, {"d", 1.5}, {"e", "xä\n"}}));
}

TEST(ZRMJsonReader, ReadsBytesAsItReadsText) {
    EXPECT_EQ(zrm_jsonFromData(zrm_dataFromText("{\"a\":1}")).value(), (ZRMJsonValue{{"a", 1}}));
    EXPECT_FALSE(zrm_jsonFromData({}));
}

TEST(ZRMJsonReader, AnyValueMayStandAlone) {
    EXPECT_EQ(zrm_jsonFromText("\"x\"").value(), ZRMJsonValue("x"));
    EXPECT_EQ(zrm_jsonFromText("7").value(), ZRMJsonValue(7));
}

TEST(ZRMJsonReader, RefusesWhatIsNoJson) {
    for (const auto* text :
         {"",         " ",     "{",      "[1,]",    "{\"a\":1,}",  "{a:1}",
          "{'a':1}",  "[1 2]", "nul",    "NaN",     "Infinity",    "-Infinity",
          "01",       "1.",    ".5",     "+1",      "0x1",         "// c\n1",
          "/* c */1", "\"a",   "\"\t\"", "\"\\x\"", "\"\\ud800\"", "\"\\u12\""}) {
        expectRefused(text);
    }
}

TEST(ZRMJsonReader, RefusesWhatFollowsTheValue) {
    for (const auto* text : {"{}x", "{}{}", "1 2", "[] ,", "null\x01"}) {
        expectRefused(text);
    }
    expectRefused(std::string_view("{}\0", 3));
}

TEST(ZRMJsonReader, RefusesTextThatIsNotUtf8) {
    for (const auto* text : {"\"\xFF\"", "\"\xC0\x80\"", "\"\xED\xA0\x80\"", "{\"\xE2\x82\":1}",
                             "\xEF\xBB\xBF{}", "\"\xF4\x90\x80\x80\""}) {
        expectRefused(text);
    }
}

TEST(ZRMJsonReader, RefusesNestingBeyond32Levels) {
    EXPECT_TRUE(zrm_jsonFromText(nested(32)));
    expectRefused(nested(33));
    expectRefused(std::string(100000, '['));
}

TEST(ZRMJsonReader, RefusesNumbersBeyondADouble) {
    EXPECT_TRUE(zrm_jsonFromText("1e308"));
    expectRefused("1e400");
    expectRefused("{\"a\":[-1e400]}");
    expectRefused("1e99999999999");
}

TEST(ZRMJsonReader, RefusesMoreBytesThanAllowed) {
    EXPECT_TRUE(zrm_jsonFromText("[1,2]", {.maximumBytes = 5}));
    expectRefused("[1,2]", {.maximumBytes = 4});
    expectRefused("[1,2] ", {.maximumBytes = 5});
}

TEST(ZRMJsonReader, TheLastOfTwoMembersOfOneNameWins) {
    EXPECT_EQ(zrm_jsonFromText(R"({"a":1,"a":2})").value(), (ZRMJsonValue{{"a", 2}}));
}

TEST(ZRMJsonReader, RefusesTwoMembersOfOneNameWhenAsked) {
    const ZRMJsonReadingOptions strictly{.refusesDuplicateNames = true};
    expectRefused(R"({"a":1,"a":2})", strictly);
    expectRefused(R"([{"b":{"a":1,"c":[],"a":2}}])", strictly);
    expectRefused(R"({"a":1,"\u0061":2})", strictly);
    expectRefused(R"({"":1,"":2})", strictly);
    expectRefused("{\"a\" \t\r\n:1,\"a\"\n:2}", strictly);
    expectRefused(R"({"a\\":1,"b":"}","a\\":2})", strictly);
    expectRefused(R"({"a\"":1,"a\u0022":2})", strictly);
    expectRefused(R"({"\u00e4":1,"ä":2})", strictly);
    EXPECT_TRUE(zrm_jsonFromText(R"({"a":{"a":1},"b":[{"a":1},{"a":2}],"A":0})", strictly));
    EXPECT_TRUE(zrm_jsonFromText(R"({"a":"a","b":["a","a"],"c":"{\"a\":","d":"\\"})", strictly));
    EXPECT_TRUE(zrm_jsonFromText(R"("a")", strictly));
    EXPECT_TRUE(zrm_jsonFromText("[]", strictly));
    EXPECT_TRUE(
        zrm_jsonFromText(R"({"a":18446744073709551615,"b":-1.5e3,"c":true,"d":null})", strictly));
}

TEST(ZRMJsonReader, TellsLongNamesApartWhereverTheyAreEscaped) {
    const ZRMJsonReadingOptions strictly{.refusesDuplicateNames = true};
    const std::string name(10000, 'n');
    const auto object = [&name](const std::string& second) {
        return "{\"" + name + "\":1,\"\\u006e" + second + "\":2}";
    };
    expectRefused(object(name.substr(1)), strictly);
    EXPECT_TRUE(zrm_jsonFromText(object(name), strictly));
}
