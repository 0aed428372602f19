#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsErrorFactory.h"

#include <algorithm>
#include <array>
#include <utility>

#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsKeys.h"

namespace {

struct ErrorText {
    std::int64_t code;
    const char* message;
};

constexpr std::array kErrorTexts{
    ErrorText{ZRMJwsErrorUnknown, "Unknown error."},
    ErrorText{ZRMJwsErrorSignatureNotFound, "Signature not found."},
    ErrorText{ZRMJwsErrorSignatureInvalidFormat,
              "Signature has invalid format. Cannot verify JWS payload."},
};

}  // namespace

ZRMError ZRMJwsErrorFactory::errorForCode(std::int64_t code) {
    const auto found = std::ranges::find(kErrorTexts, code, &ErrorText::code);
    if (found == kErrorTexts.end()) {
        throw ZRMAssertionFailure("Unsupported error code");
    }
    return errorForCode(code, {{kZRMLocalizedDescriptionKey, found->message}});
}

ZRMError ZRMJwsErrorFactory::errorForCode(std::int64_t code,
                                          std::map<std::string, std::string> userInfo) {
    return {kZRMJwsErrorDomain, code, std::move(userInfo)};
}
