// The fast way of writing dates: patterns of nothing but numbers and fixed text, in UTC.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Immutable; may be used from any thread.
class ZRMNumericDatePattern {
  public:
    // Absent for a pattern with other fields than yyyy, MM, dd, HH, mm, ss and S (of any width).
    static std::optional<ZRMNumericDatePattern> fromPattern(std::string_view pattern);

    // Absent outside the years 1583 to 9999, where calendars or widths begin to differ.
    [[nodiscard]] std::optional<std::string> text(std::int64_t millisecondsSince1970) const;

  private:
    enum class Field { Literal, Year, Month, Day, Hour, Minute, Second, Fraction };
    struct Token {
        Field field;
        std::size_t width;    // digits
        std::string literal;  // of Field::Literal
    };

    static std::optional<Field> fieldFor(char letter, std::size_t width);

    std::vector<Token> tokens_;
};
