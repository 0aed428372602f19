#include "Tools/zrm-host/ZRMHostArguments.h"

#include <charconv>
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

std::optional<std::chrono::milliseconds> zrm_secondsFromText(std::string_view text) {
    double seconds = 0;
    const auto* end = text.data() + text.size();
    const auto [stop, failure] =
        std::from_chars(text.data(), end, seconds, std::chars_format::fixed);
    if (failure != std::errc() || stop != end || !(seconds >= 0 && seconds <= kLongestSeconds)) {
        return std::nullopt;
    }
    return std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
}
