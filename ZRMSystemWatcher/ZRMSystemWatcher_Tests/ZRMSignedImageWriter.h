// Writes small signed executables for the tests: header, load commands, code pages, signature
// blobs.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

struct ZRMCodeDirectoryPlan {
    std::uint8_t hashType = 2;
    std::uint8_t pageSizeExponent = 12;
    // Where absent: as many pages as the code takes.
    std::optional<std::uint32_t> slotCount = std::nullopt;
    // Where absent: all of the code.
    std::optional<std::uint32_t> codeLimit = std::nullopt;
};

// What the image is to be like; every field may lie.
struct ZRMSignedImagePlan {
    bool is64Bit = true;
    bool isBigEndian = false;
    std::optional<std::uint32_t> magic = std::nullopt;
    std::uint32_t fileType = 2;
    std::uint32_t codeSize = 10000;  // header and commands included
    std::optional<std::uint32_t> commandCount = std::nullopt;
    std::uint32_t paddingCommandSize = 16;  // of the command before the signature's
    bool hasSignatureCommand = true;
    std::optional<std::uint32_t> dataOffset = std::nullopt;
    std::uint32_t superBlobMagic = 0xfade0cc0;
    std::optional<std::uint32_t> indexCount = std::nullopt;
    std::vector<ZRMCodeDirectoryPlan> codeDirectories{{}};
    std::optional<ZRMData> requirements = ZRMData{'r', 'e', 'q'};
    std::optional<ZRMData> entitlements = ZRMData{'e', 'n', 't'};
    // Further blobs as magic and content.
    std::vector<std::pair<std::uint32_t, ZRMData>> others{};
};

struct ZRMSignedImage {
    ZRMData bytes;
    std::uint32_t signatureOffset = 0;
    // Whole blobs, heads included, in the plan's order.
    std::vector<ZRMData> codeDirectories;
    ZRMData requirements;
    ZRMData entitlements;
    // Offsets of the blobs within the signature, in the order of the index.
    std::vector<std::uint32_t> blobOffsets;
};

ZRMSignedImage zrm_writeSignedImage(const ZRMSignedImagePlan& plan);

// The pages that a code directory cuts `code` into.
std::vector<ZRMData> zrm_pagesOf(const ZRMData& code, std::size_t pageSize);

// Overwrites four bytes, big end first.
void zrm_putBig32(ZRMData& bytes, std::size_t offset, std::uint32_t value);
