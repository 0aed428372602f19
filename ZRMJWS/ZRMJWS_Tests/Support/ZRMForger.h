// An RSA key whose owner misuses it, and roots that forgers take: blocks that are no proper
// padding.
#pragma once

#include <memory>
#include <stdexcept>

#include <openssl/bn.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

// Throws when OpenSSL fails.
class ZRMForger {
  public:
    ZRMForger(int bits, unsigned exponent) : key_(nullptr, &EVP_PKEY_free) {
        const Context context(EVP_PKEY_CTX_new_id(EVP_PKEY_RSA, nullptr), &EVP_PKEY_CTX_free);
        const Number e = number();
        BN_set_word(e.get(), exponent);
        EVP_PKEY* made = nullptr;
        check(EVP_PKEY_keygen_init(context.get()) == 1 &&
              EVP_PKEY_CTX_set_rsa_keygen_bits(context.get(), bits) == 1 &&
              EVP_PKEY_CTX_set1_rsa_keygen_pubexp(context.get(), e.get()) == 1 &&
              EVP_PKEY_keygen(context.get(), &made) == 1);
        key_.reset(made);
    }

    [[nodiscard]] std::size_t blockSize() const {
        return static_cast<std::size_t>(EVP_PKEY_get_size(key_.get()));
    }
    // SubjectPublicKeyInfo.
    [[nodiscard]] ZRMData publicKeyDer() const {
        ZRMData der(static_cast<std::size_t>(i2d_PUBKEY(key_.get(), nullptr)));
        auto* cursor = der.data();
        check(i2d_PUBKEY(key_.get(), &cursor) > 0);
        return der;
    }

    // The private operation on a whole block, whatever is in it.
    [[nodiscard]] ZRMData signBlock(const ZRMData& block) const {
        const Context context(EVP_PKEY_CTX_new(key_.get(), nullptr), &EVP_PKEY_CTX_free);
        ZRMData signature(blockSize());
        auto length = signature.size();
        check(EVP_PKEY_sign_init(context.get()) == 1 &&
              EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_NO_PADDING) == 1 &&
              EVP_PKEY_sign(context.get(), signature.data(), &length, block.data(), block.size()) ==
                  1);
        return signature;
    }

    // Without the private key: a block-long number whose cube begins with the bytes given.
    [[nodiscard]] ZRMData cubeRootOfBlockBeginningWith(ZRMData prefix) const {
        prefix.resize(blockSize(), 0xff);
        const Number most = number();
        BN_bin2bn(prefix.data(), static_cast<int>(prefix.size()), most.get());
        const Number root = cubeRoot(most.get());
        ZRMData signature(blockSize());
        check(BN_bn2binpad(root.get(), signature.data(), static_cast<int>(signature.size())) > 0);
        return signature;
    }
    // Its cube, as the public operation of a key with exponent 3 yields it.
    [[nodiscard]] ZRMData cubeOf(const ZRMData& signature) const {
        const Number base = number();
        BN_bin2bn(signature.data(), static_cast<int>(signature.size()), base.get());
        const Number cubed = cube(base.get());
        ZRMData block(blockSize());
        check(BN_bn2binpad(cubed.get(), block.data(), static_cast<int>(block.size())) > 0);
        return block;
    }
    // The signature with the modulus added; empty where that does not fit the block.
    [[nodiscard]] ZRMData addModulus(const ZRMData& signature) const {
        BIGNUM* modulus = nullptr;
        check(EVP_PKEY_get_bn_param(key_.get(), "n", &modulus) == 1);
        const Number owned(modulus, &BN_free);
        const Number sum = number();
        BN_bin2bn(signature.data(), static_cast<int>(signature.size()), sum.get());
        check(BN_add(sum.get(), sum.get(), modulus) == 1);
        ZRMData longer(blockSize());
        return BN_bn2binpad(sum.get(), longer.data(), static_cast<int>(longer.size())) > 0
                   ? longer
                   : ZRMData();
    }

  private:
    using Context = std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)>;
    using Number = std::unique_ptr<BIGNUM, decltype(&BN_free)>;

    static void check(bool good) {
        if (!good) {
            throw std::runtime_error("OpenSSL failed");
        }
    }
    static Number number() { return {BN_new(), &BN_free}; }
    static Number cube(const BIGNUM* base) {
        const std::unique_ptr<BN_CTX, decltype(&BN_CTX_free)> context(BN_CTX_new(), &BN_CTX_free);
        auto result = number();
        check(BN_sqr(result.get(), base, context.get()) == 1 &&
              BN_mul(result.get(), result.get(), base, context.get()) == 1);
        return result;
    }
    // The largest number whose cube is not above the bound, bit by bit.
    static Number cubeRoot(const BIGNUM* bound) {
        auto root = number();
        BN_zero(root.get());
        for (int bit = BN_num_bits(bound) / 3 + 1; bit >= 0; --bit) {
            BN_set_bit(root.get(), bit);
            if (BN_cmp(cube(root.get()).get(), bound) > 0) {
                BN_clear_bit(root.get(), bit);
            }
        }
        return root;
    }

    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key_;
};
