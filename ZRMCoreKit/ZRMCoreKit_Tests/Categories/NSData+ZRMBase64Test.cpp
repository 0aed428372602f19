#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMBase64.h"

namespace {

std::string encoded(std::string_view text) {
    return zrm_base64EncodedString(zrm_dataFromText(text));
}

std::optional<std::string> decoded(std::string_view text,
                                   ZRMBase64Decoding decoding = ZRMBase64Decoding::Strict) {
    const auto data = zrm_dataFromBase64String(text, decoding);
    return data ? std::optional(zrm_textFromData(*data)) : std::nullopt;
}

TEST(ZRMBase64, EncodesTheVectorsOfTheStandard) {
    EXPECT_EQ(encoded(""), "");
    EXPECT_EQ(encoded("f"), "Zg==");
    EXPECT_EQ(encoded("fo"), "Zm8=");
    EXPECT_EQ(encoded("foo"), "Zm9v");
    EXPECT_EQ(encoded("foob"), "Zm9vYg==");
    EXPECT_EQ(encoded("fooba"), "Zm9vYmE=");
    EXPECT_EQ(encoded("foobar"), "Zm9vYmFy");
    EXPECT_EQ(encoded("\xFB\xEF\xFF"), "++//");
}

TEST(ZRMBase64, DecodesWhatItEncodedForEveryByteAndLength) {
    ZRMData data;
    for (int byte = 255; byte >= 0; --byte) {
        EXPECT_EQ(zrm_dataFromBase64String(zrm_base64EncodedString(data)), data);
        data.push_back(static_cast<std::uint8_t>(byte));
    }
}

TEST(ZRMBase64, RefusesMissingPadding) {
    EXPECT_EQ(decoded("Zg"), std::nullopt);
    EXPECT_EQ(decoded("Zg="), std::nullopt);
    EXPECT_EQ(decoded("Zm8"), std::nullopt);
}

TEST(ZRMBase64, AcceptsSurplusPaddingAtTheEnd) {
    EXPECT_EQ(decoded("Zm8==="), "fo");
    EXPECT_EQ(decoded("Zg==="), "f");
    EXPECT_EQ(decoded("Zm9v="), "foo");
}

TEST(ZRMBase64, RefusesASingleDigitInTheLastGroup) {
    EXPECT_EQ(decoded("Z==="), std::nullopt);
    EXPECT_EQ(decoded("Zm9vZ="), std::nullopt);
}

TEST(ZRMBase64, RefusesDigitsAfterPadding) {
    EXPECT_EQ(decoded("Zg==Zg=="), std::nullopt);
    EXPECT_EQ(decoded("=Zg="), std::nullopt);
}

TEST(ZRMBase64, RefusesCharactersOutsideTheAlphabet) {
    EXPECT_EQ(decoded("Zm9\n"), std::nullopt);
    EXPECT_EQ(decoded("Zm-_"), std::nullopt);
    EXPECT_EQ(decoded(std::string_view("Zm\0v", 4)), std::nullopt);
}

TEST(ZRMBase64, SkipsUnknownCharactersWhenToldTo) {
    EXPECT_EQ(decoded("Zm9v\r\nYg=\n=", ZRMBase64Decoding::IgnoreUnknownCharacters), "foob");
    EXPECT_EQ(decoded("Zm9v\nYg", ZRMBase64Decoding::IgnoreUnknownCharacters), std::nullopt);
}

TEST(ZRMBase64, DropsBitsBeyondTheLastWholeByte) {
    EXPECT_EQ(decoded("Zh=="), "f");
}

}  // namespace
