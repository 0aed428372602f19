#include "ZRMJWS/ZRMJWS_Lib/Operations/ZRMJwsSignatureVerifyRS256Operation.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMBlockOperation.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Url/ZRMUrl.h"
#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmFactory.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsKeys.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMPemCertificate.h"

namespace {

constexpr const char* kCertificateContentType = "application/x-x509-ca-cert";

// The address is the sender's word: what it leads to must not take memory or days.
constexpr std::size_t kMaximumChainBytes = std::size_t{1024} * 1024;
constexpr double kMaxRetryIntervalSeconds = 64;

const ZRMJsonValue* headerValue(const ZRMJwsSignature& signature, const char* key) {
    return signature.headers() ? signature.headers()->if_contains(key) : nullptr;
}

// Absent unless it is an HTTP or HTTPS address with a host.
std::optional<std::string> addressFrom(const ZRMJsonValue* x5u) {
    const auto* text = x5u == nullptr ? nullptr : x5u->if_string();
    const auto url = text == nullptr ? std::nullopt : ZRMUrl::fromText(*text);
    if (!url || !url->scheme() || url->host().value_or("").empty()) {
        return std::nullopt;
    }
    auto scheme = *url->scheme();
    std::ranges::transform(scheme, scheme.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return scheme == "http" || scheme == "https" ? std::optional(url->absoluteString())
                                                 : std::nullopt;
}

// An element that cannot be decoded keeps its place, so that no other certificate takes it.
std::vector<ZRMData> certificatesFrom(const ZRMJsonValue& x5c) {
    std::vector<ZRMData> certificates;
    const auto* elements = x5c.if_array();
    if (elements == nullptr) {
        return certificates;
    }
    certificates.reserve(elements->size());
    for (const auto& element : *elements) {
        const auto* text = element.if_string();
        auto der = text == nullptr ? std::nullopt
                                   : zrm_dataFromBase64String(
                                         *text, ZRMBase64Decoding::IgnoreUnknownCharacters);
        certificates.push_back(std::move(der).value_or(ZRMData()));
    }
    return certificates;
}

}  // namespace

ZRMJwsSignatureVerifyRS256Operation::ZRMJwsSignatureVerifyRS256Operation(
    std::shared_ptr<const ZRMPlatform> platform, ZRMJwsSignature jwsSignature, std::string payload,
    ZRMJwsVerifierConfiguration configuration)
    : ZRMErrorProneOperation(platform->consoleLog),
      platform_(std::move(platform)),
      jwsSignature_(std::move(jwsSignature)),
      payload_(std::move(payload)),
      configuration_(std::move(configuration)),
      queue_(platform_->executor, zrm_queueNameForClass("ZRMJwsSignatureVerifyRS256Operation"), 1) {
}

void ZRMJwsSignatureVerifyRS256Operation::cancel() {
    queue_.cancelAllOperations();
    ZRMErrorProneOperation::cancel();
}

void ZRMJwsSignatureVerifyRS256Operation::execute() {
    verify();
}

void ZRMJwsSignatureVerifyRS256Operation::verify() {
    if (const auto* x5c = headerValue(jwsSignature_, kZRMJwsX5CKey)) {
        verifyWithX5C(*x5c);
    } else if (const auto url = addressFrom(headerValue(jwsSignature_, kZRMJwsX5UKey))) {
        verifyWithX5U(*url);
    } else {
        finishWithResult(ZRMJwsVerifyResultNoChain);
    }
}

void ZRMJwsSignatureVerifyRS256Operation::verifyWithX5C(const ZRMJsonValue& x5c) {
    auto delivered = certificatesFrom(x5c);
    const auto count = delivered.size();
    const auto deliveredAndPinned = withPinnedCertificates(std::move(delivered));
    if (!deliveredAndPinned) {
        return;
    }
    zrm_logError(this, std::to_string(count) + " certificates was found in jws signature");
    copyPublicKeyFromCertificateChain(*deliveredAndPinned, count);
}

void ZRMJwsSignatureVerifyRS256Operation::verifyWithX5U(const std::string& url) {
    ZRMUrlRequest request;
    request.method = "POST";
    request.url = url;
    request.headers.set("Content-Type", kCertificateContentType);
    request.maximumResponseBytes = kMaximumChainBytes;
    const auto download = std::make_shared<ZRMUrlRequestOperation>(
        platform_, std::move(request), true, ZRMUrlRequestOperation::kMinRetryIntervalSeconds,
        kMaxRetryIntervalSeconds);
    const auto completion =
        ZRMBlockOperation::blockOperationWithBlock([weak = weakSelf(), download] {
            if (const auto self = weak.lock()) {
                self->downloadEnded(*download);
            }
        });
    completion->addDependency(download);
    queue_.addOperations({download, completion});
}

void ZRMJwsSignatureVerifyRS256Operation::downloadEnded(const ZRMUrlRequestOperation& download) {
    if (isFinished()) {
        return;
    }
    if (const auto error = download.error()) {
        zrm_logError(this,
                     "Download x509 certificate chain error: " + error->localizedDescription());
        finishWithResult(ZRMJwsVerifyResultDownloadFailed, error);
        return;
    }
    Certificates delivered{
        zrm_certificateFromPem(download.data().value_or(ZRMData())).value_or(ZRMData())};
    if (const auto chain = withPinnedCertificates(std::move(delivered))) {
        copyPublicKeyFromCertificateChain(*chain, 1);
    }
}

std::optional<ZRMJwsSignatureVerifyRS256Operation::Certificates>
ZRMJwsSignatureVerifyRS256Operation::withPinnedCertificates(Certificates delivered) {
    for (const auto& pem : certificateChain()) {
        auto certificate = zrm_certificateFromPem(pem);
        if (!certificate) {
            zrm_logVerbose(this, "Invalid certificate in pem data of pinned chain.");
            finishWithResult(ZRMJwsVerifyResultBadCertificate);
            return std::nullopt;
        }
        delivered.push_back(std::move(*certificate));
    }
    return delivered;
}

void ZRMJwsSignatureVerifyRS256Operation::copyPublicKeyFromCertificateChain(
    const Certificates& chain, std::size_t deliveredCount) {
    if (chain.empty()) {
        zrm_logError(this, "Certificate chain is empty.");
        verifyWithKey(nullptr);
        return;
    }
    ZRMTrustRequest request;
    request.certificates = chain;
    const std::size_t firstAnchor =
        configuration_.anchorsAtPinnedCertificatesOnly() ? deliveredCount : 1;
    request.anchors.assign(chain.begin() + static_cast<std::ptrdiff_t>(firstAnchor), chain.end());
    if (!configuration_.checksRevocation()) {
        request.revocationMethods = ZRMTrustRevocationNone;
    }
    platform_->trust->evaluate(std::move(request),
                               [weak = weakSelf()](const ZRMTrustEvaluation& evaluation) {
                                   if (const auto self = weak.lock()) {
                                       self->trustEvaluated(evaluation);
                                   }
                               });
}

void ZRMJwsSignatureVerifyRS256Operation::trustEvaluated(const ZRMTrustEvaluation& evaluation) {
    if (isFinished()) {
        return;
    }
    if (!evaluation.isTrusted()) {
        const bool isLeaf = evaluation.result != ZRMTrustResultInvalid;
        zrm_logError(this, isLeaf ? "Untrusted certificate." : "Cannot get certificate.");
        zrm_logVerbose(this, [&] { return evaluation.reason; });
        verifyWithKey(nullptr);
        return;
    }
    verifyWithKey(evaluation.publicKey);
}

void ZRMJwsSignatureVerifyRS256Operation::verifyWithKey(
    const std::shared_ptr<const ZRMRsaKey>& key) {
    if (!key) {
        zrm_logVerbose(this, "Can't extract public key from certificate chain.");
        finishWithResult(ZRMJwsVerifyResultBadCertificate);
        return;
    }
    const auto signingInput = zrm_dataFromText(jwsSignature_.protectedHeader() + "." + payload_);
    const auto signature =
        zrm_dataFromBase64String(zrm_base64FromBase64UrlString(jwsSignature_.signature()));
    const auto algorithm = ZRMJwsAlgorithmFactory::algorithmRS256(platform_->digests, key);
    const bool isGood = signature && algorithm->verifyData(signingInput, *signature);
    finishWithResult(isGood ? ZRMJwsVerifyResultVerified : ZRMJwsVerifyResultMismatch);
}

void ZRMJwsSignatureVerifyRS256Operation::finishWithResult(ZRMJwsVerifyResult result,
                                                           std::optional<ZRMError> error) {
    if (isExecuting()) {
        result_ = result;
    }
    finishWithError(std::move(error));
}

std::weak_ptr<ZRMJwsSignatureVerifyRS256Operation> ZRMJwsSignatureVerifyRS256Operation::weakSelf() {
    return std::static_pointer_cast<ZRMJwsSignatureVerifyRS256Operation>(shared_from_this());
}
