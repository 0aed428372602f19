#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmFactory.h"
#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmRS256.h"
#include "ZRMJWS/ZRMJWS_Lib/Signer/ZRMJwsSigner.h"
#include "ZRMJWS/ZRMJWS_Tests/Support/ZRMOpenSslKey.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

// Digests that are not to be had.
class FaultyDigests final : public ZRMDigests {
  public:
    std::unique_ptr<ZRMDigestContext> makeContext(ZRMDigestAlgorithm) override { return nullptr; }
};

// A key that refuses everything with a status.
class FaultyKey final : public ZRMRsaKey {
  public:
    [[nodiscard]] std::size_t blockSize() const override { return 256; }
    std::int32_t signDigest(std::span<const std::uint8_t>, std::span<std::uint8_t>,
                            std::size_t&) const override {
        return -50;
    }
    [[nodiscard]] std::int32_t verifyDigest(std::span<const std::uint8_t>,
                                            std::span<const std::uint8_t>) const override {
        return -9809;
    }
};

// A key that signs with fewer bytes than its block and tells what it was given.
class ShortSigningKey final : public ZRMRsaKey {
  public:
    mutable ZRMData room;

    [[nodiscard]] std::size_t blockSize() const override { return 8; }
    std::int32_t signDigest(std::span<const std::uint8_t>, std::span<std::uint8_t> signature,
                            std::size_t& length) const override {
        room.assign(signature.begin(), signature.end());
        signature[0] = 0xFB;
        signature[1] = 0xFF;
        length = 2;
        return 0;
    }
    [[nodiscard]] std::int32_t verifyDigest(std::span<const std::uint8_t>,
                                            std::span<const std::uint8_t>) const override {
        return -1;
    }
};

