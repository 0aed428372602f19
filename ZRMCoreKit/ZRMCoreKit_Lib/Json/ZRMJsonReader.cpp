#include <algorithm>
#include <cmath>
#include <set>
#include <vector>

#include <boost/json/parse.hpp>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"

namespace {

ZRMError failure(const std::string& reason) {
    return ZRMError::withDescription(kZRMCocoaErrorDomain, kZRMJsonErrorCode,
                                     "The data is not valid JSON: " + reason + ".");
}

// Goes over the strings of a JSON text that is known to be well-formed.
class Strings {
  public:
    explicit Strings(std::string_view text) : rest_(text) {}

    // Stops behind the next string, which it returns with its quotes, or at the next brace,
    // which it returns. Empty at the end of the text.
    std::string_view next() {
        const auto start = std::min(rest_.find_first_of("\"{}"), rest_.size());
        rest_.remove_prefix(start);
        const auto token = rest_.substr(0, rest_.starts_with('"') ? stringLength() : 1);
        rest_.remove_prefix(token.size());
        return token;
    }

    // Whether the string that was returned last is a member's name.
    [[nodiscard]] bool isBeforeColon() const {
        const auto next = rest_.find_first_not_of(" \t\r\n");
        return next != std::string_view::npos && rest_[next] == ':';
    }

  private:
    [[nodiscard]] std::size_t stringLength() const {
        std::size_t at = 1;
        while (rest_[at] != '"') {
            at += rest_[at] == '\\' ? 2 : 1;
        }
        return at + 1;
    }

    std::string_view rest_;
};

std::string nameFromToken(std::string_view token) {
    if (token.find('\\') == std::string_view::npos) {
        return std::string(token.substr(1, token.size() - 2));
    }
    return std::string(boost::json::parse(token).as_string());
}

// The text is known to be well-formed.
bool hasDuplicateNames(std::string_view text) {
    std::vector<std::set<std::string>> names;  // of the objects that are open
    Strings strings(text);
    for (auto token = strings.next(); !token.empty(); token = strings.next()) {
        if (token == "{") {
            names.emplace_back();
        } else if (token == "}") {
            names.pop_back();
        } else if (token.front() == '"' && strings.isBeforeColon() &&
                   !names.back().insert(nameFromToken(token)).second) {
            return true;
        }
    }
    return false;
}

// The parser lets a number beyond the range of a double pass as infinity.
bool isFinite(const ZRMJsonValue& value) {
    if (const auto* number = value.if_double()) {
        return std::isfinite(*number);
    }
    if (const auto* array = value.if_array()) {
        return std::ranges::all_of(*array, isFinite);
    }
    if (const auto* object = value.if_object()) {
        return std::ranges::all_of(*object,
                                   [](const auto& member) { return isFinite(member.value()); });
    }
    return true;
}

}  // namespace

ZRMResult<ZRMJsonValue> zrm_jsonFromText(std::string_view text,
                                         const ZRMJsonReadingOptions& options) {
    if (text.size() > options.maximumBytes) {
        return failure("it has more than " + std::to_string(options.maximumBytes) + " bytes");
    }
    boost::json::error_code error;
    auto value = boost::json::parse(text, error);
    if (error) {
        return failure(error.message());
    }
    if (!isFinite(value)) {
        return failure("a number is out of range");
    }
    if (options.refusesDuplicateNames && hasDuplicateNames(text)) {
        return failure("an object has two members of one name");
    }
    return value;
}

ZRMResult<ZRMJsonValue> zrm_jsonFromData(std::span<const std::uint8_t> bytes,
                                         const ZRMJsonReadingOptions& options) {
    return zrm_jsonFromText({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, options);
}
