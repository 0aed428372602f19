// Where the store lies.
#pragma once

#include <string>
#include <utility>

class ZRMStatisticsStorageConfiguration {
  public:
    // `storageUrl` is the store file as an absolute path.
    static ZRMStatisticsStorageConfiguration configurationWithStorageUrl(
        std::string storageUrl, bool createIntermediateDirectories) {
        return {std::move(storageUrl), createIntermediateDirectories};
    }

    [[nodiscard]] const std::string& storageUrl() const { return storageUrl_; }
    // Whether missing directories above the file are made.
    [[nodiscard]] bool createIntermediateDirectories() const {
        return createIntermediateDirectories_;
    }

  private:
    ZRMStatisticsStorageConfiguration(std::string storageUrl, bool createIntermediateDirectories)
        : storageUrl_(std::move(storageUrl)),
          createIntermediateDirectories_(createIntermediateDirectories) {}

    std::string storageUrl_;
    bool createIntermediateDirectories_;
};
