#include "ZRMPlatform/Linux/ZRMLinuxLocaleSource.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"

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

// "de_AT.UTF-8@euro" without encoding and modifier.
std::string plainLocale(std::string_view text) {
    const std::string plain(text.substr(0, text.find_first_of(".@")));
    return plain.empty() || plain == "C" || plain == "POSIX" ? "en_US_POSIX" : plain;
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
    for (const char* name : {"LC_ALL", "LC_TIME", "LANG"}) {
        const auto value = environment_->variable(name);
        if (value && !value->empty()) {
            return plainLocale(*value);
        }
    }
    return plainLocale("");
}

std::string ZRMLinuxLocaleSource::systemLocaleIdentifier() const {
    return plainLocale("");
}

std::vector<std::string> ZRMLinuxLocaleSource::preferredLanguages() const {
    return {};
}
