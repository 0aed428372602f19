#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsVerifier.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMBlockOperation.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsKeys.h"

namespace {

// Absent, with log lines, when the text is no JSON dictionary in standard base64.
std::optional<ZRMDictionary> decodedHeader(const void* logger, const std::string& protectedHeader) {
    if (const auto bytes = zrm_dataFromBase64String(protectedHeader)) {
        auto json = zrm_jsonFromData(*bytes, {.refusesDuplicateNames = true});
        if (!json) {
            zrm_logError(logger, json.error().localizedDescription());
        } else if (const auto* dictionary = json.value().if_object()) {
            return *dictionary;
        }
    }
    zrm_logError(logger, "Corrupted protected header.");
    return std::nullopt;
}

}  // namespace

ZRMJwsVerifier::ZRMJwsVerifier(std::shared_ptr<const ZRMPlatform> platform,
                               ZRMJwsVerifierConfiguration configuration)
    : platform_(std::move(platform)),
      configuration_(std::move(configuration)),
      queue_(platform_->executor, zrm_queueNameForClass("ZRMJwsVerifier"), 1) {}

void ZRMJwsVerifier::verifyJwsSignature(const ZRMJwsSignature& jwsSignature,
                                        const std::string& payload,
                                        CompletionHandler completionHandler) {
    const auto operation = verifyOperationForSignature(jwsSignature, payload);
    if (!operation) {
        queue_.addOperationWithBlock([completionHandler = std::move(completionHandler)] {
            completionHandler(ZRMJwsVerifyResultNone, std::nullopt);
        });
        return;
    }
    const auto completion = ZRMBlockOperation::blockOperationWithBlock(
        [operation, completionHandler = std::move(completionHandler)] {
            completionHandler(operation->result(), operation->error());
        });
    completion->addDependency(operation);
    queue_.addOperations({operation, completion});
}

std::shared_ptr<ZRMJwsSignatureVerifyRS256Operation> ZRMJwsVerifier::verifyOperationForSignature(
    const ZRMJwsSignature& jwsSignature, const std::string& payload) const {
    const auto header = decodedHeader(this, jwsSignature.protectedHeader());
    if (!header) {
        return nullptr;
    }
    const auto* value = header->if_contains(kZRMJwsAlgKey);
    const auto* algorithm = value == nullptr ? nullptr : value->if_string();
    if (algorithm == nullptr || algorithm->empty()) {
        zrm_logError(this, "Algorithm name for JWS Signature is empty or has invalid format");
        return nullptr;
    }
    if (*algorithm != kZRMJwsAlgorithmRS256Key) {
        zrm_logError(this, "Algorithm for JWS Signature not found");
        return nullptr;
    }
    return std::make_shared<ZRMJwsSignatureVerifyRS256Operation>(platform_, jwsSignature, payload,
                                                                 configuration_);
}
