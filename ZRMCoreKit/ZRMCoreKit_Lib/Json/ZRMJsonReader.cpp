#include <algorithm>
#include <cmath>
#include <set>
#include <vector>

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/parse.hpp>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"

namespace {

ZRMError failure(const std::string& reason) {
    return ZRMError::withDescription(kZRMCocoaErrorDomain, kZRMJsonErrorCode,
                                     "The data is not valid JSON: " + reason + ".");
}

// What a parser event tells, which may be written as a list of its parts.
struct Ignored {
    template <class... Parts>
    constexpr Ignored(const Parts&... /*parts*/) {}
};

// A parser event from which nothing follows.
struct GoOn {
    constexpr bool operator()(Ignored /*first*/, Ignored /*second*/ = {},
                              Ignored /*third*/ = {}) const {
        return true;
    }
};

// Parser events that stop at a member name its object has already.
class DuplicateNameHandler {
  public:
    using error_code = boost::json::error_code;
    using string_view = boost::json::string_view;

    static constexpr std::size_t max_object_size = static_cast<std::size_t>(-1);
    static constexpr std::size_t max_array_size = static_cast<std::size_t>(-1);
    static constexpr std::size_t max_key_size = static_cast<std::size_t>(-1);
    static constexpr std::size_t max_string_size = static_cast<std::size_t>(-1);

    static constexpr GoOn on_document_begin{};
    static constexpr GoOn on_document_end{};
    bool on_object_begin(error_code&) {
        names_.emplace_back();
        return true;
    }
    bool on_object_end(std::size_t, error_code&) {
        names_.pop_back();
        return true;
    }
    static constexpr GoOn on_array_begin{};
    static constexpr GoOn on_array_end{};
    bool on_key_part(string_view part, std::size_t, error_code&) {
        name_.append(part.data(), part.size());
        return true;
    }
    bool on_key(string_view part, std::size_t, error_code& error) {
        name_.append(part.data(), part.size());
        const bool isNew = names_.back().insert(std::move(name_)).second;
        name_.clear();
        if (!isNew) {
            error = boost::json::error::syntax;
        }
        return isNew;
    }
    static constexpr GoOn on_string_part{};
    static constexpr GoOn on_string{};
    static constexpr GoOn on_number_part{};
    static constexpr GoOn on_int64{};
    static constexpr GoOn on_uint64{};
    static constexpr GoOn on_double{};
    static constexpr GoOn on_bool{};
    static constexpr GoOn on_null{};
    static constexpr GoOn on_comment_part{};
    static constexpr GoOn on_comment{};

  private:
    std::vector<std::set<std::string>> names_;  // of the objects that are open
    std::string name_;
};

// The text is known to be well-formed.
bool hasDuplicateNames(std::string_view text) {
    boost::json::basic_parser<DuplicateNameHandler> parser{boost::json::parse_options{}};
    boost::json::error_code error;
    parser.write_some(false, text.data(), text.size(), error);
    return error.failed();
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
