// Dynamic libraries that do not belong into the process.
#pragma once

#include <memory>
#include <set>
#include <string>

#include "JailbreakDetection/ZRMDeviceJailbreakDetector.h"
#include "ZRMPlatform/Ports/ZRMBundles.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/DyldWatcher/ZRMDyldWatcher.h"

class ZRMDeviceJailbreakDyldImagesDetector final : public ZRMDeviceJailbreakDetector {
  public:
    // Reads the shared watcher.
    explicit ZRMDeviceJailbreakDyldImagesDetector(std::shared_ptr<ZRMMainBundle> mainBundle);
    ZRMDeviceJailbreakDyldImagesDetector(std::shared_ptr<ZRMDyldWatcher> dyldWatcher,
                                         std::shared_ptr<ZRMMainBundle> mainBundle);

    // What isDeviceJailbroken() answers.
    [[nodiscard]] bool isJailbroken() override;
    [[nodiscard]] ZRMDeviceJailbreakDetectorType detectorType() const override;

    // Whether an image that is loaded now, or was recorded as attached, is not trusted, or two
    // loaded images share a path and not an address.
    [[nodiscard]] bool isDeviceJailbroken();

    // In a trusted directory, and without an untrusted keyword anywhere in its path.
    [[nodiscard]] bool isTrustedDyldImage(const ZRMDyldImageDescriptor& image) const;

    // Path prefixes: the system's directories and the bundle's own. Made once in the process, with
    // the bundle of the detector that asks first.
    [[nodiscard]] const std::set<std::string>& trustedDyldImageDirectories() const;
    // Matched without regard to case.
    [[nodiscard]] static const std::set<std::string>& untrustedDyldImageKeywords();
    // The bundle's path, under both spellings of the data volume.
    [[nodiscard]] std::set<std::string> mainBundleTrustedDirs() const;

  private:
    [[nodiscard]] bool isSomeCurrentImageUntrusted() const;

    std::shared_ptr<ZRMDyldWatcher> dyldWatcher_;
    std::shared_ptr<ZRMMainBundle> mainBundle_;
};
