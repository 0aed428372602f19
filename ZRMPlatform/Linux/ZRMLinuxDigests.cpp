#include "ZRMPlatform/Linux/ZRMLinuxDigests.h"

#include <array>
#include <utility>

#include <openssl/evp.h>

#include "ZRMPlatform/Linux/ZRMLinuxOpenSSL.h"

namespace {

using DigestState = std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)>;

// Fetched once and kept: looking one up costs more than a short digest.
const EVP_MD* fetched(ZRMDigestAlgorithm algorithm) {
    static const std::array<const EVP_MD*, 3> digests = [] {
        zrm_prepareOpenSSL();
        const ZRMLinuxOpenSSLErrors errors;
        return std::array<const EVP_MD*, 3>{EVP_MD_fetch(nullptr, "MD5", nullptr),
                                            EVP_MD_fetch(nullptr, "SHA1", nullptr),
                                            EVP_MD_fetch(nullptr, "SHA256", nullptr)};
    }();
    return digests.at(static_cast<std::size_t>(algorithm));
}

class DigestContext : public ZRMDigestContext {
  public:
    explicit DigestContext(DigestState context) : context_(std::move(context)) {}

    void update(std::span<const std::uint8_t> bytes) override {
        isGood_ = isGood_ && EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()) == 1;
    }

    std::optional<ZRMData> finish() override {
        const ZRMLinuxOpenSSLErrors errors;
        ZRMData digest(EVP_MAX_MD_SIZE);
        unsigned length = 0;
        isGood_ = isGood_ && EVP_DigestFinal_ex(context_.get(), digest.data(), &length) == 1;
        if (!std::exchange(isGood_, false)) {
            return std::nullopt;
        }
        digest.resize(length);
        return digest;
    }

  private:
    DigestState context_;
    bool isGood_ = true;
};

}  // namespace

std::unique_ptr<ZRMDigestContext> ZRMLinuxDigests::makeContext(ZRMDigestAlgorithm algorithm) {
    const ZRMLinuxOpenSSLErrors errors;
    const auto* const digest = fetched(algorithm);
    DigestState context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    if (digest == nullptr || !context || EVP_DigestInit_ex(context.get(), digest, nullptr) != 1) {
        return nullptr;
    }
    return std::make_unique<DigestContext>(std::move(context));
}
