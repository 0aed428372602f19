// Forgeries against RSA signatures with PKCS#1 v1.5 padding, each refused.
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmRS256.h"
#include "ZRMJWS/ZRMJWS_Tests/Support/ZRMForger.h"
#include "ZRMPlatform/Linux/ZRMLinuxDigests.h"
#include "ZRMPlatform/Linux/ZRMLinuxRsaKeys.h"

namespace {

ZRMData joined(std::initializer_list<ZRMData> parts) {
    ZRMData all;
    for (const auto& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

ZRMData filled(std::size_t count, std::uint8_t byte = 0xff) {
    return ZRMData(count, byte);
}

// What names SHA-256 in front of the digest.
const ZRMData kPrefix{0x30, 0x31, 0x30, 0x0d, 0x06, 0x09, 0x60, 0x86, 0x48, 0x01,
                      0x65, 0x03, 0x04, 0x02, 0x01, 0x05, 0x00, 0x04, 0x20};

class ZRMJwsForgeries : public testing::Test {
  protected:
    explicit ZRMJwsForgeries(int bits = 2048, unsigned exponent = 65537)
        : forger_(bits, exponent) {}

    [[nodiscard]] bool verifies(const ZRMData& signature) const {
        const auto key = ZRMLinuxRsaKeys().publicKeyFromDer(forger_.publicKeyDer());
        const ZRMJwsAlgorithmRS256 algorithm(digests_, key);
        return algorithm.verifyData(data_, signature);
    }
    // The block with padding in front so that it fills the modulus.
    [[nodiscard]] ZRMData padded(const ZRMData& tail, std::uint8_t type = 1,
                                 std::uint8_t filler = 0xff) const {
        const auto count = forger_.blockSize() - 3 - tail.size();
        return joined({{0x00, type}, filled(count, filler), {0x00}, tail});
    }
    [[nodiscard]] bool verifiesBlock(const ZRMData& block) const {
        EXPECT_EQ(block.size(), forger_.blockSize());
        return verifies(forger_.signBlock(block));
    }
    [[nodiscard]] bool verifiesTail(const ZRMData& tail) const {
        return verifiesBlock(padded(tail));
    }

    ZRMForger forger_;
    std::shared_ptr<ZRMDigests> digests_ = std::make_shared<ZRMLinuxDigests>();
    ZRMData data_ = zrm_dataFromText("eyJhbGciOiJSUzI1NiJ9.e30");
    ZRMData digest_ = zrm_hashSHA256(*digests_, data_).value();
};

class ZRMJwsForgeriesWithExponent3 : public ZRMJwsForgeries {
  protected:
    ZRMJwsForgeriesWithExponent3() : ZRMJwsForgeries(2048, 3) {}
};

TEST_F(ZRMJwsForgeries, TheProperBlockIsTheOnlyOneThatVerifies) {
    EXPECT_TRUE(verifiesTail(joined({kPrefix, digest_})));
}

TEST_F(ZRMJwsForgeries, AnotherNameOfTheDigestIsRefused) {
    for (const std::uint8_t last : ZRMData{0x02, 0x03, 0x04}) {  // SHA-384, SHA-512, SHA-224
        auto prefix = kPrefix;
        prefix[14] = last;
        EXPECT_FALSE(verifiesTail(joined({prefix, digest_})));
    }
    const ZRMData sha1{0x30, 0x21, 0x30, 0x09, 0x06, 0x05, 0x2b, 0x0e,
                       0x03, 0x02, 0x1a, 0x05, 0x00, 0x04, 0x14};
    EXPECT_FALSE(verifiesTail(joined({sha1, ZRMData(digest_.begin(), digest_.begin() + 20)})));
}

TEST_F(ZRMJwsForgeries, ADigestWithoutItsNameIsRefused) {
    EXPECT_FALSE(verifiesTail(digest_));
    EXPECT_FALSE(verifiesTail(joined({{0x04, 0x20}, digest_})));
}

TEST_F(ZRMJwsForgeries, AMissingNullIsRefused) {
    const ZRMData prefix{0x30, 0x2f, 0x30, 0x0b, 0x06, 0x09, 0x60, 0x86, 0x48,
                         0x01, 0x65, 0x03, 0x04, 0x02, 0x01, 0x04, 0x20};
    EXPECT_FALSE(verifiesTail(joined({prefix, digest_})));
}

TEST_F(ZRMJwsForgeries, ContentInTheParametersIsRefused) {
    const ZRMData octets{0x30, 0x35, 0x30, 0x11, 0x06, 0x09, 0x60, 0x86, 0x48, 0x01, 0x65, 0x03,
                         0x04, 0x02, 0x01, 0x04, 0x04, 0x41, 0x41, 0x41, 0x41, 0x04, 0x20};
    EXPECT_FALSE(verifiesTail(joined({octets, digest_})));
    const ZRMData longNull{0x30, 0x33, 0x30, 0x0f, 0x06, 0x09, 0x60, 0x86, 0x48, 0x01, 0x65,
                           0x03, 0x04, 0x02, 0x01, 0x05, 0x02, 0x41, 0x41, 0x04, 0x20};
    EXPECT_FALSE(verifiesTail(joined({longNull, digest_})));
}

TEST_F(ZRMJwsForgeries, LengthsInALongerFormAreRefused) {
    const ZRMData outer{0x30, 0x81, 0x31, 0x30, 0x0d, 0x06, 0x09, 0x60, 0x86, 0x48,
                        0x01, 0x65, 0x03, 0x04, 0x02, 0x01, 0x05, 0x00, 0x04, 0x20};
    EXPECT_FALSE(verifiesTail(joined({outer, digest_})));
    const ZRMData endless{0x30, 0x80, 0x30, 0x0d, 0x06, 0x09, 0x60, 0x86, 0x48, 0x01,
                          0x65, 0x03, 0x04, 0x02, 0x01, 0x05, 0x00, 0x04, 0x20};
    EXPECT_FALSE(verifiesTail(joined({endless, digest_, {0x00, 0x00}})));
}

TEST_F(ZRMJwsForgeries, BytesBehindTheDigestAreRefused) {
    EXPECT_FALSE(verifiesTail(joined({kPrefix, digest_, {0x00}})));
    EXPECT_FALSE(verifiesTail(joined({kPrefix, digest_, filled(100, 0x41)})));
    // Counted in by the outer length.
    auto prefix = kPrefix;
    prefix[1] = static_cast<std::uint8_t>(prefix[1] + 4);
    EXPECT_FALSE(verifiesTail(joined({prefix, digest_, filled(4, 0x41)})));
}

TEST_F(ZRMJwsForgeries, AShorterDigestIsRefused) {
    auto prefix = kPrefix;
    prefix[1] = 0x30;
    prefix[18] = 0x1f;
    EXPECT_FALSE(verifiesTail(joined({prefix, ZRMData(digest_.begin(), digest_.end() - 1)})));
}

TEST_F(ZRMJwsForgeries, PaddingOfAnotherTypeOrFillerIsRefused) {
    const auto tail = joined({kPrefix, digest_});
    EXPECT_FALSE(verifiesBlock(padded(tail, 2)));
    EXPECT_FALSE(verifiesBlock(padded(tail, 0, 0x00)));
    EXPECT_FALSE(verifiesBlock(padded(tail, 1, 0x00)));
    EXPECT_FALSE(verifiesBlock(padded(tail, 1, 0xfe)));
    for (const std::size_t place : {2U, 50U, 100U, 203U}) {
        auto block = padded(tail);
        ASSERT_EQ(block[place], 0xff);
        block[place] = 0xfe;
        EXPECT_FALSE(verifiesBlock(block)) << place;
    }
}

TEST_F(ZRMJwsForgeries, ABlockWithoutSeparatorOrWithTwoIsRefused) {
    const auto tail = joined({kPrefix, digest_});
    auto block = padded(tail);
    block[block.size() - tail.size() - 1] = 0xff;
    EXPECT_FALSE(verifiesBlock(block));
    block = padded(tail);
    block[20] = 0x00;
    EXPECT_FALSE(verifiesBlock(block));
}

TEST_F(ZRMJwsForgeries, PaddingThatIsTooShortIsRefused) {
    const auto tail = joined({kPrefix, digest_});
    for (const std::size_t count : {0U, 1U, 7U, 8U, 9U}) {
        const auto rest = forger_.blockSize() - 3 - count - tail.size();
        EXPECT_FALSE(
            verifiesBlock(joined({{0x00, 0x01}, filled(count), {0x00}, tail, filled(rest, 0x00)})))
            << count;
        EXPECT_FALSE(
            verifiesBlock(joined({filled(rest, 0x00), {0x00, 0x01}, filled(count), {0x00}, tail})))
            << count;
    }
}

TEST_F(ZRMJwsForgeries, SimpleNumbersAreRefused) {
    EXPECT_FALSE(verifies(filled(256, 0x00)));
    EXPECT_FALSE(verifies(filled(256, 0xff)));
    auto one = filled(256, 0x00);
    one.back() = 1;
    EXPECT_FALSE(verifies(one));
}

TEST_F(ZRMJwsForgeries, ASignatureBeyondTheModulusIsRefused) {
    auto changed = forger_.signBlock(padded(joined({kPrefix, digest_})));
    ASSERT_TRUE(verifies(changed));
    // Adding the modulus keeps the result of the public operation; it fits the block now and then.
    ZRMData beyond;
    while (beyond.empty()) {
        data_.push_back(0x41);
        digest_ = zrm_hashSHA256(*digests_, data_).value();
        changed = forger_.signBlock(padded(joined({kPrefix, digest_})));
        ASSERT_TRUE(verifies(changed));
        beyond = forger_.addModulus(changed);
    }
    EXPECT_FALSE(verifies(beyond));
}

TEST_F(ZRMJwsForgeriesWithExponent3, TheOwnersSignatureVerifies) {
    EXPECT_TRUE(verifiesTail(joined({kPrefix, digest_})));
}

TEST_F(ZRMJwsForgeriesWithExponent3, ACubeRootWithGarbageBehindTheDigestIsRefused) {
    for (const std::size_t padding : {8U, 9U, 1U, 0U}) {
        const auto begin = joined({{0x00, 0x01}, filled(padding), {0x00}, kPrefix, digest_});
        const auto forged = forger_.cubeRootOfBlockBeginningWith(begin);
        const auto block = forger_.cubeOf(forged);
        ASSERT_EQ(ZRMData(block.begin(), block.begin() + static_cast<long>(begin.size())), begin);
        EXPECT_FALSE(verifies(forged)) << padding;
    }
}

TEST_F(ZRMJwsForgeriesWithExponent3, ACubeRootWithGarbageInTheParametersIsRefused) {
    // The parameters' length swallows the garbage: what follows them is chosen by nobody.
    const ZRMData begin = joined({{0x00, 0x01},
                                  filled(8),
                                  {0x00},
                                  {0x30, 0x81, 0xb0, 0x30, 0x81, 0x8c, 0x06, 0x09, 0x60, 0x86, 0x48,
                                   0x01, 0x65, 0x03, 0x04, 0x02, 0x01, 0x04, 0x7f}});
    const auto forged = forger_.cubeRootOfBlockBeginningWith(begin);
    const auto block = forger_.cubeOf(forged);
    ASSERT_EQ(ZRMData(block.begin(), block.begin() + static_cast<long>(begin.size())), begin);
    EXPECT_FALSE(verifies(forged));
}

}  // namespace
