#include "ZRMPlatform/Linux/ZRMLinuxAuthorities.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

#include <curl/curl.h>

namespace {

// Such as "1d3472b9.0".
bool isHashedName(std::string_view name) {
    constexpr std::size_t kDigits = 8;
    const auto isDigit = [](char letter) {
        return (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'f');
    };
    return name.size() == kDigits + 2 && name.ends_with(".0") &&
           std::ranges::all_of(name.substr(0, kDigits), isDigit);
}

bool holdsHashedNames(const std::string& directory) {
    std::error_code failure;
    std::filesystem::directory_iterator entries(directory, failure);
    for (; !failure && entries != std::filesystem::directory_iterator();
         entries.increment(failure)) {
        if (isHashedName(entries->path().filename().string())) {
            return true;
        }
    }
    return false;
}

std::string textOrNone(const char* text) {
    return text == nullptr ? std::string() : std::string(text);
}

}  // namespace

ZRMLinuxAuthorities zrm_preferredAuthorities(const ZRMLinuxAuthorities& offered) {
    if (!offered.directory.empty() && holdsHashedNames(offered.directory)) {
        return {{}, offered.directory};
    }
    return offered;
}

ZRMLinuxAuthorities zrm_systemAuthorities() {
    const auto* const version = curl_version_info(CURLVERSION_NOW);
    return zrm_preferredAuthorities({textOrNone(version->cainfo), textOrNone(version->capath)});
}
