#include <gtest/gtest.h>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonReader.h"

namespace {

ZRMResult<ZRMJsonValue> read(std::string_view text,
                             ZRMJsonDuplicateKeys keys = ZRMJsonDuplicateKeys::LastWins) {
    return zrm_jsonFromData(zrm_dataFromText(text), keys);
}

TEST(ZRMJsonReader, ReadsEveryKindOfValue) {
    const auto value = read(R"({"a":[1,-2,1.5,true,null,"ü\n"]})");
    ASSERT_TRUE(value);
    const ZRMDictionary expected{{"a", ZRMJsonArray{1, -2, 1.5, true, nullptr, "ü\n"}}};
    EXPECT_EQ(value.value(), ZRMJsonValue(expected));
}

TEST(ZRMJsonReader, PassesOnTheParsersOwnError) {
    const auto value = read("{\"a\":");
    ASSERT_FALSE(value);
    EXPECT_EQ(value.error().domain(), "boost.json");
    EXPECT_NE(value.error().code(), 0);
    EXPECT_FALSE(value.error().localizedDescription().empty());
}

TEST(ZRMJsonReader, RefusesEmptyBytesGarbageAndWhatFollowsTheDocument) {
    EXPECT_FALSE(read(""));
    EXPECT_FALSE(read("{} {}"));
    EXPECT_FALSE(read("[1,]"));
    EXPECT_FALSE(read("NaN"));
    EXPECT_FALSE(read("// comment\n1"));
}

TEST(ZRMJsonReader, RefusesBytesThatAreNotUtf8) {
    EXPECT_FALSE(read("\"\xC3(\""));
    EXPECT_FALSE(read("\"\xED\xA0\x80\""));
}

TEST(ZRMJsonReader, RefusesDeepNestingWithoutHarm) {
    EXPECT_TRUE(read(std::string(32, '[') + std::string(32, ']')));
    EXPECT_FALSE(read(std::string(100000, '[')));
}

TEST(ZRMJsonReader, RefusesDocumentsAboveTheSizeLimitUnread) {
    const ZRMData blanks(kZRMJsonMaximumSize + 1, ' ');
    const auto value = zrm_jsonFromData(blanks);
    ASSERT_FALSE(value);
    EXPECT_EQ(value.error().domain(), kZRMJsonErrorDomain);
    EXPECT_EQ(value.error().code(), ZRMJsonErrorTooLarge);
}

TEST(ZRMJsonReader, LetsTheLastOfRepeatedKeysWinUnlessToldToRefuse) {
    const auto value = read(R"({"a":1,"a":2})");
    ASSERT_TRUE(value);
    EXPECT_EQ(value.value().at("a"), 2);
}

TEST(ZRMJsonReader, RefusesRepeatedKeysInSignedDocuments) {
    for (const auto* text :
         {R"({"a":1,"a":2})", R"([{"b":{"a":1,"a":1}}])", R"({"a":1,"\u0061":2})"}) {
        const auto value = read(text, ZRMJsonDuplicateKeys::Refuse);
        ASSERT_FALSE(value) << text;
        EXPECT_EQ(value.error().code(), ZRMJsonErrorDuplicateKey) << text;
    }
}

TEST(ZRMJsonReader, AcceptsTheSameKeyInDifferentObjectsOfSignedDocuments) {
    EXPECT_TRUE(read(R"([{"a":1},{"a":{"a":2,"b":"a"}}])", ZRMJsonDuplicateKeys::Refuse));
}

}  // namespace
