// The bundles of the simulated application.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "ZRMPlatform/Ports/ZRMBundles.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDisk.h"

// What the bundle says may be changed at any moment; a change is seen at once.
class ZRMSimulatedMainBundle final : public ZRMMainBundle {
  public:
    static constexpr const char* kDefaultPath = "/device/applications/Host.app";

    [[nodiscard]] std::string path() const override { return path_; }
    [[nodiscard]] std::optional<std::string> identifier() const override { return identifier_; }
    [[nodiscard]] std::optional<std::string> infoText(const std::string& key) const override;

    void setPath(std::string path) { path_ = std::move(path); }
    void setIdentifier(std::optional<std::string> identifier) {
        identifier_ = std::move(identifier);
    }
    // An absent text removes the entry.
    void setInfoText(const std::string& key, std::optional<std::string> text);

  private:
    std::string path_ = kDefaultPath;
    std::optional<std::string> identifier_ = "com.example.host";
    std::map<std::string, std::string> info_ = {{"CFBundleShortVersionString", "1.2.3"},
                                                {"CFBundleVersion", "1.2.3.4"}};
};

// Bundles are directories on the simulated disk below kDirectory.
class ZRMSimulatedResourceBundles final : public ZRMResourceBundles {
  public:
    static constexpr const char* kDirectory = "/device/resources";

    explicit ZRMSimulatedResourceBundles(std::shared_ptr<ZRMSimulatedDisk> disk);

    [[nodiscard]] std::optional<std::string> pathForBundle(const std::string& name) const override;

    // Puts a file into the bundle, such as "VelorinRootCA.crt" into "ZRMMobileKitResources.bundle".
    void put(const std::string& bundle, const std::string& file, const ZRMData& bytes);

  private:
    std::shared_ptr<ZRMSimulatedDisk> disk_;
};
