#include "ZRMPlatform/Simulated/ZRMSimulatedLoader.h"

#include <algorithm>
#include <utility>

void ZRMSimulatedLoader::load(std::string name, std::uint64_t headerAddress, ZRMData bytes) {
    std::vector<AddImageCallback> callbacks;
    {
        const ZRMLockGuard lock(mutex_);
        images_.push_back(
            {{std::move(name), headerAddress}, std::make_shared<const ZRMData>(std::move(bytes))});
        callbacks = callbacks_;
    }
    for (const auto& callback : callbacks) {
        callback(headerAddress, 0);
    }
}

void ZRMSimulatedLoader::unload(const std::string& name) {
    const ZRMLockGuard lock(mutex_);
    const auto found = std::ranges::find_if(
        images_, [&name](const Image& image) { return image.descriptor.name == name; });
    if (found != images_.end()) {
        images_.erase(found);
    }
}

void ZRMSimulatedLoader::setAddressesUnknown(bool unknown) {
    const ZRMLockGuard lock(mutex_);
    addressesUnknown_ = unknown;
}

std::uint32_t ZRMSimulatedLoader::imageCount() const {
    const ZRMLockGuard lock(mutex_);
    return static_cast<std::uint32_t>(images_.size());
}

std::optional<ZRMLoadedImage> ZRMSimulatedLoader::imageAtIndex(std::uint32_t index) const {
    const ZRMLockGuard lock(mutex_);
    return index < images_.size() ? std::optional(images_[index].descriptor) : std::nullopt;
}

std::span<const std::uint8_t> ZRMSimulatedLoader::mappedBytesAtIndex(std::uint32_t index) const {
    const ZRMLockGuard lock(mutex_);
    return index < images_.size() ? std::span(*images_[index].bytes)
                                  : std::span<const std::uint8_t>();
}

std::optional<std::string> ZRMSimulatedLoader::fileForAddress(std::uint64_t address) const {
    const ZRMLockGuard lock(mutex_);
    const auto found = std::ranges::find_if(images_, [address](const Image& image) {
        return image.descriptor.headerAddress == address;
    });
    return addressesUnknown_ || found == images_.end() ? std::nullopt
                                                       : std::optional(found->descriptor.name);
}

void ZRMSimulatedLoader::registerAddImageCallback(AddImageCallback callback) {
    std::vector<std::uint64_t> loaded;
    {
        const ZRMLockGuard lock(mutex_);
        for (const auto& image : images_) {
            loaded.push_back(image.descriptor.headerAddress);
        }
        callbacks_.push_back(callback);
    }
    for (const auto address : loaded) {
        callback(address, 0);
    }
}
