// One signature of a JWS object.
#pragma once

#include <optional>
#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"

// The numbering is fixed and is not that of ZRMJwsObjectJsonValidity.
enum ZRMJwsSignatureJsonValidity : int {
    ZRMJwsSignatureJsonInvalidValues = 1,  // "protected" or "signature" is no text with content
    ZRMJwsSignatureJsonInvalidHeader = 2,  // "header" is no dictionary
    ZRMJwsSignatureJsonValid = 3,
};

// An immutable value.
class ZRMJwsSignature {
  public:
    // Both texts are base64url as they travel: of the signature's bytes and of the compact JSON of
    // the protected header. `headers` is the unprotected header.
    ZRMJwsSignature(std::string signature, std::string protectedHeader,
                    std::optional<ZRMDictionary> headers);

    [[nodiscard]] const std::string& signature() const { return signature_; }
    [[nodiscard]] const std::string& protectedHeader() const { return protectedHeader_; }
    [[nodiscard]] const std::optional<ZRMDictionary>& headers() const { return headers_; }

    // Absent, with a log line, when a member is missing or of another type. Unlike
    // validateSignatureJson() it takes empty texts and looks at "signature" first.
    static std::optional<ZRMJwsSignature> jwsSignatureFromJson(const ZRMDictionary& json);
    // Absent headers are left out.
    static ZRMDictionary jsonFromJwsSignature(const ZRMJwsSignature& signature);
    static ZRMJwsSignatureJsonValidity validateSignatureJson(const ZRMDictionary& json);

    friend bool operator==(const ZRMJwsSignature&, const ZRMJwsSignature&) = default;

  private:
    std::string signature_;
    std::string protectedHeader_;
    std::optional<ZRMDictionary> headers_;
};
