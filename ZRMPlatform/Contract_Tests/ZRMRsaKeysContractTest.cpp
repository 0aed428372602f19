// What ZRMRsaKeys.h promises.
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

namespace {

// A fresh key of the system library's making, in DER.
struct KeyPair {
    ZRMData publicDer;
    ZRMData privateDer;
};

template <class Encode>
ZRMData derOf(Encode encode) {
    ZRMData der(static_cast<std::size_t>(encode(nullptr)));
    std::uint8_t* cursor = der.data();
    encode(&cursor);
    return der;
}

KeyPair pairOf(EVP_PKEY* raw) {
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(raw, &EVP_PKEY_free);
    const std::unique_ptr<PKCS8_PRIV_KEY_INFO, decltype(&PKCS8_PRIV_KEY_INFO_free)> info(
        EVP_PKEY2PKCS8(key.get()), &PKCS8_PRIV_KEY_INFO_free);
    return {derOf([&](std::uint8_t** out) { return i2d_PUBKEY(key.get(), out); }),
            derOf([&](std::uint8_t** out) { return i2d_PKCS8_PRIV_KEY_INFO(info.get(), out); })};
}

const KeyPair& rsaPair() {
    static const KeyPair pair = pairOf(EVP_RSA_gen(2048));
    return pair;
}

class ZRMRsaKeysContract : public ZRMContract {
  protected:
    std::shared_ptr<ZRMRsaKey> publicKey() {
        return platform()->rsaKeys->publicKeyFromDer(rsaPair().publicDer);
    }
    std::shared_ptr<ZRMRsaKey> privateKey() {
        return platform()->rsaKeys->privateKeyFromDer(rsaPair().privateDer);
    }
    ZRMData sign() {
        ZRMData signature(privateKey()->blockSize());
        std::size_t length = 0;
        EXPECT_EQ(privateKey()->signDigest(digest_, signature, length), 0);
        EXPECT_EQ(length, signature.size());
        return signature;
    }

    ZRMData digest_ = ZRMData(32, 0x5a);
};

}  // namespace

TEST_P(ZRMRsaKeysContract, TheBlockSizeIsThatOfTheModulus) {
    ASSERT_NE(publicKey(), nullptr);
    ASSERT_NE(privateKey(), nullptr);
    EXPECT_EQ(publicKey()->blockSize(), 256u);
    EXPECT_EQ(privateKey()->blockSize(), 256u);
}

TEST_P(ZRMRsaKeysContract, AKeyVerifiesItsOwnSignature) {
    EXPECT_EQ(publicKey()->verifyDigest(digest_, sign()), 0);
    EXPECT_EQ(privateKey()->verifyDigest(digest_, sign()), 0);
}

TEST_P(ZRMRsaKeysContract, TheSystemLibraryVerifiesTheSignature) {
    const std::uint8_t* cursor = rsaPair().publicDer.data();
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
        d2i_PUBKEY(nullptr, &cursor, static_cast<long>(rsaPair().publicDer.size())),
        &EVP_PKEY_free);
    const std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> context(
        EVP_PKEY_CTX_new(key.get(), nullptr), &EVP_PKEY_CTX_free);
    ASSERT_EQ(EVP_PKEY_verify_init(context.get()), 1);
    ASSERT_EQ(EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING), 1);
    ASSERT_EQ(EVP_PKEY_CTX_set_signature_md(context.get(), EVP_sha256()), 1);
    const auto signature = sign();
    EXPECT_EQ(EVP_PKEY_verify(context.get(), signature.data(), signature.size(), digest_.data(),
                              digest_.size()),
              1);
}

TEST_P(ZRMRsaKeysContract, SigningUsesNoMoreThanTheBlockOfALargerRoom) {
    ZRMData room(300, 0xee);
    std::size_t length = 0;
    EXPECT_EQ(privateKey()->signDigest(digest_, room, length), 0);
    EXPECT_EQ(length, 256u);
    EXPECT_EQ(room[256], 0xee);
}

TEST_P(ZRMRsaKeysContract, TooSmallARoomIsRefusedAndNotWrittenBehind) {
    ZRMData room(256, 0xee);
    std::size_t length = 0;
    EXPECT_NE(privateKey()->signDigest(digest_, std::span(room).first(255), length), 0);
    EXPECT_EQ(room[255], 0xee);
}

TEST_P(ZRMRsaKeysContract, APublicKeyCannotSign) {
    ZRMData room(256);
    std::size_t length = 0;
    EXPECT_NE(publicKey()->signDigest(digest_, room, length), 0);
}

TEST_P(ZRMRsaKeysContract, ADigestOfAnotherLengthIsRefused) {
    ZRMData room(256);
    std::size_t length = 0;
    EXPECT_NE(privateKey()->signDigest(ZRMData(31), room, length), 0);
    EXPECT_NE(publicKey()->verifyDigest(ZRMData(33), sign()), 0);
}

TEST_P(ZRMRsaKeysContract, AnotherDigestDoesNotVerify) {
    const auto signature = sign();
    digest_[0] ^= 1;
    EXPECT_NE(publicKey()->verifyDigest(digest_, signature), 0);
}

TEST_P(ZRMRsaKeysContract, AChangedSignatureDoesNotVerify) {
    auto signature = sign();
    signature.back() ^= 1;
    EXPECT_NE(publicKey()->verifyDigest(digest_, signature), 0);
}

TEST_P(ZRMRsaKeysContract, ASignatureOfAnotherLengthIsAMismatch) {
    auto shorter = sign();
    shorter.pop_back();
    EXPECT_NE(publicKey()->verifyDigest(digest_, shorter), 0);
    auto longer = sign();
    longer.push_back(0);
    EXPECT_NE(publicKey()->verifyDigest(digest_, longer), 0);
    EXPECT_NE(publicKey()->verifyDigest(digest_, {}), 0);
}

TEST_P(ZRMRsaKeysContract, WhatIsNoRsaKeyIsAbsent) {
    const auto keys = platform()->rsaKeys;
    for (const auto& der : {ZRMData(), ZRMData{0x30}, ZRMData(100, 0x30), rsaPair().privateDer}) {
        EXPECT_EQ(keys->publicKeyFromDer(der), nullptr);
    }
    EXPECT_EQ(keys->privateKeyFromDer({}), nullptr);
    EXPECT_EQ(keys->privateKeyFromDer(rsaPair().publicDer), nullptr);
    const auto elliptic = pairOf(EVP_EC_gen("P-256"));
    EXPECT_EQ(keys->publicKeyFromDer(elliptic.publicDer), nullptr);
    EXPECT_EQ(keys->privateKeyFromDer(elliptic.privateDer), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMRsaKeysContract, zrm_contractBodies(), zrm_contractBodyName);
