#include <limits>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"

namespace {

ZRMData bytes(std::string_view text) {
    return zrm_dataFromText(text);
}

// A digest of nothing but the bytes it was fed, or one that fails at a chosen step.
class ScriptedDigests final : public ZRMDigests {
  public:
    enum class Failure { None, AtMaking, AtFinish };
    explicit ScriptedDigests(Failure failure = Failure::None) : failure_(failure) {}

    std::unique_ptr<ZRMDigestContext> makeContext(ZRMDigestAlgorithm algorithm) override {
        asked = algorithm;
        return failure_ == Failure::AtMaking ? nullptr : std::make_unique<Context>(failure_);
    }

    std::optional<ZRMDigestAlgorithm> asked;

  private:
    class Context final : public ZRMDigestContext {
      public:
        explicit Context(Failure failure) : failure_(failure) {}
        void update(std::span<const std::uint8_t> part) override {
            fed_.insert(fed_.end(), part.begin(), part.end());
        }
        std::optional<ZRMData> finish() override {
            return failure_ == Failure::AtFinish ? std::nullopt : std::optional(fed_);
        }

      private:
        Failure failure_;
        ZRMData fed_;
    };

    Failure failure_;
};

}  // namespace

TEST(ZRMData, JsonIsCompact) {
    const ZRMDictionary object{{"a", 1}, {"b", {true, nullptr, "x"}}};
    EXPECT_EQ(zrm_dataFromJson(object), bytes(R"({"a":1,"b":[true,null,"x"]})"));
    EXPECT_EQ(zrm_dataFromJson(ZRMJsonValue(object)), bytes(R"({"a":1,"b":[true,null,"x"]})"));
}

TEST(ZRMData, JsonThatCannotBeWrittenIsLoggedAndHandedBack) {
    const ZRMDictionary object{{"a", std::numeric_limits<double>::infinity()}};
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

TEST(ZRMData, HashesAskForTheirAlgorithmAndFeedTheWholeData) {
    ScriptedDigests digests;
    EXPECT_EQ(zrm_hashSHA256(digests, bytes("abc")), bytes("abc"));
    EXPECT_EQ(digests.asked, ZRMDigestAlgorithm::Sha256);
    EXPECT_EQ(zrm_hashSHA1(digests, bytes("")), bytes(""));
    EXPECT_EQ(digests.asked, ZRMDigestAlgorithm::Sha1);
}

TEST(ZRMData, HashesAreAbsentWhenThePrimitiveFails) {
    for (const auto failure :
         {ScriptedDigests::Failure::AtMaking, ScriptedDigests::Failure::AtFinish}) {
        ScriptedDigests digests(failure);
        EXPECT_EQ(zrm_hashSHA256(digests, bytes("abc")), std::nullopt);
        EXPECT_EQ(zrm_hashSHA1(digests, bytes("abc")), std::nullopt);
    }
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
