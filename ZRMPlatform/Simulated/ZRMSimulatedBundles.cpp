#include "ZRMPlatform/Simulated/ZRMSimulatedBundles.h"

#include <utility>

std::optional<std::string> ZRMSimulatedMainBundle::infoText(const std::string& key) const {
    const auto found = info_.find(key);
    return found != info_.end() ? std::optional(found->second) : std::nullopt;
}

void ZRMSimulatedMainBundle::setInfoText(const std::string& key, std::optional<std::string> text) {
    if (text) {
        info_[key] = std::move(*text);
    } else {
        info_.erase(key);
    }
}

ZRMSimulatedResourceBundles::ZRMSimulatedResourceBundles(std::shared_ptr<ZRMSimulatedDisk> disk)
    : disk_(std::move(disk)) {}

std::optional<std::string> ZRMSimulatedResourceBundles::pathForBundle(
    const std::string& name) const {
    if (name.empty() || name.find('/') != std::string::npos) {
        return std::nullopt;
    }
    const std::string path = std::string(kDirectory) + "/" + name;
    return disk_->holdsDirectory(path) ? std::optional(path) : std::nullopt;
}

void ZRMSimulatedResourceBundles::put(const std::string& bundle, const std::string& file,
                                      const ZRMData& bytes) {
    disk_->put(std::string(kDirectory) + "/" + bundle + "/" + file, bytes);
}
