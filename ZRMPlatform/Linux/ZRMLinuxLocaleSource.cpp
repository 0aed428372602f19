#include "ZRMPlatform/Linux/ZRMLinuxLocaleSource.h"

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <string_view>

#include "ZRMPlatform/Linux/ZRMLinuxLanguageTag.h"
#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"
#include "ZRMPlatform/Linux/ZRMLinuxSystemText.h"

namespace {

// The part of a path behind the zone database's directory; a text without it stays as it is.
std::string_view zoneIn(std::string_view text) {
    constexpr std::string_view kDatabase = "zoneinfo/";
    const auto found = text.rfind(kDatabase);
    return found == std::string_view::npos ? text : text.substr(found + kDatabase.size());
}

// Names such as "Europe/Vienna", "UTC" and "Etc/GMT+1", and not rules such as "CET-1CEST,M3.5.0".
bool isZoneName(std::string_view text) {
    const bool hasOnlyNameCharacters = std::ranges::all_of(text, [](char each) {
        return (each >= 'A' && each <= 'Z') || (each >= 'a' && each <= 'z') ||
               (each >= '0' && each <= '9') || each == '/' || each == '_' || each == '-' ||
               each == '+';
    });
    const bool isRule = text.find('/') == std::string_view::npos &&
                        text.find_first_of("0123456789") != std::string_view::npos;
    return !text.empty() && hasOnlyNameCharacters && !isRule && !text.starts_with('/');
}

std::optional<std::string> zoneNameIn(std::string_view text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) {
        text.remove_suffix(1);
    }
    text = zoneIn(text);
    return isZoneName(text) ? std::optional<std::string>(text) : std::nullopt;
}

bool isNameCharacter(char each) {
    return (each >= 'A' && each <= 'Z') || (each >= 'a' && each <= 'z') ||
           (each >= '0' && each <= '9') || each == '_';
}

// "de_AT.UTF-8@euro" without encoding and modifier.
std::string plainLocale(std::string_view text) {
    const std::string plain(text.substr(0, text.find_first_of(".@")));
    const bool isNeutral = plain.empty() || plain == "C" || plain == "POSIX";
    return isNeutral || !std::ranges::all_of(plain, &isNameCharacter) ? "en_US_POSIX" : plain;
}

// The first of the variables that is set and not empty; empty when none is.
std::string firstVariable(const ZRMProcessEnvironment& environment,
                          std::initializer_list<const char*> names) {
    for (const char* const name : names) {
        auto value = environment.variable(name);
        if (value && !value->empty()) {
            return std::move(*value);
        }
    }
    return "";
}

}  // namespace

ZRMLinuxLocaleSource::ZRMLinuxLocaleSource(std::shared_ptr<const ZRMProcessEnvironment> environment,
                                           std::string systemDirectory)
    : environment_(std::move(environment)), systemDirectory_(std::move(systemDirectory)) {}

std::string ZRMLinuxLocaleSource::timeZoneIdentifier() const {
    auto named = environment_->variable("TZ").value_or("");
    if (named.starts_with(':')) {
        named.erase(0, 1);
    }
    if (auto zone = zoneNameIn(named)) {
        return *zone;
    }
    if (auto zone = zoneNameIn(zrm_smallFileText(systemDirectory_ + "/timezone").value_or(""))) {
        return *zone;
    }
    std::error_code failure;
    const auto link = std::filesystem::read_symlink(systemDirectory_ + "/localtime", failure);
    return zoneNameIn(link.string()).value_or("UTC");
}

std::string ZRMLinuxLocaleSource::localeIdentifier() const {
    return plainLocale(firstVariable(*environment_, {"LC_ALL", "LC_TIME", "LANG"}));
}

std::string ZRMLinuxLocaleSource::systemLocaleIdentifier() const {
    for (const char* const file : {"/locale.conf", "/default/locale"}) {
        if (const auto locale = zrm_assignedName(systemDirectory_ + file, "LANG")) {
            return plainLocale(*locale);
        }
    }
    return plainLocale("");
}

std::vector<std::string> ZRMLinuxLocaleSource::preferredLanguages() const {
    std::vector<std::string> tags;
    const auto add = [&tags](std::string_view locale) {
        auto tag = zrm_languageTag(locale);
        if (tag && std::ranges::find(tags, *tag) == tags.end()) {
            tags.push_back(std::move(*tag));
        }
    };
    const auto list = firstVariable(*environment_, {"LANGUAGE"});
    for (std::string_view rest = list; !rest.empty();) {
        const auto end = std::min(rest.find(':'), rest.size());
        add(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    add(firstVariable(*environment_, {"LC_ALL", "LC_MESSAGES", "LANG"}));
    return tags;
}
