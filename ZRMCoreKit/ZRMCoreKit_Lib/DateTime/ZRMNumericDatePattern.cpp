#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMNumericDatePattern.h"

#include <algorithm>
#include <chrono>

namespace {

void appendDigits(std::string& text, std::int64_t number, std::size_t width) {
    const auto start = text.size();
    text.append(width, '0');
    for (auto place = start + width; place > start && number > 0; number /= 10) {
        text[--place] = static_cast<char>('0' + number % 10);
    }
}

// The first digits of the fraction, with zeros beyond the third.
void appendFraction(std::string& text, std::chrono::milliseconds fraction, std::size_t width) {
    std::string digits;
    appendDigits(digits, fraction.count(), 3);
    digits.resize(width, '0');
    text.append(digits);
}

bool isAsciiLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

// Text up to the closing quote; two quotes in a row, anywhere, stand for one. Absent when unclosed.
std::optional<std::string> takeQuoted(std::string_view& pattern) {
    pattern.remove_prefix(1);
    if (pattern.starts_with('\'')) {
        pattern.remove_prefix(1);
        return "'";
    }
    std::string literal;
    while (!pattern.empty()) {
        const auto character = pattern.front();
        pattern.remove_prefix(1);
        if (character != '\'') {
            literal.push_back(character);
        } else if (pattern.starts_with('\'')) {
            literal.push_back('\'');
            pattern.remove_prefix(1);
        } else {
            return literal;
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<ZRMNumericDatePattern::Field> ZRMNumericDatePattern::fieldFor(char letter,
                                                                            std::size_t width) {
    if (letter == 'S') {
        return Field::Fraction;
    }
    if (letter == 'y') {
        return width == 4 ? std::optional(Field::Year) : std::nullopt;
    }
    if (width != 2) {
        return std::nullopt;
    }
    switch (letter) {
        case 'M':
            return Field::Month;
        case 'd':
            return Field::Day;
        case 'H':
            return Field::Hour;
        case 'm':
            return Field::Minute;
        case 's':
            return Field::Second;
        default:
            return std::nullopt;
    }
}

std::optional<ZRMNumericDatePattern> ZRMNumericDatePattern::fromPattern(std::string_view pattern) {
    ZRMNumericDatePattern result;
    while (!pattern.empty()) {
        const auto first = pattern.front();
        if (first == '\'') {
            auto literal = takeQuoted(pattern);
            if (!literal) {
                return std::nullopt;
            }
            result.tokens_.push_back({Field::Literal, 0, std::move(*literal)});
        } else if (isAsciiLetter(first)) {
            const auto width = std::min(pattern.find_first_not_of(first), pattern.size());
            const auto field = fieldFor(first, width);
            if (!field) {
                return std::nullopt;
            }
            result.tokens_.push_back({*field, width, {}});
            pattern.remove_prefix(width);
        } else {
            result.tokens_.push_back({Field::Literal, 0, std::string(1, first)});
            pattern.remove_prefix(1);
        }
    }
    return result;
}

std::optional<std::string> ZRMNumericDatePattern::text(std::int64_t millisecondsSince1970) const {
    constexpr std::int64_t kMillisecondsPerDay = 86400000;
    constexpr auto kFirstDay = std::chrono::sys_days(std::chrono::year(1583) / 1 / 1);
    constexpr auto kEnd = std::chrono::sys_days(std::chrono::year(10000) / 1 / 1);
    if (millisecondsSince1970 < kFirstDay.time_since_epoch().count() * kMillisecondsPerDay ||
        millisecondsSince1970 >= kEnd.time_since_epoch().count() * kMillisecondsPerDay) {
        return std::nullopt;
    }
    const std::chrono::sys_time<std::chrono::milliseconds> moment{
        std::chrono::milliseconds(millisecondsSince1970)};
    const auto days = std::chrono::floor<std::chrono::days>(moment);
    const std::chrono::year_month_day date(days);
    const std::chrono::hh_mm_ss time(moment - days);
    std::string text;
    for (const auto& token : tokens_) {
        switch (token.field) {
            case Field::Literal:
                text.append(token.literal);
                break;
            case Field::Year:
                appendDigits(text, static_cast<int>(date.year()), token.width);
                break;
            case Field::Month:
                appendDigits(text, static_cast<unsigned>(date.month()), token.width);
                break;
            case Field::Day:
                appendDigits(text, static_cast<unsigned>(date.day()), token.width);
                break;
            case Field::Hour:
                appendDigits(text, time.hours().count(), token.width);
                break;
            case Field::Minute:
                appendDigits(text, time.minutes().count(), token.width);
                break;
            case Field::Second:
                appendDigits(text, time.seconds().count(), token.width);
                break;
            case Field::Fraction:
                appendFraction(text, time.subseconds(), token.width);
                break;
        }
    }
    return text;
}
