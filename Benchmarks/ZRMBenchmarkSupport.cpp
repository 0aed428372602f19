#include "Benchmarks/ZRMBenchmarkSupport.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

ZRMBenchmarkFolder::ZRMBenchmarkFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zrm-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no temporary folder");
    }
    path_ = pattern;
}

ZRMBenchmarkFolder::~ZRMBenchmarkFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void zrm_mustRun(const std::string& command) {
    if (std::system(command.c_str()) != 0) {
        throw std::runtime_error("failed: " + command);
    }
}
