#include "ZRMPlatform/Simulated/ZRMSimulatedRsaKeys.h"

#include <utility>

#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

namespace {

using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using KeyContext = std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)>;
using Status = std::shared_ptr<const std::optional<std::int32_t>>;

constexpr std::size_t kDigestSize = 32;
constexpr std::int32_t kParameterError = -50;
constexpr std::int32_t kMismatch = -9809;

class RsaKey final : public ZRMRsaKey {
  public:
    RsaKey(Key key, bool isPrivate, Status status)
        : key_(std::move(key)), isPrivate_(isPrivate), status_(std::move(status)) {}

    [[nodiscard]] std::size_t blockSize() const override {
        return static_cast<std::size_t>(EVP_PKEY_get_size(key_.get()));
    }

    std::int32_t signDigest(std::span<const std::uint8_t> digest, std::span<std::uint8_t> signature,
                            std::size_t& length) const override {
        if (status_->has_value()) {
            return **status_;
        }
        if (!isPrivate_ || digest.size() != kDigestSize || signature.size() < blockSize()) {
            return kParameterError;
        }
        const auto context = makeContext(&EVP_PKEY_sign_init);
        std::size_t used = signature.size();
        if (!context || EVP_PKEY_sign(context.get(), signature.data(), &used, digest.data(),
                                      digest.size()) != 1) {
            return kParameterError;
        }
        length = used;
        return 0;
    }

    [[nodiscard]] std::int32_t verifyDigest(
        std::span<const std::uint8_t> digest,
        std::span<const std::uint8_t> signature) const override {
        if (status_->has_value()) {
            return **status_;
        }
        if (digest.size() != kDigestSize || signature.size() != blockSize()) {
            return kMismatch;
        }
        const auto context = makeContext(&EVP_PKEY_verify_init);
        const bool good =
            context && EVP_PKEY_verify(context.get(), signature.data(), signature.size(),
                                       digest.data(), digest.size()) == 1;
        return good ? 0 : kMismatch;
    }

  private:
    // PKCS#1 v1.5 over SHA-256; absent when the key refuses.
    [[nodiscard]] KeyContext makeContext(int (*prepare)(EVP_PKEY_CTX*)) const {
        KeyContext context(EVP_PKEY_CTX_new(key_.get(), nullptr), &EVP_PKEY_CTX_free);
        if (!context || prepare(context.get()) != 1 ||
            EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) != 1 ||
            EVP_PKEY_CTX_set_signature_md(context.get(), EVP_sha256()) != 1) {
            context.reset();
        }
        return context;
    }

    Key key_;
    bool isPrivate_;
    Status status_;
};

std::shared_ptr<ZRMRsaKey> wrap(EVP_PKEY* raw, bool isPrivate, Status status) {
    Key key(raw, &EVP_PKEY_free);
    if (!key || EVP_PKEY_get_base_id(key.get()) != EVP_PKEY_RSA) {
        return nullptr;
    }
    return std::make_shared<RsaKey>(std::move(key), isPrivate, std::move(status));
}

}  // namespace

std::shared_ptr<ZRMRsaKey> ZRMSimulatedRsaKeys::publicKeyFromDer(const ZRMData& der) const {
    const std::uint8_t* cursor = der.data();
    return wrap(d2i_PUBKEY(nullptr, &cursor, static_cast<long>(der.size())), false, status_);
}

std::shared_ptr<ZRMRsaKey> ZRMSimulatedRsaKeys::privateKeyFromDer(const ZRMData& der) const {
    const std::uint8_t* cursor = der.data();
    const std::unique_ptr<PKCS8_PRIV_KEY_INFO, decltype(&PKCS8_PRIV_KEY_INFO_free)> info(
        d2i_PKCS8_PRIV_KEY_INFO(nullptr, &cursor, static_cast<long>(der.size())),
        &PKCS8_PRIV_KEY_INFO_free);
    return info ? wrap(EVP_PKCS82PKEY(info.get()), true, status_) : nullptr;
}
