#include <gtest/gtest.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include "ZRMPlatform/Linux/ZRMLinuxRsaKeys.h"

namespace {

using Key = std::shared_ptr<EVP_PKEY>;

Key makeRsaKey() {
    static const Key key(EVP_RSA_gen(2048), &EVP_PKEY_free);
    return key;
}

Key makeCurveKey() {
    return {EVP_EC_gen("P-256"), &EVP_PKEY_free};
}

ZRMData publicDer(const Key& key) {
    unsigned char* bytes = nullptr;
    const int length = i2d_PUBKEY(key.get(), &bytes);
    ZRMData der(bytes, bytes + length);
    OPENSSL_free(bytes);
    return der;
}

ZRMData privateDer(const Key& key) {
    const std::unique_ptr<PKCS8_PRIV_KEY_INFO, decltype(&PKCS8_PRIV_KEY_INFO_free)> info(
        EVP_PKEY2PKCS8(key.get()), &PKCS8_PRIV_KEY_INFO_free);
    unsigned char* bytes = nullptr;
    const int length = i2d_PKCS8_PRIV_KEY_INFO(info.get(), &bytes);
    ZRMData der(bytes, bytes + length);
    OPENSSL_free(bytes);
    return der;
}

class ZRMLinuxRsaKeysTest : public testing::Test {
  protected:
    ZRMLinuxRsaKeys keys_;
    std::shared_ptr<ZRMRsaKey> signer_ = keys_.privateKeyFromDer(privateDer(makeRsaKey()));
    std::shared_ptr<ZRMRsaKey> verifier_ = keys_.publicKeyFromDer(publicDer(makeRsaKey()));
    ZRMData digest_ = ZRMData(32, 7);
};

}  // namespace

TEST_F(ZRMLinuxRsaKeysTest, ASignatureIsABlockThatThePublicKeyVerifies) {
    ASSERT_TRUE(signer_ && verifier_);
    EXPECT_EQ(signer_->blockSize(), 256U);
    EXPECT_EQ(verifier_->blockSize(), 256U);
    ZRMData signature(300);
    std::size_t length = 0;
    ASSERT_EQ(signer_->signDigest(digest_, signature, length), 0);
    EXPECT_EQ(length, 256U);
    signature.resize(length);
    EXPECT_EQ(verifier_->verifyDigest(digest_, signature), 0);
    EXPECT_EQ(signer_->verifyDigest(digest_, signature), 0);
    // PKCS#1 v1.5 is deterministic.
    ZRMData again(256);
    ASSERT_EQ(signer_->signDigest(digest_, again, length), 0);
    EXPECT_EQ(again, signature);
}

TEST_F(ZRMLinuxRsaKeysTest, OpenSSLsOwnSignatureVerifies) {
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                          &EVP_MD_CTX_free);
    const ZRMData message = zrm_dataFromText("message");
    ZRMData signature(256);
    std::size_t length = signature.size();
    ASSERT_EQ(EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, makeRsaKey().get()),
              1);
    ASSERT_EQ(
        EVP_DigestSign(context.get(), signature.data(), &length, message.data(), message.size()),
        1);
    ZRMData digest(32);
    unsigned digestLength = 0;
    EVP_Digest(message.data(), message.size(), digest.data(), &digestLength, EVP_sha256(), nullptr);
    EXPECT_EQ(verifier_->verifyDigest(digest, signature), 0);
}

TEST_F(ZRMLinuxRsaKeysTest, AnotherDigestOrSignatureIsAMismatch) {
    ZRMData signature(256);
    std::size_t length = 0;
    ASSERT_EQ(signer_->signDigest(digest_, signature, length), 0);
    EXPECT_NE(verifier_->verifyDigest(ZRMData(32, 8), signature), 0);
    for (const std::size_t place : {std::size_t{0}, std::size_t{100}, std::size_t{255}}) {
        auto changed = signature;
        changed[place] ^= 1U;
        EXPECT_NE(verifier_->verifyDigest(digest_, changed), 0);
    }
    EXPECT_EQ(ERR_peek_error(), 0U);  // the host's queue stays clean
}

TEST_F(ZRMLinuxRsaKeysTest, ASignatureOfAnotherLengthIsAMismatch) {
    ZRMData signature(256);
    std::size_t length = 0;
    ASSERT_EQ(signer_->signDigest(digest_, signature, length), 0);
    auto longer = signature;
    longer.push_back(0);
    EXPECT_NE(verifier_->verifyDigest(digest_, longer), 0);
    EXPECT_NE(verifier_->verifyDigest(digest_, std::span(signature).first(255)), 0);
    EXPECT_NE(verifier_->verifyDigest(digest_, {}), 0);
}

TEST_F(ZRMLinuxRsaKeysTest, ADigestThatIsNot32BytesIsRefused) {
    ZRMData signature(256);
    std::size_t length = 77;
    EXPECT_NE(signer_->signDigest(ZRMData(20), signature, length), 0);
    EXPECT_EQ(length, 77U);
    EXPECT_NE(verifier_->verifyDigest(ZRMData(33), signature), 0);
}

TEST_F(ZRMLinuxRsaKeysTest, APublicKeyDoesNotSignAndTooLittleRoomIsRefused) {
    ZRMData room(256);
    std::size_t length = 77;
    EXPECT_NE(verifier_->signDigest(digest_, room, length), 0);
    room.resize(255);
    EXPECT_NE(signer_->signDigest(digest_, room, length), 0);
    EXPECT_EQ(length, 77U);
}

TEST_F(ZRMLinuxRsaKeysTest, WhatIsNoRsaKeyIsAbsent) {
    EXPECT_EQ(keys_.publicKeyFromDer(publicDer(makeCurveKey())), nullptr);
    EXPECT_EQ(keys_.privateKeyFromDer(privateDer(makeCurveKey())), nullptr);
    EXPECT_EQ(keys_.publicKeyFromDer({}), nullptr);
    EXPECT_EQ(keys_.privateKeyFromDer({}), nullptr);
    EXPECT_EQ(keys_.publicKeyFromDer(privateDer(makeRsaKey())), nullptr);
    EXPECT_EQ(keys_.privateKeyFromDer(publicDer(makeRsaKey())), nullptr);
    EXPECT_EQ(ERR_peek_error(), 0U);
}

TEST_F(ZRMLinuxRsaKeysTest, AnEncodingCutShortOrFollowedByMoreIsAbsent) {
    const auto isPublic = publicDer(makeRsaKey());
    for (std::size_t length = 0; length < isPublic.size(); ++length) {
        EXPECT_EQ(keys_.publicKeyFromDer(
                      {isPublic.begin(), isPublic.begin() + static_cast<std::ptrdiff_t>(length)}),
                  nullptr);
    }
    auto longer = isPublic;
    longer.push_back(0);
    EXPECT_EQ(keys_.publicKeyFromDer(longer), nullptr);
    longer = privateDer(makeRsaKey());
    longer.push_back(0);
    EXPECT_EQ(keys_.privateKeyFromDer(longer), nullptr);
}
