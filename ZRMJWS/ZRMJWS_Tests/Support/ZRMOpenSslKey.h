// An RSA key of OpenSSL's, to hold the library's signatures against another implementation.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>

#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

// Throws when OpenSSL fails.
class ZRMOpenSslKey {
  public:
    // A new random key.
    ZRMOpenSslKey() : key_(EVP_RSA_gen(kBits), EVP_PKEY_free) { check(key_ != nullptr); }

    // PKCS#8 PrivateKeyInfo.
    [[nodiscard]] ZRMData privateKeyDer() const {
        const std::unique_ptr<PKCS8_PRIV_KEY_INFO, decltype(&PKCS8_PRIV_KEY_INFO_free)> info(
            EVP_PKEY2PKCS8(key_.get()), PKCS8_PRIV_KEY_INFO_free);
        ZRMData der(static_cast<std::size_t>(i2d_PKCS8_PRIV_KEY_INFO(info.get(), nullptr)));
        auto* next = der.data();
        check(i2d_PKCS8_PRIV_KEY_INFO(info.get(), &next) > 0);
        return der;
    }

    // SubjectPublicKeyInfo.
    [[nodiscard]] ZRMData publicKeyDer() const {
        ZRMData der(static_cast<std::size_t>(i2d_PUBKEY(key_.get(), nullptr)));
        auto* next = der.data();
        check(i2d_PUBKEY(key_.get(), &next) > 0);
        return der;
    }

    [[nodiscard]] ZRMData sign(const ZRMData& data) const {
        const Context context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
        check(EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, key_.get()) == 1);
        std::size_t length = 0;
        check(EVP_DigestSign(context.get(), nullptr, &length, data.data(), data.size()) == 1);
        ZRMData signature(length);
        check(EVP_DigestSign(context.get(), signature.data(), &length, data.data(), data.size()) ==
              1);
        signature.resize(length);
        return signature;
    }

    [[nodiscard]] bool verifies(const ZRMData& data, const ZRMData& signature) const {
        const Context context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
        check(EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr, key_.get()) == 1);
        return EVP_DigestVerify(context.get(), signature.data(), signature.size(), data.data(),
                                data.size()) == 1;
    }

  private:
    static constexpr unsigned kBits = 2048;
    using Context = std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)>;

    static void check(bool good) {
        if (!good) {
            throw std::runtime_error("OpenSSL failed");
        }
    }

    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key_;
};
