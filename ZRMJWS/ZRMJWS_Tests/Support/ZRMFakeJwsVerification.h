// A verification of signatures that answers what a test sets, and documents for it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsErrorFactory.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsSignatureVerification.h"

// Answers at once, or, while it holds back, when told to. One thread.
class ZRMFakeJwsVerification {
  public:
    struct Call {
        ZRMJwsObject object;
        bool checkCert;
    };

    std::optional<ZRMError> error;
    bool holdsBack = false;
    std::vector<Call> calls;

    // The fake outlives its use.
    ZRMJwsSignatureVerification verification() {
        return [this](const ZRMJwsObject& object, bool checkCert,
                      const ZRMJwsSignatureVerifier::CompletionHandler& completionHandler) {
            calls.push_back({object, checkCert});
            heldBack_.push_back(completionHandler);
            if (!holdsBack) {
                giveAnswers();
            }
        };
    }

    void giveAnswers() {
        for (const auto& completionHandler : std::exchange(heldBack_, {})) {
            completionHandler(error);
        }
    }

  private:
    std::vector<ZRMJwsSignatureVerifier::CompletionHandler> heldBack_;
};

// A JWS object's text with that payload, decoded, and one signature that only looks like one.
inline std::string zrm_jwsTextWithPayload(std::string_view payload) {
    const auto encoded = zrm_base64UrlFromBase64String(zrm_base64String(zrm_dataFromText(payload)));
    const ZRMJwsObject object(encoded, {ZRMJwsSignature("c2ln", "eyJhbGciOiJSUzI1NiJ9",
                                                        ZRMDictionary{{"x5c", ZRMJsonArray()}})});
    return zrm_compactJsonText(ZRMJwsObject::jsonFromJwsObject(object)).value();
}
