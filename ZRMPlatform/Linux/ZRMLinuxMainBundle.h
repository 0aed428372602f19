// The host application's bundle directory.
#pragma once

#include <map>

#include "ZRMPlatform/Ports/ZRMBundles.h"

// "Info.plist" of the directory is read at construction; one that is missing or no property list
// leaves every entry absent.
class ZRMLinuxMainBundle : public ZRMMainBundle {
  public:
    // Empty: the directory of the running executable.
    explicit ZRMLinuxMainBundle(const std::string& directory);

    [[nodiscard]] std::string path() const override { return path_; }
    [[nodiscard]] std::optional<std::string> identifier() const override;
    [[nodiscard]] std::optional<std::string> infoText(const std::string& key) const override;

  private:
    std::string path_;
    std::map<std::string, std::string> texts_;
};
