// The dynamic loader: the images mapped into the process.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

struct ZRMLoadedImage {
    std::string name;                 // file path
    std::uint64_t headerAddress = 0;  // where the image's first byte is mapped
};

// May be called from any thread. Indexes run in load order from 0, which is the main executable
// where the system keeps that order; they shift when an image is unloaded meanwhile.
class ZRMLoader {
  public:
    using AddImageCallback = std::function<void(std::uint64_t headerAddress, std::int64_t slide)>;

    virtual ~ZRMLoader() = default;

    [[nodiscard]] virtual std::uint32_t imageCount() const = 0;
    // Absent when there is no image at that index any more.
    [[nodiscard]] virtual std::optional<ZRMLoadedImage> imageAtIndex(std::uint32_t index) const = 0;
    // The bytes that can be read from the image's header on. They stay as long as the image is
    // loaded, which for the main executable is the life of the process.
    [[nodiscard]] virtual std::span<const std::uint8_t> mappedBytesAtIndex(
        std::uint32_t index) const = 0;
    // The file of the image that an address lies in; absent when it lies in none.
    [[nodiscard]] virtual std::optional<std::string> fileForAddress(
        std::uint64_t address) const = 0;

    // Calls back for every image loaded now, before this call returns, then for every later one: at
    // once where the system tells of it, otherwise at the next noticeAddedImages(). On any thread.
    virtual void registerAddImageCallback(AddImageCallback callback) = 0;
    // Delivers what was added and not told yet.
    virtual void noticeAddedImages() = 0;
};

// The loader of the running process: made on first use, never destroyed, usable before main().
std::shared_ptr<ZRMLoader> zrm_processLoader();
