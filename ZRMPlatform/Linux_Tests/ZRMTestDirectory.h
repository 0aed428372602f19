// A directory that lives as long as a test.
#pragma once

#include <string>
#include <string_view>

class ZRMTestDirectory {
  public:
    ZRMTestDirectory();
    ~ZRMTestDirectory();
    ZRMTestDirectory(const ZRMTestDirectory&) = delete;
    ZRMTestDirectory& operator=(const ZRMTestDirectory&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string below(const std::string& relative) const {
        return path_ + "/" + relative;
    }

    // Writes a file, with all missing directories on its way, and returns its path.
    std::string writeFile(const std::string& relative, std::string_view text) const;

  private:
    std::string path_;
};

// The bytes of a file as text; empty where there is none.
std::string zrm_testFileText(const std::string& path);

// The permission bits of an item.
unsigned zrm_testMode(const std::string& path);