class ZRMJwsAlgorithmRS256Test : public testing::Test {
  protected:
    std::shared_ptr<ZRMJwsAlgorithm> signing() const {
        return ZRMJwsAlgorithmFactory::algorithmRS256(
            platform_->digests, platform_->rsaKeys->privateKeyFromDer(openSsl_.privateKeyDer()));
    }
    std::shared_ptr<ZRMJwsAlgorithm> verifying() const {
        return ZRMJwsAlgorithmFactory::algorithmRS256(
            platform_->digests, platform_->rsaKeys->publicKeyFromDer(openSsl_.publicKeyDer()));
    }
    static ZRMData decoded(const ZRMData& base64Url) {
        const auto base64 = zrm_base64FromBase64UrlString(zrm_textFromData(base64Url));
        return zrm_dataFromBase64String(base64).value();
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    std::shared_ptr<const ZRMPlatform> platform_ = device_.platform();
    // Made once: a new key takes long.
    inline static const ZRMOpenSslKey openSsl_;
    ZRMData data_ = zrm_dataFromText("eyJhbGciOiJSUzI1NiJ9.e30");
};

TEST_F(ZRMJwsAlgorithmRS256Test, NamesItselfInTheProtectedHeaderAlone) {
    const ZRMJwsAlgorithmRS256 algorithm(platform_->digests, nullptr);
    EXPECT_EQ(algorithm.name(), "RS256");
    EXPECT_EQ(algorithm.protectedHeaders(), (ZRMDictionary{{"alg", "RS256"}}));
    EXPECT_EQ(algorithm.unprotectedHeaders(), std::nullopt);
}

TEST_F(ZRMJwsAlgorithmRS256Test, SignsSoThatAnotherImplementationVerifies) {
    const auto signature = signing()->signData(data_);
    ASSERT_TRUE(signature);
    EXPECT_TRUE(openSsl_.verifies(data_, decoded(*signature)));
}

TEST_F(ZRMJwsAlgorithmRS256Test, VerifiesWhatAnotherImplementationSigned) {
    EXPECT_TRUE(verifying()->verifyData(data_, openSsl_.sign(data_)));
    EXPECT_TRUE(signing()->verifyData(data_, openSsl_.sign(data_)));
}

TEST_F(ZRMJwsAlgorithmRS256Test, SignsIntoBase64UrlTextWithoutPadding) {
    for (int round = 0; round < 8; ++round) {
        data_.push_back(static_cast<std::uint8_t>(round));
        const auto signature = signing()->signData(data_);
        ASSERT_TRUE(signature);
        EXPECT_EQ(signature->size(), 342U);
        EXPECT_EQ(zrm_textFromData(*signature).find_first_of("=+/"), std::string::npos);
    }
}

TEST_F(ZRMJwsAlgorithmRS256Test, GivesTheKeyABlockOfZerosAndTakesTheLengthItReturns) {
    const auto key = std::make_shared<ShortSigningKey>();
    const ZRMJwsAlgorithmRS256 algorithm(platform_->digests, key);
    EXPECT_EQ(algorithm.signData(data_), zrm_dataFromText("-_8"));
    EXPECT_EQ(key->room, ZRMData(8, 0));
}

TEST_F(ZRMJwsAlgorithmRS256Test, WritesBytesAsBase64UrlText) {
    EXPECT_EQ(zrm_textFromData(ZRMJwsAlgorithmRS256::getBase64UrlBytes({0xFB, 0xFF, 0xBF, 0x00})),
              "-_-_AA");
    EXPECT_EQ(ZRMJwsAlgorithmRS256::getBase64UrlBytes({}), ZRMData());
}

TEST_F(ZRMJwsAlgorithmRS256Test, RefusesOtherDataAndEveryChangedByteOfTheSignature) {
    const auto signature = openSsl_.sign(data_);
    EXPECT_FALSE(verifying()->verifyData(zrm_dataFromText("other"), signature));
    for (std::size_t index = 0; index < signature.size(); ++index) {
        auto changed = signature;
        changed[index] ^= 1U;
        EXPECT_FALSE(verifying()->verifyData(data_, changed)) << index;
    }
}

TEST_F(ZRMJwsAlgorithmRS256Test, TakesSignaturesShorterOrLongerThanTheBlockForAMismatch) {
    auto signature = openSsl_.sign(data_);
    EXPECT_FALSE(verifying()->verifyData(data_, {}));
    signature.push_back(0);
    EXPECT_FALSE(verifying()->verifyData(data_, signature));
    signature.resize(signature.size() - 2);
    EXPECT_FALSE(verifying()->verifyData(data_, signature));
}

TEST_F(ZRMJwsAlgorithmRS256Test, RefusesTheSignatureOfAnotherKey) {
    EXPECT_FALSE(verifying()->verifyData(data_, ZRMOpenSslKey().sign(data_)));
}

TEST_F(ZRMJwsAlgorithmRS256Test, SignsNothingWithAPublicKeyWithoutALogLine) {
    const ZRMRecordedLog log;
    EXPECT_EQ(verifying()->signData(data_), std::nullopt);
    EXPECT_THAT(log.messages(), testing::IsEmpty());
}

TEST_F(ZRMJwsAlgorithmRS256Test, SignsAndVerifiesNothingWhenTheKeyFailsOrIsMissing) {
    const ZRMRecordedLog log;
    for (const std::shared_ptr<ZRMRsaKey>& key :
         {std::shared_ptr<ZRMRsaKey>(std::make_shared<FaultyKey>()),
          std::shared_ptr<ZRMRsaKey>()}) {
        const ZRMJwsAlgorithmRS256 algorithm(platform_->digests, key);
        EXPECT_EQ(algorithm.signData(data_), std::nullopt);
        EXPECT_FALSE(algorithm.verifyData(data_, openSsl_.sign(data_)));
    }
    EXPECT_THAT(log.messages(), testing::IsEmpty());
}

TEST_F(ZRMJwsAlgorithmRS256Test, LogsAHashingErrorAndSignsAndVerifiesNothing) {
    const ZRMJwsAlgorithmRS256 algorithm(
        std::make_shared<FaultyDigests>(),
        platform_->rsaKeys->privateKeyFromDer(openSsl_.privateKeyDer()));
    const ZRMRecordedLog log;
    EXPECT_EQ(algorithm.signData(data_), std::nullopt);
    EXPECT_FALSE(algorithm.verifyData(data_, openSsl_.sign(data_)));
    EXPECT_EQ(log.errors(), (std::vector<std::string>{"Hashing error", "Hashing error"}));
}

TEST_F(ZRMJwsAlgorithmRS256Test, MakesSignerOutputThatAnotherImplementationVerifies) {
    const auto object = ZRMJwsSigner().signPayload(R"({"config":{}})", signing().get());
    ASSERT_EQ(object.signatures().size(), 1U);
    const auto& signature = object.signatures().front();
    EXPECT_EQ(signature.protectedHeader(), "eyJhbGciOiJSUzI1NiJ9");
    EXPECT_EQ(signature.headers(), std::nullopt);
    EXPECT_TRUE(
        openSsl_.verifies(zrm_dataFromText(signature.protectedHeader() + "." + object.payload()),
                          decoded(zrm_dataFromText(signature.signature()))));
}

}  // namespace
