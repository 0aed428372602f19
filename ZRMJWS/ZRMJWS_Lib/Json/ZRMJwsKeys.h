// Member names and algorithm names of JSON Web Signatures.
#pragma once

inline constexpr const char* kZRMJwsPayloadKey = "payload";
inline constexpr const char* kZRMJwsSignaturesKey = "signatures";
inline constexpr const char* kZRMJwsSignatureKey = "signature";
inline constexpr const char* kZRMJwsProtectedKey = "protected";
inline constexpr const char* kZRMJwsHeaderKey = "header";
inline constexpr const char* kZRMJwsX5CKey = "x5c";
inline constexpr const char* kZRMJwsX5UKey = "x5u";
inline constexpr const char* kZRMJwsAlgKey = "alg";
inline constexpr const char* kZRMJwsKeyId = "kid";

inline constexpr const char* kZRMJwsAlgorithmRS256Key = "RS256";
inline constexpr const char* kZRMJwsAlgorithmHS256Key = "HS256";

inline constexpr const char* kZRMJwsErrorDomain = "ZRMJWSErrorDomain";
