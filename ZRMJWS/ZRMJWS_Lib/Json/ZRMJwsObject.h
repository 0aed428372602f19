// A signed document in the general JSON serialization (RFC 7515, section 7.2.1).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsSignature.h"
#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMResult.h"

// The domain of a document that is JSON and no JWS object; the code is the
// ZRMJwsObjectJsonValidity.
inline constexpr const char* kZRMJwsObjectErrorDomain = "ZRMJwsObjectErrorDomain";

// The numbering is fixed and is not that of ZRMJwsSignatureJsonValidity.
enum ZRMJwsObjectJsonValidity : int {
    ZRMJwsObjectJsonInvalidSignatures = 0,  // "signatures" is no array of valid signatures
    ZRMJwsObjectJsonInvalidPayload = 1,  // "payload" is no text, or there is no dictionary at all
    ZRMJwsObjectJsonValid = 2,
};

// An immutable value.
class ZRMJwsObject {
  public:
    // The payload as it travels: the base64url text of its UTF-8 bytes.
    ZRMJwsObject(std::string payload, std::vector<ZRMJwsSignature> signatures);

    [[nodiscard]] const std::string& payload() const { return payload_; }
    [[nodiscard]] const std::vector<ZRMJwsSignature>& signatures() const { return signatures_; }

    // For a document from the network or a file. A document that repeats a key within an object, or
    // that is no JSON, yields the reader's error.
    static ZRMResult<ZRMJwsObject> jwsObjectFromData(const ZRMData& data);

    // Absent when the payload is missing or no text, or when a signature cannot be parsed. A
    // missing "signatures" counts as an empty array.
    static std::optional<ZRMJwsObject> jwsObjectFromJson(const ZRMDictionary& json);
    static ZRMDictionary jsonFromJwsObject(const ZRMJwsObject& object);
    static ZRMJwsObjectJsonValidity validateJwsObjectJson(const ZRMDictionary& json);

    friend bool operator==(const ZRMJwsObject&, const ZRMJwsObject&) = default;

  private:
    std::string payload_;
    std::vector<ZRMJwsSignature> signatures_;
};
