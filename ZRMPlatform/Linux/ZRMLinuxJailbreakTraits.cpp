#include "ZRMPlatform/Linux/ZRMLinuxJailbreakTraits.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include <dlfcn.h>
#include <unistd.h>

namespace {

std::string environmentOr(const char* name, const std::string& fallback) {
    const char* const value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : fallback;
}

std::vector<std::string> handlerFilesOfEnvironment() {
    const auto home = environmentOr("HOME", "");
    std::vector<std::string> files{environmentOr("XDG_CONFIG_HOME", home + "/.config") +
                                   "/mimeapps.list"};
    std::istringstream directories(environmentOr("XDG_DATA_HOME", home + "/.local/share") + ":" +
                                   environmentOr("XDG_DATA_DIRS", "/usr/local/share:/usr/share"));
    for (std::string directory; std::getline(directories, directory, ':');) {
        files.push_back(directory + "/applications/mimeapps.list");
        files.push_back(directory + "/applications/mimeinfo.cache");
    }
    return files;
}

// RFC 3986, section 3.1; empty when the text has no scheme.
std::string schemeOf(const std::string& url) {
    const auto end = url.find(':');
    if (end == std::string::npos || end == 0 ||
        std::isalpha(static_cast<unsigned char>(url[0])) == 0) {
        return {};
    }
    auto scheme = url.substr(0, end);
    for (auto& character : scheme) {
        const auto byte = static_cast<unsigned char>(character);
        if (std::isalnum(byte) == 0 && character != '+' && character != '-' && character != '.') {
            return {};
        }
        character = static_cast<char>(std::tolower(byte));
    }
    return scheme;
}

}  // namespace

ZRMLinuxUrlOpener::ZRMLinuxUrlOpener() : ZRMLinuxUrlOpener(handlerFilesOfEnvironment()) {}

ZRMLinuxUrlOpener::ZRMLinuxUrlOpener(std::vector<std::string> handlerFiles)
    : handlerFiles_(std::move(handlerFiles)) {}

bool ZRMLinuxUrlOpener::canOpenUrl(const std::string& url) const {
    const auto scheme = schemeOf(url);
    if (scheme.empty()) {
        return false;
    }
    const auto key = "x-scheme-handler/" + scheme + "=";
    return std::ranges::any_of(handlerFiles_, [&key](const std::string& path) {
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with(key) && line.size() > key.size()) {
                return true;
            }
        }
        return false;
    });
}

int ZRMLinuxCommandProcessor::availability() const {
    using System = int (*)(const char*);
    const auto lookedUp = reinterpret_cast<System>(dlsym(RTLD_DEFAULT, "system"));
    return lookedUp != nullptr ? lookedUp(nullptr) : 0;
}

bool ZRMLinuxFileAccess::isReadable(const std::string& path) const {
    return access(path.c_str(), R_OK) == 0;
}

bool ZRMLinuxFileAccess::isWritable(const std::string& path) const {
    return access(path.c_str(), W_OK) == 0;
}
