#include "ZRMSystemWatcher/ZRMSystemWatcher_Tests/ZRMSignedImageWriter.h"

#include <algorithm>

namespace {

void append32(ZRMData& bytes, std::uint32_t value, bool bigEndian) {
    for (unsigned place = 0; place < 4; ++place) {
        const auto shift = bigEndian ? 24 - 8 * place : 8 * place;
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    }
}

ZRMData blobOf(std::uint32_t magic, const ZRMData& content) {
    ZRMData blob;
    append32(blob, magic, true);
    append32(blob, static_cast<std::uint32_t>(content.size() + 8), true);
    blob.insert(blob.end(), content.begin(), content.end());
    return blob;
}

ZRMData codeDirectoryOf(const ZRMCodeDirectoryPlan& plan, std::uint32_t codeSize) {
    const auto limit = plan.codeLimit.value_or(codeSize);
    const auto pageSize = std::uint64_t{1} << std::min<unsigned>(plan.pageSizeExponent, 32);
    const auto pages = static_cast<std::uint32_t>((limit + pageSize - 1) / pageSize);
    ZRMData content(36, 0);
    zrm_putBig32(content, 20, plan.slotCount.value_or(pages));
    zrm_putBig32(content, 24, limit);
    content[28] = plan.hashType == 1 ? 20 : 32;
    content[29] = plan.hashType;
    content[31] = plan.pageSizeExponent;
    return blobOf(0xfade0c02, content);
}

ZRMData superBlobOf(const ZRMSignedImagePlan& plan, ZRMSignedImage& image) {
    std::vector<ZRMData> blobs;
    for (const auto& codeDirectory : plan.codeDirectories) {
        image.codeDirectories.push_back(codeDirectoryOf(codeDirectory, plan.codeSize));
        blobs.push_back(image.codeDirectories.back());
    }
    if (plan.requirements) {
        image.requirements = blobOf(0xfade0c01, *plan.requirements);
        blobs.push_back(image.requirements);
    }
    if (plan.entitlements) {
        image.entitlements = blobOf(0xfade7171, *plan.entitlements);
        blobs.push_back(image.entitlements);
    }
    for (const auto& [magic, content] : plan.others) {
        blobs.push_back(blobOf(magic, content));
    }
    ZRMData super;
    append32(super, plan.superBlobMagic, true);
    append32(super, 0, true);
    append32(super, plan.indexCount.value_or(static_cast<std::uint32_t>(blobs.size())), true);
    auto offset = static_cast<std::uint32_t>(12 + 8 * blobs.size());
    for (std::uint32_t index = 0; index < blobs.size(); ++index) {
        append32(super, index, true);
        append32(super, offset, true);
        image.blobOffsets.push_back(offset);
        offset += static_cast<std::uint32_t>(blobs[index].size());
    }
    for (const auto& blob : blobs) {
        super.insert(super.end(), blob.begin(), blob.end());
    }
    zrm_putBig32(super, 4, static_cast<std::uint32_t>(super.size()));
    return super;
}

}  // namespace

ZRMSignedImage zrm_writeSignedImage(const ZRMSignedImagePlan& plan) {
    ZRMSignedImage image;
    auto& bytes = image.bytes;
    const auto put = [&](std::uint32_t value) { append32(bytes, value, plan.isBigEndian); };
    const std::uint32_t commands = plan.hasSignatureCommand ? 2 : 1;
    put(plan.magic.value_or(plan.is64Bit ? 0xfeedfacf : 0xfeedface));
    put(0x0100000c);
    put(0);
    put(plan.fileType);
    put(plan.commandCount.value_or(commands));
    put(commands * 16);
    put(0);
    if (plan.is64Bit) {
        put(0);
    }
    put(0x1b);  // a command that says nothing about signatures
    put(plan.paddingCommandSize);
    put(0);
    put(0);
    image.signatureOffset = plan.codeSize;
    const auto super = superBlobOf(plan, image);
    if (plan.hasSignatureCommand) {
        put(0x1d);
        put(16);
        put(plan.dataOffset.value_or(plan.codeSize));
        put(static_cast<std::uint32_t>(super.size()));
    }
    while (bytes.size() < plan.codeSize) {
        bytes.push_back(static_cast<std::uint8_t>(bytes.size() * 7 + bytes.size() / 256));
    }
    bytes.insert(bytes.end(), super.begin(), super.end());
    return image;
}

std::vector<ZRMData> zrm_pagesOf(const ZRMData& code, std::size_t pageSize) {
    std::vector<ZRMData> pages;
    for (std::size_t offset = 0; offset < code.size(); offset += pageSize) {
        const auto length = std::min(pageSize, code.size() - offset);
        const auto begin = code.begin() + static_cast<std::ptrdiff_t>(offset);
        pages.emplace_back(begin, begin + static_cast<std::ptrdiff_t>(length));
    }
    return pages;
}

void zrm_putBig32(ZRMData& bytes, std::size_t offset, std::uint32_t value) {
    for (unsigned place = 0; place < 4; ++place) {
        bytes.at(offset + place) = static_cast<std::uint8_t>(value >> (24 - 8 * place));
    }
}
