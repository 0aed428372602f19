// The pieces of one code signature.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/Image/ZRMImageView.h"

// The executable's code pages, cut where a code directory says. They are read from the image when
// asked for and never gathered: an image may be larger than the memory to spare.
class ZRMCodePages {
  public:
    // `code` begins at the header and is as long as the code directory's limit. `pageSize` 0 means
    // pages without a byte.
    ZRMCodePages(ZRMImageView code, std::uint64_t pageSize, std::uint32_t count);

    [[nodiscard]] std::uint32_t count() const { return count_; }
    // The page at `index`, below count(). Pages past the code are empty, the last of it may be
    // short.
    [[nodiscard]] std::span<const std::uint8_t> page(std::uint32_t index) const;

  private:
    ZRMImageView code_;
    std::uint64_t pageSize_;
    std::uint32_t count_;
};

// Each piece is present or not; blobs include their 8-byte heads.
struct ZRMCodeSignatureBlob {
    std::optional<ZRMImageView> codeDirectoryBlob;
    std::optional<ZRMImageView> entitlementsBlob;
    std::optional<ZRMImageView> requirementsBlob;
    ZRMSharedData infoPlistBlob;  // the raw bytes of Info.plist
    std::optional<ZRMCodePages> slotBlobs;
};
