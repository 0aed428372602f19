// A dynamic loader whose images the test maps and unmaps.
#pragma once

#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/ZRMLoader.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// Tells of added images at once. May be used from any thread.
class ZRMSimulatedLoader final : public ZRMLoader {
  public:
    // Maps an image with these bytes at an address of the test's choosing.
    void load(std::string name, std::uint64_t headerAddress, ZRMData bytes = {});
    // Unmaps the first image of that name.
    void unload(const std::string& name);
    // From now on no address is found in any image.
    void setAddressesUnknown(bool unknown);

    [[nodiscard]] std::uint32_t imageCount() const override;
    [[nodiscard]] std::optional<ZRMLoadedImage> imageAtIndex(std::uint32_t index) const override;
    [[nodiscard]] std::span<const std::uint8_t> mappedBytesAtIndex(
        std::uint32_t index) const override;
    [[nodiscard]] std::optional<std::string> fileForAddress(std::uint64_t address) const override;
    void registerAddImageCallback(AddImageCallback callback) override;
    void noticeAddedImages() override {}

  private:
    struct Image {
        ZRMLoadedImage descriptor;
        ZRMSharedData bytes;
    };

    mutable ZRMMutex mutex_;
    std::vector<Image> images_ ZRM_GUARDED_BY(mutex_);
    std::vector<AddImageCallback> callbacks_ ZRM_GUARDED_BY(mutex_);
    bool addressesUnknown_ ZRM_GUARDED_BY(mutex_) = false;
};
