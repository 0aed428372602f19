#include "ZRMPlatform/Linux/ZRMLinuxDirectories.h"

#include <array>
#include <filesystem>

#include <pwd.h>
#include <unistd.h>

namespace {

std::string accountHome() {
    std::array<char, 4096> room{};
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, room.data(), room.size(), &found) == 0 && found != nullptr &&
        found->pw_dir != nullptr) {
        return found->pw_dir;
    }
    return "/";
}

std::optional<std::string> absoluteVariable(const ZRMProcessEnvironment& environment,
                                            const std::string& name) {
    auto value = environment.variable(name);
    if (value && !value->starts_with('/')) {
        value.reset();
    }
    return value ? std::optional(zrm_absolutePath(*value)) : std::nullopt;
}

}  // namespace

ZRMLinuxDirectories::ZRMLinuxDirectories(const std::string& homeDirectory,
                                         const ZRMProcessEnvironment& environment) {
    if (!homeDirectory.empty()) {
        const auto home = zrm_absolutePath(homeDirectory);
        documents_ = home + "/Documents";
        applicationSupport_ = home + "/Library/Application Support";
        preferences_ = home + "/Library/Preferences";
        keychains_ = home + "/Library/Keychains";
        return;
    }
    const auto home =
        absoluteVariable(environment, "HOME").value_or(zrm_absolutePath(accountHome()));
    const auto orBelowHome = [&](const char* variable, const char* below) {
        return absoluteVariable(environment, variable).value_or(zrm_absolutePath(home + below));
    };
    documents_ = orBelowHome("XDG_DOCUMENTS_DIR", "/Documents");
    applicationSupport_ = orBelowHome("XDG_DATA_HOME", "/.local/share");
    preferences_ = orBelowHome("XDG_CONFIG_HOME", "/.config");
    keychains_ = applicationSupport_ + "/keychains";
}

std::string zrm_absolutePath(const std::string& path) {
    std::error_code failure;
    auto absolute = std::filesystem::absolute(path, failure).lexically_normal().string();
    if (failure) {
        absolute = path;
    }
    while (absolute.size() > 1 && absolute.ends_with('/')) {
        absolute.pop_back();
    }
    return absolute;
}
