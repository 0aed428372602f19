// The dynamic loader of glibc, asked through dl_iterate_phdr.
#pragma once

#include <set>
#include <vector>

#include "ZRMPlatform/Ports/ZRMLoader.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// glibc does not tell of images that come later, so they are noticed when somebody asks; one that
// came and went between two questions is missed.
class ZRMLinuxLoader final : public ZRMLoader {
  public:
    [[nodiscard]] std::uint32_t imageCount() const override;
    [[nodiscard]] std::optional<ZRMLoadedImage> imageAtIndex(std::uint32_t index) const override;
    [[nodiscard]] std::span<const std::uint8_t> mappedBytesAtIndex(
        std::uint32_t index) const override;
    [[nodiscard]] std::optional<std::string> fileForAddress(std::uint64_t address) const override;
    void registerAddImageCallback(AddImageCallback callback) override;
    void noticeAddedImages() override;

  private:
    struct Listener {
        AddImageCallback callback;
        std::set<std::uint64_t> told;  // header addresses of images that are loaded and known
    };
    static void tell(Listener& listener, const std::vector<std::uint64_t>& loaded);

    // Held while callbacks run, so that each image is told once; callbacks must not come back here.
    ZRMMutex mutex_;
    std::vector<Listener> listeners_ ZRM_GUARDED_BY(mutex_);
};
