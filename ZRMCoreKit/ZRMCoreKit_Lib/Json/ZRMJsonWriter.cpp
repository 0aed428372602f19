#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

namespace {

constexpr std::size_t kMaximumDepth = 512;

enum class Style { Compact, Pretty };

// Whether one of eight bytes is a control character, a quotation mark or a backslash.
bool hasEscape(const char* bytes) {
    constexpr std::uint64_t kOnes = 0x0101010101010101U;
    constexpr std::uint64_t kHighBits = 0x80 * kOnes;
    const auto hasByteBelow = [](std::uint64_t word, std::uint64_t bound) {
        return ((word - bound * kOnes) & ~word & kHighBits) != 0;
    };
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof(word));
    return hasByteBelow(word, 0x20) || hasByteBelow(word ^ '"' * kOnes, 1) ||
           hasByteBelow(word ^ '\\' * kOnes, 1);
}

// Appends values to a text; the first value that cannot be written ends it with a reason.
class Writer {
  public:
    explicit Writer(Style style) : style_(style) {}

    bool write(const ZRMJsonValue& value) {
        switch (value.kind()) {
            case boost::json::kind::null:
                text_.append("null");
                return true;
            case boost::json::kind::bool_:
                text_.append(value.get_bool() ? "true" : "false");
                return true;
            case boost::json::kind::int64:
                return writeNumber(value.get_int64());
            case boost::json::kind::uint64:
                return writeNumber(value.get_uint64());
            case boost::json::kind::double_:
                return writeDouble(value.get_double());
            case boost::json::kind::string:
                return writeString(value.get_string());
            case boost::json::kind::array:
                return write(value.get_array());
            case boost::json::kind::object:
                return write(value.get_object());
        }
        return fail("a value of an unknown kind");
    }

    bool write(const ZRMDictionary& object) {
        return writeAll(object, '{', '}', [this](const auto& member) {
            if (!writeString(member.key())) {
                return false;
            }
            text_.append(style_ == Style::Pretty ? " : " : ":");
            return write(member.value());
        });
    }

    ZRMResult<std::string> finish() && {
        if (!failure_.empty()) {
            return ZRMError::withDescription(kZRMCocoaErrorDomain, kZRMJsonErrorCode,
                                             "Invalid value in JSON write: " + failure_ + ".");
        }
        return std::move(text_);
    }

  private:
    bool write(const ZRMJsonArray& array) {
        return writeAll(array, '[', ']', [this](const auto& element) { return write(element); });
    }

    template <class Container, class WriteOne>
    bool writeAll(const Container& container, char open, char close, WriteOne writeOne) {
        if (depth_ == kMaximumDepth) {
            return fail("nesting of more than 512 levels");
        }
        text_.push_back(open);
        ++depth_;
        bool isFirst = true;
        for (const auto& one : container) {
            if (!isFirst) {
                text_.push_back(',');
            }
            isFirst = false;
            breakLine();
            if (!writeOne(one)) {
                return false;
            }
        }
        --depth_;
        if (!isFirst) {
            breakLine();
        }
        text_.push_back(close);
        return true;
    }

    void breakLine() {
        if (style_ == Style::Pretty) {
            text_.push_back('\n');
            text_.append(2 * depth_, ' ');
        }
    }

    template <class Number>
    bool writeNumber(Number number) {
        std::array<char, 32> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        text_.append(digits.data(), end);
        return true;
    }

    bool writeDouble(double number) {
        if (!std::isfinite(number)) {
            return fail("a number that is not finite");
        }
        if (number == 0 && std::signbit(number)) {
            text_.append("-0.0");  // "-0" would read back as the integer 0
            return true;
        }
        return writeNumber(number);
    }

    bool writeString(std::string_view string) {
        if (!zrm_isValidUtf8(string)) {
            return fail("text that is not valid UTF-8");
        }
        text_.push_back('"');
        std::size_t plain = 0;
        for (std::size_t index = 0; index < string.size(); ++index) {
            while (string.size() - index > sizeof(std::uint64_t) &&
                   !hasEscape(string.data() + index)) {
                index += sizeof(std::uint64_t);
            }
            const auto byte = static_cast<unsigned char>(string[index]);
            if (byte >= 0x20 && byte != '"' && byte != '\\') {
                continue;
            }
            text_.append(string.substr(plain, index - plain));
            writeEscape(byte);
            plain = index + 1;
        }
        text_.append(string.substr(plain)).push_back('"');
        return true;
    }

    void writeEscape(unsigned char byte) {
        constexpr std::string_view kEscaped = "\"\\\b\f\n\r\t";
        constexpr std::string_view kLetters = "\"\\bfnrt";
        constexpr std::string_view kHexDigits = "0123456789abcdef";
        const auto found = kEscaped.find(static_cast<char>(byte));
        text_.push_back('\\');
        if (found != std::string_view::npos) {
            text_.push_back(kLetters[found]);
        } else {
            text_.append("u00").push_back(kHexDigits[byte >> 4U]);
            text_.push_back(kHexDigits[byte & 0xFU]);
        }
    }

    bool fail(std::string_view reason) {
        failure_ = reason;
        return false;
    }

    Style style_;
    std::string text_;
    std::string failure_;
    std::size_t depth_ = 0;
};

template <class Value>
ZRMResult<std::string> written(const Value& value, Style style) {
    Writer writer(style);
    writer.write(value);
    return std::move(writer).finish();
}

}  // namespace

ZRMResult<std::string> zrm_compactJsonText(const ZRMJsonValue& value) {
    return written(value, Style::Compact);
}

ZRMResult<std::string> zrm_compactJsonText(const ZRMDictionary& dictionary) {
    return written(dictionary, Style::Compact);
}

ZRMResult<std::string> zrm_prettyJsonText(const ZRMJsonValue& value) {
    return written(value, Style::Pretty);
}

ZRMResult<std::string> zrm_prettyJsonText(const ZRMDictionary& dictionary) {
    return written(dictionary, Style::Pretty);
}
