#include "ZRMPlatform/Linux/ZRMLinuxRsaKeys.h"

#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include "ZRMPlatform/Linux/ZRMLinuxOpenSSL.h"

namespace {

constexpr std::size_t kDigestBytes = 32;

// Statuses: the keychain's numbers for a parameter that is no good and a signature that does not
// match, and a general failure of the primitive.
constexpr std::int32_t kGood = 0;
constexpr std::int32_t kBadParameter = -50;
constexpr std::int32_t kFailed = -1;
constexpr std::int32_t kMismatch = -67808;

using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using KeyContext = std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)>;

bool setScheme(EVP_PKEY_CTX* context) {
    return EVP_PKEY_CTX_set_rsa_padding(context, RSA_PKCS1_PADDING) == 1 &&
           EVP_PKEY_CTX_set_signature_md(context, EVP_sha256()) == 1;
}

class RsaKey : public ZRMRsaKey {
  public:
    RsaKey(Key key, bool isPrivate) : key_(std::move(key)), isPrivate_(isPrivate) {}

    [[nodiscard]] std::size_t blockSize() const override {
        return static_cast<std::size_t>(EVP_PKEY_get_size(key_.get()));
    }

    std::int32_t signDigest(std::span<const std::uint8_t> digest, std::span<std::uint8_t> signature,
                            std::size_t& length) const override {
        if (!isPrivate_ || digest.size() != kDigestBytes || signature.size() < blockSize()) {
            return kBadParameter;
        }
        const ZRMLinuxOpenSSLErrors errors;
        const KeyContext context(EVP_PKEY_CTX_new(key_.get(), nullptr), &EVP_PKEY_CTX_free);
        auto used = signature.size();
        if (!context || EVP_PKEY_sign_init(context.get()) != 1 || !setScheme(context.get()) ||
            EVP_PKEY_sign(context.get(), signature.data(), &used, digest.data(), digest.size()) !=
                1) {
            return kFailed;
        }
        length = used;
        return kGood;
    }

    [[nodiscard]] std::int32_t verifyDigest(
        std::span<const std::uint8_t> digest,
        std::span<const std::uint8_t> signature) const override {
        if (digest.size() != kDigestBytes) {
            return kBadParameter;
        }
        if (signature.size() != blockSize()) {
            return kMismatch;
        }
        const ZRMLinuxOpenSSLErrors errors;
        const KeyContext context(EVP_PKEY_CTX_new(key_.get(), nullptr), &EVP_PKEY_CTX_free);
        if (!context || EVP_PKEY_verify_init(context.get()) != 1 || !setScheme(context.get())) {
            return kFailed;
        }
        const int verdict = EVP_PKEY_verify(context.get(), signature.data(), signature.size(),
                                            digest.data(), digest.size());
        return verdict == 1 ? kGood : kMismatch;
    }

  private:
    Key key_;
    bool isPrivate_;
};

// Of an RSA key whose encoding is `der` to its last byte.
std::shared_ptr<ZRMRsaKey> wrapped(Key key, const unsigned char* end, const ZRMData& der,
                                   bool isPrivate) {
    if (!key || end != der.data() + der.size() || EVP_PKEY_get_base_id(key.get()) != EVP_PKEY_RSA) {
        return nullptr;
    }
    return std::make_shared<RsaKey>(std::move(key), isPrivate);
}

}  // namespace

std::shared_ptr<ZRMRsaKey> ZRMLinuxRsaKeys::publicKeyFromDer(const ZRMData& der) const {
    zrm_prepareOpenSSL();
    const ZRMLinuxOpenSSLErrors errors;
    const auto* end = der.data();
    Key key(d2i_PUBKEY(nullptr, &end, static_cast<long>(der.size())), &EVP_PKEY_free);
    return wrapped(std::move(key), end, der, false);
}

std::shared_ptr<ZRMRsaKey> ZRMLinuxRsaKeys::privateKeyFromDer(const ZRMData& der) const {
    zrm_prepareOpenSSL();
    const ZRMLinuxOpenSSLErrors errors;
    const auto* end = der.data();
    const std::unique_ptr<PKCS8_PRIV_KEY_INFO, decltype(&PKCS8_PRIV_KEY_INFO_free)> info(
        d2i_PKCS8_PRIV_KEY_INFO(nullptr, &end, static_cast<long>(der.size())),
        &PKCS8_PRIV_KEY_INFO_free);
    Key key(info ? EVP_PKCS82PKEY(info.get()) : nullptr, &EVP_PKEY_free);
    return wrapped(std::move(key), end, der, true);
}

std::shared_ptr<ZRMRsaKey> zrm_publicRsaKey(EVP_PKEY* key) {
    if (key == nullptr || EVP_PKEY_get_base_id(key) != EVP_PKEY_RSA || EVP_PKEY_up_ref(key) != 1) {
        return nullptr;
    }
    return std::make_shared<RsaKey>(Key(key, &EVP_PKEY_free), false);
}
