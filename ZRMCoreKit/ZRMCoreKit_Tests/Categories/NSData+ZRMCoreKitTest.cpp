#include <limits>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

ZRMData bytes(std::string_view text) {
    return zrm_dataFromText(text);
}

}  // namespace

TEST(ZRMData, JsonIsCompact) {
    const ZRMDictionary object{{"a", 1}, {"b", {true, nullptr, "x"}}};
    EXPECT_EQ(zrm_dataFromJson(object), bytes(R"({"a":1,"b":[true,null,"x"]})"));
    EXPECT_EQ(zrm_dataFromJson(ZRMJsonValue(object)), bytes(R"({"a":1,"b":[true,null,"x"]})"));
}

TEST(ZRMData, JsonThatCannotBeWrittenIsLoggedAndHandedBack) {
    const ZRMDictionary object{{"a", std::numeric_limits<double>::infinity()}};
    ZRMSimulatedDevice device;
    const ZRMScopedPlatform installed(device);
    const ZRMRecordedLog log;
    std::optional<ZRMError> error;
    EXPECT_EQ(zrm_dataFromJson(object, error), std::nullopt);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), "NSCocoaErrorDomain");
    EXPECT_EQ(error->code(), 3840);
    EXPECT_EQ(log.errors(),
              std::vector<std::string>{"Error while converting json to data object: " +
                                       error->localizedDescription()});

    EXPECT_EQ(zrm_dataFromJson(ZRMJsonValue(object)), std::nullopt);
    EXPECT_EQ(log.errors().size(), 2U);
}

TEST(ZRMData, JsonThatIsWrittenClearsTheError) {
    std::optional<ZRMError> error = ZRMError("domain", 1);
    EXPECT_TRUE(zrm_dataFromJson(ZRMJsonValue(1), error));
    EXPECT_FALSE(error);
}

TEST(ZRMData, HexHasTwoLowerCaseDigitsAByte) {
    EXPECT_EQ(zrm_hexString({}), "");
    EXPECT_EQ(zrm_hexString(ZRMData{0x00, 0x0F, 0xA0, 0xFF}), "000fa0ff");
}

TEST(ZRMData, XorRepeatsTheKey) {
    const ZRMData data{1, 2, 3, 4, 5};
    EXPECT_EQ(zrm_xorWithData(data, ZRMData{0xF0, 0x0F}), (ZRMData{0xF1, 0x0D, 0xF3, 0x0B, 0xF5}));
    EXPECT_EQ(zrm_xorWithData(data, ZRMData{1, 2, 3, 4, 5, 6, 7}), (ZRMData{0, 0, 0, 0, 0}));
    EXPECT_EQ(zrm_xorWithData({}, ZRMData{1}), ZRMData{});
}

TEST(ZRMData, XorWithAnEmptyKeyIsACopy) {
    const ZRMData data{1, 2, 3};
    EXPECT_EQ(zrm_xorWithData(data, {}), data);
    EXPECT_EQ(zrm_xorWithBytes(data, nullptr, 0), data);
}

TEST(ZRMData, XorWithBytesTakesTheFirstOnes) {
    const ZRMData key{1, 2, 0xFF};
    EXPECT_EQ(zrm_xorWithBytes(ZRMData{1, 2, 3}, key.data(), 2), (ZRMData{0, 0, 2}));
}

