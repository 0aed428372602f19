#include "ZRMPlatform/Simulated/ZRMSimulatedTrust.h"

#include <utility>

#include <openssl/x509.h>

namespace {

using Certificate = std::unique_ptr<X509, decltype(&X509_free)>;

Certificate certificateFromDer(const ZRMData& der) {
    const auto* end = der.data();
    Certificate certificate(d2i_X509(nullptr, &end, static_cast<long>(der.size())), &X509_free);
    return end == der.data() + der.size() ? std::move(certificate) : Certificate(nullptr, nullptr);
}

ZRMData keyOf(const X509* certificate) {
    const auto* key = X509_get_X509_PUBKEY(certificate);
    ZRMData der(static_cast<std::size_t>(std::max(0, i2d_X509_PUBKEY(key, nullptr))));
    auto* cursor = der.data();
    i2d_X509_PUBKEY(key, &cursor);
    return der;
}

}  // namespace

void ZRMSimulatedTrust::plug(Maker maker) {
    maker_ = std::move(maker);
    processStarted(platform_.lock());
}

void ZRMSimulatedTrust::processStarted(const std::shared_ptr<const ZRMPlatform>& platform) {
    platform_ = platform;
    plugged_ = maker_ && platform ? maker_(*platform) : nullptr;
}

void ZRMSimulatedTrust::evaluate(ZRMTrustRequest request, Completion completion) {
    requests_.push_back(request);
    if (plugged_) {
        plugged_->evaluate(std::move(request), std::move(completion));
        return;
    }
    if (const auto platform = platform_.lock()) {
        platform->executor->concurrentQueue(ZRMQualityOfService::Default)
            ->post([evaluation = decide(request), completion = std::move(completion)] {
                completion(evaluation);
            });
    }
}

ZRMTrustEvaluation ZRMSimulatedTrust::decide(const ZRMTrustRequest& request) const {
    if (handler_) {
        return handler_(request);
    }
    ZRMTrustEvaluation evaluation;
    const auto leaf =
        certificateFromDer(request.certificates.empty() ? ZRMData() : request.certificates.front());
    if (!leaf) {
        evaluation.reason = "there is no leaf";
        return evaluation;
    }
    evaluation.result = result_;
    if (evaluation.isTrusted()) {
        evaluation.publicKey = platform_.lock()->rsaKeys->publicKeyFromDer(keyOf(leaf.get()));
    } else {
        evaluation.reason = "the device was told so";
    }
    return evaluation;
}
