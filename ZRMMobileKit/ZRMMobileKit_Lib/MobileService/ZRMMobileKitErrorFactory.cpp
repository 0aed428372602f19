#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileKitErrorFactory.h"

#include <array>

#include <boost/json/serialize.hpp>

#include "ZRMMobileKit/ZRMMobileKitInfo.h"

namespace {

// By code.
constexpr std::array<const char*, 13> kMessages = {
    "Unknown error.",
    "Data has invalid format.",
    "Can't start internal service.",
    "Service is not ready for use. Probably, you call some methods before callback received from "
    "-activateWithCompletionHandler: method.",
    "Untrusted certificate found.",
    "Certificate is invalid. Cannot verify certificate.",
    "Settings signature not found.",
    "Settings signature has invalid format. Cannot verify settings.",
    "URL has invalid format.",
    "Login has invalid format.",
    "UI navigation event has invalid format.",
    "Session id has invalid format.",
    "Event is disabled",
};

// What an absent object prints as, and the name of its type.
constexpr const char* kAbsentText = "(null)";
constexpr const char* kAbsentType = "nil";

std::string_view typeName(const ZRMJsonValue& value) {
    switch (value.kind()) {
        case boost::json::kind::null:
            return "null";
        case boost::json::kind::bool_:
            return "boolean";
        case boost::json::kind::string:
            return "string";
        case boost::json::kind::array:
            return "array";
        case boost::json::kind::object:
            return "object";
        default:
            return "number";
    }
}

std::string textOf(const ZRMJsonValue& value) {
    return value.is_string() ? std::string(value.get_string()) : boost::json::serialize(value);
}

ZRMError fieldError(ZRMMobileKitErrorCode code, std::string_view beginning, std::string_view field,
                    const ZRMJsonValue* value) {
    std::string text(beginning);
    text.append(" has invalid format for field ").append(field).append(": '");
    text.append(value == nullptr ? kAbsentText : textOf(*value)).append("' (");
    text.append(value == nullptr ? kAbsentType : typeName(*value)).append(")");
    return ZRMMobileKitErrorFactory::errorForCode(code, {{kZRMLocalizedDescriptionKey, text}});
}

}  // namespace

ZRMError ZRMMobileKitErrorFactory::errorForCode(ZRMMobileKitErrorCode code) {
    const auto index = static_cast<std::uint64_t>(code);
    if (index >= kMessages.size()) {
        throw ZRMAssertionFailure("Unsupported error code");
    }
    return errorForCode(code, {{kZRMLocalizedDescriptionKey, kMessages[index]}});
}

ZRMError ZRMMobileKitErrorFactory::errorForCode(ZRMMobileKitErrorCode code,
                                                std::map<std::string, std::string> userInfo) {
    return {kZRMMobileKitErrorDomain, code, std::move(userInfo)};
}

ZRMError ZRMMobileKitErrorFactory::settingsInvalidFormatErrorForField(
    std::string_view field, const ZRMJsonValue* withValue) {
    return fieldError(ZRMMobileKitErrorSettingsInvalidFormat, "Settings data", field, withValue);
}

ZRMError ZRMMobileKitErrorFactory::settingsSignatureInvalidFormatErrorForField(
    std::string_view field, const ZRMJsonValue* withValue) {
    return fieldError(ZRMMobileKitErrorSettingsSignatureInvalidFormat, "Settings signature", field,
                      withValue);
}
