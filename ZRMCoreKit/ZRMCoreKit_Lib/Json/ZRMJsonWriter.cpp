#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonWriter.h"

#include <array>
#include <charconv>
#include <cmath>
#include <optional>

#include <unicode/utf8.h>

namespace {

constexpr int kMaximumDepth = 128;

void appendEscaped(std::string& text, char character) {
    static constexpr std::string_view kShort = "\b\f\n\r\t\"\\";
    static constexpr std::string_view kLetters = "bfnrt\"\\";
    static constexpr std::string_view kDigits = "0123456789abcdef";
    const auto found = kShort.find(character);
    if (found != std::string_view::npos) {
        text.append({'\\', kLetters[found]});
    } else if (static_cast<unsigned char>(character) < 0x20) {
        const auto code = static_cast<unsigned char>(character);
        text.append("\\u00").append({kDigits[code >> 4U], kDigits[code & 0xFU]});
    } else {
        text.push_back(character);
    }
}

void appendString(std::string& text, std::string_view string) {
    text.push_back('"');
    for (const char character : zrm_validUtf8String(string)) {
        appendEscaped(text, character);
    }
    text.push_back('"');
}

template <class Number>
void appendNumber(std::string& text, Number number) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    text.append(digits.data(), end);
}

class Writer {
  public:
    explicit Writer(ZRMJsonLayout layout) : pretty_(layout == ZRMJsonLayout::Pretty) {}

    // The error code, or absent when the value was written.
    std::optional<ZRMJsonErrorCode> write(const ZRMJsonValue& value) {
        switch (value.kind()) {
            case boost::json::kind::object:
                return writeObject(value.get_object());
            case boost::json::kind::array:
                return writeArray(value.get_array());
            case boost::json::kind::string:
                appendString(text_, value.get_string());
                return {};
            case boost::json::kind::int64:
                appendNumber(text_, value.get_int64());
                return {};
            case boost::json::kind::uint64:
                appendNumber(text_, value.get_uint64());
                return {};
            case boost::json::kind::double_:
                return writeDouble(value.get_double());
            case boost::json::kind::bool_:
                text_.append(value.get_bool() ? "true" : "false");
                return {};
            case boost::json::kind::null:
                break;
        }
        text_.append("null");
        return {};
    }

    std::string takeText() { return std::move(text_); }

  private:
    std::optional<ZRMJsonErrorCode> writeDouble(double number) {
        if (!std::isfinite(number)) {
            return ZRMJsonErrorNotANumber;
        }
        appendNumber(text_, number);
        return {};
    }

    std::optional<ZRMJsonErrorCode> writeObject(const ZRMDictionary& object) {
        return writeContainer('{', '}', object, [this](const auto& member) {
            appendString(text_, member.key());
            text_.append(pretty_ ? " : " : ":");
            return write(member.value());
        });
    }

    std::optional<ZRMJsonErrorCode> writeArray(const ZRMJsonArray& array) {
        return writeContainer('[', ']', array,
                              [this](const auto& element) { return write(element); });
    }

    template <class Container, class WriteElement>
    std::optional<ZRMJsonErrorCode> writeContainer(char open, char close,
                                                   const Container& container,
                                                   const WriteElement& writeElement) {
        if (depth_ == kMaximumDepth) {
            return ZRMJsonErrorTooDeep;
        }
        ++depth_;
        text_.push_back(open);
        bool first = true;
        for (const auto& element : container) {
            if (!first) {
                text_.push_back(',');
            }
            first = false;
            breakLine();
            if (const auto error = writeElement(element)) {
                return error;
            }
        }
        --depth_;
        if (!first) {
            breakLine();
        }
        text_.push_back(close);
        return {};
    }

    void breakLine() {
        if (pretty_) {
            text_.push_back('\n');
            text_.append(2 * static_cast<std::size_t>(depth_), ' ');
        }
    }

    bool pretty_;
    int depth_ = 0;
    std::string text_;
};

}  // namespace

ZRMResult<std::string> zrm_textFromJson(const ZRMJsonValue& value, ZRMJsonLayout layout) {
    Writer writer(layout);
    if (const auto code = writer.write(value)) {
        return ZRMError::withDescription(kZRMJsonErrorDomain, *code,
                                         *code == ZRMJsonErrorNotANumber
                                             ? "Invalid number value (infinite or not a number)."
                                             : "The value is nested too deep.");
    }
    return writer.takeText();
}

std::string zrm_validUtf8String(std::string_view text) {
    std::string valid;
    valid.reserve(text.size());
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    for (std::size_t index = 0; index < text.size();) {
        const auto start = index;
        UChar32 codePoint = 0;
        U8_NEXT(bytes, index, text.size(), codePoint);
        valid.append(codePoint < 0 ? std::string_view("\xEF\xBF\xBD")
                                   : text.substr(start, index - start));
    }
    return valid;
}
