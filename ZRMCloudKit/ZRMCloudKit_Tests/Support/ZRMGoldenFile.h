// Files of the source tree that the tests compare with: above all Golden/, which holds one event of
// each type and an archive as the library writes them.
#pragma once

#include <fstream>
#include <sstream>
#include <string>

inline constexpr const char* kZRMGoldenDirectory =
    ZRM_SOURCE_DIR "/ZRMCloudKit/ZRMCloudKit_Tests/Golden";

// Empty where there is no such file.
inline std::string zrm_textOfFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

inline std::string zrm_goldenFile(const std::string& name) {
    return zrm_textOfFile(kZRMGoldenDirectory + ("/" + name));
}
