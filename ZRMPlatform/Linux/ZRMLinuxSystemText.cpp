#include "ZRMPlatform/Linux/ZRMLinuxSystemText.h"

#include <cstdint>

#include <unicode/utf8.h>

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"

namespace {

constexpr std::size_t kLongestName = 256;
constexpr std::string_view kBlanks("\0 \t\r\n", 5);

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Cuts off and returns what stands before the next line end.
std::string_view takeLine(std::string_view& text) {
    const auto end = text.find('\n');
    const auto line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

std::string unquoted(std::string_view value) {
    std::string plain;
    char quote = '\0';
    for (std::size_t at = 0; at < value.size(); ++at) {
        const char each = value[at];
        if (each == '\\' && quote != '\'' && at + 1 < value.size()) {
            plain += value[++at];
        } else if (quote == '\0' && (each == '"' || each == '\'')) {
            quote = each;
        } else if (quote != '\0' && each == quote) {
            quote = '\0';
        } else {
            plain += each;
        }
    }
    return plain;
}

}  // namespace

std::string zrm_wellFormedText(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    std::size_t at = 0;
    while (at < bytes.size()) {
        const auto start = at;
        std::int32_t character = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"  // within the macro
        U8_NEXT(bytes, at, bytes.size(), character);
#pragma GCC diagnostic pop
        text.append(character < 0 ? std::string_view("\xEF\xBF\xBD")
                                  : bytes.substr(start, at - start));
    }
    return text;
}

std::optional<std::string> zrm_systemName(std::string_view bytes) {
    const auto name = trimmed(bytes);
    if (name.empty() || name.size() > kLongestName) {
        return std::nullopt;
    }
    return zrm_wellFormedText(name);
}

std::optional<std::string> zrm_systemNameInFile(const std::string& path) {
    const auto text = zrm_smallFileText(path).value_or("");
    std::string_view rest = text;
    return zrm_systemName(takeLine(rest));
}

std::optional<std::string> zrm_assignedName(const std::string& path, std::string_view name) {
    const auto text = zrm_smallFileText(path).value_or("");
    std::optional<std::string> found;
    for (std::string_view rest = text; !rest.empty();) {
        const auto line = trimmed(takeLine(rest));
        if (line.starts_with(name) && line.substr(name.size()).starts_with('=')) {
            found = zrm_systemName(unquoted(line.substr(name.size() + 1)));
        }
    }
    return found;
}
