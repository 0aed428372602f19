// Where files live: below the host's directory, or by the XDG base directories.
#pragma once

#include "ZRMPlatform/Ports/ZRMDevice.h"
#include "ZRMPlatform/Ports/ZRMFileManager.h"

// Fixed at construction.
class ZRMLinuxDirectories : public ZRMDirectories {
  public:
    // With a home: "Documents", "Library/Application Support", "Library/Preferences" and
    // "Library/Keychains" below it. Without one (empty): XDG_DOCUMENTS_DIR, XDG_DATA_HOME and
    // XDG_CONFIG_HOME, or their defaults below HOME; a relative XDG path counts as not set.
    ZRMLinuxDirectories(const std::string& homeDirectory, const ZRMProcessEnvironment& environment);

    [[nodiscard]] std::string documents() const override { return documents_; }
    [[nodiscard]] std::string applicationSupport() const override { return applicationSupport_; }
    [[nodiscard]] std::string databaseFileLayer() const override { return {}; }

    // Directory of the user-defaults suites.
    [[nodiscard]] const std::string& preferences() const { return preferences_; }
    // Directory of the keychain's file store.
    [[nodiscard]] const std::string& keychains() const { return keychains_; }

  private:
    std::string documents_;
    std::string applicationSupport_;
    std::string preferences_;
    std::string keychains_;
};

// The path made absolute, without "." parts and trailing slash; symbolic links stay.
std::string zrm_absolutePath(const std::string& path);
