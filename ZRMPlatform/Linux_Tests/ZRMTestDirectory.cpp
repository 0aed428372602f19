#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <sys/stat.h>

ZRMTestDirectory::ZRMTestDirectory()
    : path_((std::filesystem::temp_directory_path() / "zrm-test-XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) {
        std::abort();
    }
}

ZRMTestDirectory::~ZRMTestDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string ZRMTestDirectory::writeFile(const std::string& relative, std::string_view text) const {
    const auto path = below(relative);
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

std::string zrm_testFileText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

unsigned zrm_testMode(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}
