#include <limits>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonReader.h"
#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonWriter.h"

namespace {

std::string written(const ZRMJsonValue& value, ZRMJsonLayout layout = ZRMJsonLayout::Compact) {
    auto text = zrm_textFromJson(value, layout);
    return text ? std::move(text).value() : "error " + std::to_string(text.error().code());
}

TEST(ZRMJsonWriter, WritesCompactTextInTheOrderOfTheKeys) {
    const ZRMDictionary value{{"z", ZRMJsonArray{1, "two", ZRMDictionary{}}}, {"a", nullptr}};
    EXPECT_EQ(written(value), R"({"z":[1,"two",{}],"a":null})");
}

TEST(ZRMJsonWriter, WritesPrettyTextWithOneMemberALine) {
    const ZRMDictionary value{{"a", ZRMJsonArray{1, true}}, {"b", ZRMDictionary{}}};
    EXPECT_EQ(written(value, ZRMJsonLayout::Pretty),
              "{\n  \"a\" : [\n    1,\n    true\n  ],\n  \"b\" : {}\n}");
}

TEST(ZRMJsonWriter, WritesNumbersSoThatTheyReadBackEqual) {
    EXPECT_EQ(written(1.0), "1");
    EXPECT_EQ(written(0.1), "0.1");
    EXPECT_EQ(written(48.208174), "48.208174");
    EXPECT_EQ(written(-2.5e-10), "-2.5e-10");
    EXPECT_EQ(written(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(written(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    for (const double number : {std::numeric_limits<double>::max(), 5e-324, 1e300 / 3}) {
        const auto value = zrm_jsonFromData(zrm_dataFromText(written(number)));
        ASSERT_TRUE(value);
        EXPECT_EQ(value.value().to_number<double>(), number);
    }
}

TEST(ZRMJsonWriter, RefusesNumbersThatJsonCannotExpress) {
    const auto notANumber = zrm_textFromJson(std::numeric_limits<double>::quiet_NaN());
    ASSERT_FALSE(notANumber);
    EXPECT_EQ(notANumber.error().domain(), kZRMJsonErrorDomain);
    EXPECT_EQ(notANumber.error().code(), ZRMJsonErrorNotANumber);
    EXPECT_FALSE(zrm_textFromJson(ZRMJsonArray{{std::numeric_limits<double>::infinity()}}));
}

TEST(ZRMJsonWriter, EscapesWhatJsonMustNotHoldBare) {
    EXPECT_EQ(written("\"\\\b\f\n\r\t/"), R"("\"\\\b\f\n\r\t/")");
    EXPECT_EQ(written(boost::json::string_view("\0\x1f\x7f", 3)), "\"\\u0000\\u001f\x7f\"");
    EXPECT_EQ(written("grüße 漢 🙂"), "\"grüße 漢 🙂\"");
}

TEST(ZRMJsonWriter, ReplacesBytesThatAreNotUtf8InValuesAndKeys) {
    EXPECT_EQ(written("a\xFF\xC3z\xED\xA0\x80"), "\"a\uFFFD\uFFFDz\uFFFD\uFFFD\uFFFD\"");
    EXPECT_EQ(written(ZRMDictionary{{"\xF0\x9F", 1}}), "{\"\uFFFD\":1}");
    EXPECT_EQ(zrm_validUtf8String("ok\xC0\xAF"), "ok\uFFFD\uFFFD");
}

TEST(ZRMJsonWriter, RefusesNestingThatIsTooDeep) {
    ZRMJsonValue nested = ZRMJsonArray{};
    for (int depth = 1; depth < 128; ++depth) {
        nested = ZRMJsonArray{std::move(nested)};
    }
    EXPECT_TRUE(zrm_textFromJson(nested));
    const auto deeper = zrm_textFromJson(ZRMJsonArray{ZRMJsonArray{nested}});
    ASSERT_FALSE(deeper);
    EXPECT_EQ(deeper.error().code(), ZRMJsonErrorTooDeep);
}

}  // namespace
