// Reads tokens off a text from left to right, passing over white space before each.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// Looks at the text it was given, which must outlive it; used by one thread at a time.
class ZRMScanner {
  public:
    explicit ZRMScanner(std::string_view text) : rest_(text) {}

    // Whether nothing but white space is left.
    [[nodiscard]] bool isAtEnd() const;

    // An optional sign and decimal digits of ASCII; a number beyond the range of 32 bits saturates.
    // Absent, and nothing is consumed, when there is none.
    std::optional<std::int32_t> scanInt();

    // The longest run of characters of the set (ASCII); empty, and nothing is consumed, when the
    // next token begins with another.
    std::string_view scanCharactersFromSet(std::string_view set);

  private:
    std::string_view rest_;
};
