#include "ZRMPlatform/Simulated/ZRMSimulatedDigests.h"

#include <utility>

#include <openssl/evp.h>

namespace {

const EVP_MD* methodOf(ZRMDigestAlgorithm algorithm) {
    switch (algorithm) {
        case ZRMDigestAlgorithm::Md5:
            return EVP_md5();
        case ZRMDigestAlgorithm::Sha1:
            return EVP_sha1();
        case ZRMDigestAlgorithm::Sha256:
            return EVP_sha256();
    }
    return nullptr;
}

class Context final : public ZRMDigestContext {
  public:
    Context(ZRMDigestAlgorithm algorithm, std::shared_ptr<const bool> finishFails)
        : finishFails_(std::move(finishFails)),
          context_(EVP_MD_CTX_new(), &EVP_MD_CTX_free),
          sound_(context_ && EVP_DigestInit_ex(context_.get(), methodOf(algorithm), nullptr) == 1) {
    }

    void update(std::span<const std::uint8_t> bytes) override {
        sound_ = sound_ && EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()) == 1;
    }

    std::optional<ZRMData> finish() override {
        ZRMData digest(EVP_MAX_MD_SIZE);
        unsigned int length = 0;
        if (*finishFails_ || !sound_ ||
            EVP_DigestFinal_ex(context_.get(), digest.data(), &length) != 1) {
            return std::nullopt;
        }
        digest.resize(length);
        return digest;
    }

  private:
    std::shared_ptr<const bool> finishFails_;
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context_;
    bool sound_;
};

}  // namespace

std::unique_ptr<ZRMDigestContext> ZRMSimulatedDigests::makeContext(ZRMDigestAlgorithm algorithm) {
    if (missing_.contains(algorithm)) {
        return nullptr;
    }
    return std::make_unique<Context>(algorithm, finishFails_);
}

void ZRMSimulatedDigests::setAvailable(ZRMDigestAlgorithm algorithm, bool available) {
    if (available) {
        missing_.erase(algorithm);
    } else {
        missing_.insert(algorithm);
    }
}