TEST(ZRMData, HashesAreThoseOfThePublishedExamples) {
    ZRMSimulatedDigests digests;
    EXPECT_EQ(zrm_hexString(zrm_hashSHA256(digests, bytes("abc")).value()),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(zrm_hexString(zrm_hashSHA1(digests, bytes("abc")).value()),
              "a9993e364706816aba3e25717850c26c9cd0d89d");
    EXPECT_EQ(zrm_hexString(zrm_hashSHA256(digests, {}).value()),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(zrm_hexString(zrm_hashSHA1(digests, {}).value()),
              "da39a3ee5e6b4b0d3255bfef95601890afd80709");
}

TEST(ZRMData, HashesAreAbsentWhenThePrimitiveFails) {
    ZRMSimulatedDigests digests;
    digests.setFinishFails(true);
    EXPECT_EQ(zrm_hashSHA256(digests, bytes("abc")), std::nullopt);
    EXPECT_EQ(zrm_hashSHA1(digests, bytes("abc")), std::nullopt);
}

TEST(ZRMData, HashesAreAbsentWhenTheAlgorithmIsNotToBeHad) {
    ZRMSimulatedDigests digests;
    digests.setAvailable(ZRMDigestAlgorithm::Sha1, false);
    EXPECT_EQ(zrm_hashSHA1(digests, bytes("abc")), std::nullopt);
    EXPECT_TRUE(zrm_hashSHA256(digests, bytes("abc")));
    digests.setAvailable(ZRMDigestAlgorithm::Sha256, false);
    EXPECT_EQ(zrm_hashSHA256(digests, bytes("abc")), std::nullopt);
}

TEST(ZRMData, Base64IsPaddedAndHasNoLineBreaks) {
    const std::pair<const char*, const char*> cases[] = {{"", ""},
                                                         {"f", "Zg=="},
                                                         {"fo", "Zm8="},
                                                         {"foo", "Zm9v"},
                                                         {"foob", "Zm9vYg=="},
                                                         {"fooba", "Zm9vYmE="},
                                                         {"foobar", "Zm9vYmFy"}};
    for (const auto& [plain, encoded] : cases) {
        EXPECT_EQ(zrm_base64String(bytes(plain)), encoded);
        EXPECT_EQ(zrm_dataFromBase64String(encoded), bytes(plain));
    }
    EXPECT_EQ(zrm_base64String(ZRMData{0xFB, 0xFF, 0xBF}), "+/+/");
    EXPECT_EQ(zrm_base64String(ZRMData(300, 0)), std::string(400, 'A'));
}

TEST(ZRMData, Base64UrlHasItsOwnAlphabetAndNoPadding) {
    EXPECT_EQ(zrm_base64UrlString({}), "");
    EXPECT_EQ(zrm_base64UrlString(ZRMData{0xFB}), "-w");
    EXPECT_EQ(zrm_base64UrlString(ZRMData{0xFB, 0xFF}), "-_8");
    ZRMData data;
    for (unsigned byte = 0; byte < 256; ++byte) {
        data.push_back(static_cast<std::uint8_t>(byte * 7));
        EXPECT_EQ(zrm_base64UrlString(data), zrm_base64UrlFromBase64String(zrm_base64String(data)));
    }
}

TEST(ZRMData, Base64DecodingAcceptsSurplusPaddingAndLooseBits) {
    EXPECT_EQ(zrm_dataFromBase64String("YWI==="), bytes("ab"));
    EXPECT_EQ(zrm_dataFromBase64String("YWJj="), bytes("abc"));
    EXPECT_EQ(zrm_dataFromBase64String("YR=="), bytes("a"));
}

TEST(ZRMData, Base64DecodingRefusesMissingPadding) {
    for (const auto* text : {"YQ", "YQ=", "YWI", "Y", "Y===", "YWJjZ=", "YWJjZA="}) {
        EXPECT_EQ(zrm_dataFromBase64String(text), std::nullopt) << text;
    }
}

TEST(ZRMData, Base64DecodingRefusesWhatIsNotOfTheAlphabet) {
    for (const auto* text :
         {"YQ==\n", " YQ==", "YW-_", "YQ==YQ==", "=YQ==", "Y\xC3\xA4==", "YQ.=="}) {
        EXPECT_EQ(zrm_dataFromBase64String(text), std::nullopt) << text;
    }
}

TEST(ZRMData, Base64DecodingPassesOverUnknownCharactersWhenAsked) {
    const auto decoded = [](const char* text) {
        return zrm_dataFromBase64String(text, ZRMBase64Decoding::IgnoreUnknownCharacters);
    };
    EXPECT_EQ(decoded("Zm9v\r\nYm\tFy"), bytes("foobar"));
    EXPECT_EQ(decoded("-Z g.=\n="), bytes("f"));
    EXPECT_EQ(decoded("Zg"), std::nullopt);
    EXPECT_EQ(decoded("Zg==Zg=="), std::nullopt);
}
