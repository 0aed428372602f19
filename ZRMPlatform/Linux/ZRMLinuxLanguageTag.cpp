#include "ZRMPlatform/Linux/ZRMLinuxLanguageTag.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

// The C library's, whatever locale it is in.
bool isLetter(char each) {
    return (each >= 'A' && each <= 'Z') || (each >= 'a' && each <= 'z');
}
bool isDigit(char each) {
    return each >= '0' && each <= '9';
}
char lower(char each) {
    return each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each;
}
char upper(char each) {
    return each >= 'a' && each <= 'z' ? static_cast<char>(each - 'a' + 'A') : each;
}

std::string mapped(std::string_view text, char (*map)(char)) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), map);
    return result;
}

bool isLanguage(std::string_view text) {
    return (text.size() == 2 || text.size() == 3) && std::ranges::all_of(text, &isLetter);
}

bool isTerritory(std::string_view text) {
    return (text.size() == 2 && std::ranges::all_of(text, &isLetter)) ||
           (text.size() == 3 && std::ranges::all_of(text, &isDigit));
}

// What a locale's modifier says of the language; most say something of the currency or of sorting.
struct Modifier {
    std::string_view name;
    std::string_view script;
    std::string_view variant;
};
constexpr std::array<Modifier, 4> kModifiers = {{{"latin", "Latn", ""},
                                                 {"cyrillic", "Cyrl", ""},
                                                 {"devanagari", "Deva", ""},
                                                 {"valencia", "", "valencia"}}};

Modifier modifierIn(std::string_view locale) {
    const auto at = locale.find('@');
    const auto name = at == std::string_view::npos ? "" : locale.substr(at + 1);
    const auto* const found = std::ranges::find(kModifiers, name, &Modifier::name);
    return found == kModifiers.end() ? Modifier() : *found;
}

void addSubtag(std::string& tag, std::string_view subtag) {
    if (!subtag.empty()) {
        tag.append("-").append(subtag);
    }
}

}  // namespace

std::optional<std::string> zrm_languageTag(std::string_view locale) {
    const auto plain = locale.substr(0, locale.find_first_of(".@"));
    const auto end = plain.find('_');
    const auto language = plain.substr(0, end);
    if (!isLanguage(language)) {
        return std::nullopt;
    }
    const auto territory = end == std::string_view::npos ? "" : plain.substr(end + 1);
    const auto modifier = modifierIn(locale);
    auto tag = mapped(language, &lower);
    addSubtag(tag, modifier.script);
    addSubtag(tag, isTerritory(territory) ? mapped(territory, &upper) : "");
    addSubtag(tag, modifier.variant);
    return tag;
}
