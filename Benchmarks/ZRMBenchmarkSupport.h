// What benchmarks over files and commands share.
#pragma once

#include <string>

// A folder that lives as long as the object.
class ZRMBenchmarkFolder {
  public:
    ZRMBenchmarkFolder();
    ~ZRMBenchmarkFolder();
    ZRMBenchmarkFolder(const ZRMBenchmarkFolder&) = delete;
    ZRMBenchmarkFolder& operator=(const ZRMBenchmarkFolder&) = delete;

    [[nodiscard]] std::string operator/(const std::string& name) const {
        return path_ + "/" + name;
    }

  private:
    std::string path_;
};

// Runs the shell command; throws when it fails.
void zrm_mustRun(const std::string& command);
