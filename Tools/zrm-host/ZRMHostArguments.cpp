#include "Tools/zrm-host/ZRMHostArguments.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>

namespace {

constexpr double kLongestSeconds = 86400;
constexpr int kLoginResults = 7;

}  // namespace

std::optional<ZRMLoginResult> zrm_loginResultFromText(std::string_view text) {
    for (int number = 0; number < kLoginResults; ++number) {
        const auto result = static_cast<ZRMLoginResult>(number);
        if (text == std::to_string(number) || text == zrm_stringFromLoginResult(result)) {
            return result;
        }
    }
    return std::nullopt;
}

std::optional<double> zrm_numberFromText(std::string_view text) {
    double number = 0;
    const auto* end = text.data() + text.size();
    const auto [stop, failure] =
        std::from_chars(text.data(), end, number, std::chars_format::fixed);
    return failure == std::errc() && stop == end && std::isfinite(number) ? std::optional(number)
                                                                          : std::nullopt;
}

std::optional<bool> zrm_switchFromText(std::string_view text) {
    return text == "on" || text == "off" ? std::optional(text == "on") : std::nullopt;
}

std::optional<std::chrono::milliseconds> zrm_secondsFromText(std::string_view text) {
    const auto seconds = zrm_numberFromText(text);
    if (!seconds || *seconds < 0 || *seconds > kLongestSeconds) {
        return std::nullopt;
    }
    return std::chrono::milliseconds(static_cast<std::int64_t>(*seconds * 1000));
}
