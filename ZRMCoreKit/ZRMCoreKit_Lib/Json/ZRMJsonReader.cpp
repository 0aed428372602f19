#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonReader.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/parse.hpp>

namespace {

namespace json = boost::json;

// Takes the parser's events and stops it at the first name that its object has already.
class DuplicateKeyFinder {
  public:
    static constexpr std::size_t max_object_size = static_cast<std::size_t>(-1);
    static constexpr std::size_t max_array_size = static_cast<std::size_t>(-1);
    static constexpr std::size_t max_key_size = static_cast<std::size_t>(-1);
    static constexpr std::size_t max_string_size = static_cast<std::size_t>(-1);

    [[nodiscard]] bool found() const { return found_; }

    bool on_object_begin(json::error_code&) {
        keys_.emplace_back();
        return true;
    }
    bool on_object_end(std::size_t, json::error_code&) {
        keys_.pop_back();
        return true;
    }
    bool on_key_part(json::string_view part, std::size_t, json::error_code&) {
        key_.append(part);
        return true;
    }
    bool on_key(json::string_view part, std::size_t, json::error_code& error) {
        key_.append(part);
        if (!keys_.back().insert(std::move(key_)).second) {
            found_ = true;
            error = json::error::syntax;
            return false;
        }
        key_.clear();
        return true;
    }

    bool on_document_begin(json::error_code&) { return true; }
    bool on_document_end(json::error_code&) { return true; }
    bool on_array_begin(json::error_code&) { return true; }
    bool on_array_end(std::size_t, json::error_code&) { return true; }
    bool on_string_part(json::string_view, std::size_t, json::error_code&) { return true; }
    bool on_string(json::string_view, std::size_t, json::error_code&) { return true; }
    bool on_number_part(json::string_view, json::error_code&) { return true; }
    bool on_int64(std::int64_t, json::string_view, json::error_code&) { return true; }
    bool on_uint64(std::uint64_t, json::string_view, json::error_code&) { return true; }
    bool on_double(double, json::string_view, json::error_code&) { return true; }
    bool on_bool(bool, json::error_code&) { return true; }
    bool on_null(json::error_code&) { return true; }
    bool on_comment_part(json::string_view, json::error_code&) { return true; }
    bool on_comment(json::string_view, json::error_code&) { return true; }

  private:
    bool found_ = false;
    std::string key_;
    std::vector<std::set<std::string>> keys_;
};

bool hasDuplicateKey(std::string_view text) {
    json::basic_parser<DuplicateKeyFinder> parser{json::parse_options{}};
    json::error_code error;
    parser.write_some(false, text.data(), text.size(), error);
    return parser.handler().found();
}

ZRMError parserError(const json::error_code& error) {
    return ZRMError::withDescription(error.category().name(), error.value(), error.message());
}

}  // namespace

ZRMResult<ZRMJsonValue> zrm_jsonFromData(std::span<const std::uint8_t> bytes,
                                         ZRMJsonDuplicateKeys duplicateKeys) {
    if (bytes.size() > kZRMJsonMaximumSize) {
        return ZRMError::withDescription(kZRMJsonErrorDomain, ZRMJsonErrorTooLarge,
                                         "The JSON document is too large.");
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    json::error_code error;
    auto value = json::parse(text, error);
    if (error) {
        return parserError(error);
    }
    if (duplicateKeys == ZRMJsonDuplicateKeys::Refuse && hasDuplicateKey(text)) {
        return ZRMError::withDescription(kZRMJsonErrorDomain, ZRMJsonErrorDuplicateKey,
                                         "The JSON document holds an object with a repeated key.");
    }
    return value;
}
