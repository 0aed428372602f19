#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/Image/ZRMExecutableHeader.h"

#include <bit>
#include <string>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"

namespace {

constexpr std::uint32_t kMagic32 = 0xfeedface;
constexpr std::uint32_t kMagic64 = 0xfeedfacf;
constexpr std::uint32_t kCodeSignatureCommand = 0x1d;
constexpr std::uint32_t kCommandHeadSize = 8;

constexpr std::uint64_t kFileTypeOffset = 12;
constexpr std::uint64_t kCommandCountOffset = 16;
constexpr std::uint64_t kCommandSizeOffset = 4;
constexpr std::uint64_t kDataOffsetOffset = 8;
constexpr std::uint64_t kDataSizeOffset = 12;

constexpr ZRMByteOrder kNativeOrder =
    std::endian::native == std::endian::big ? ZRMByteOrder::Big : ZRMByteOrder::Little;

}  // namespace

ZRMExecutableHeader::ZRMExecutableHeader(ZRMImageView image) : image_(std::move(image)) {}

std::optional<ZRMExecutableHeader> ZRMExecutableHeader::fromImage(ZRMImageView image) {
    const auto little = image.u32(0, ZRMByteOrder::Little);
    const auto big = image.u32(0, ZRMByteOrder::Big);
    if (!little || !big) {
        return std::nullopt;
    }
    ZRMExecutableHeader header(std::move(image));
    header.is64Bit_ = little == kMagic64 || big == kMagic64;
    if (little == kMagic32 || little == kMagic64) {
        header.order_ = ZRMByteOrder::Little;
    } else if (big == kMagic32 || big == kMagic64) {
        header.order_ = ZRMByteOrder::Big;
    } else {
        header.order_ = kNativeOrder;
    }
    if (header.image_.size() < header.size()) {
        return std::nullopt;
    }
    header.fileType_ = *header.image_.u32(kFileTypeOffset, header.order_);
    header.commandCount_ = *header.image_.u32(kCommandCountOffset, header.order_);
    return header;
}

std::optional<ZRMCodeSignatureCommand> ZRMExecutableHeader::codeSignatureCommand() const {
    std::uint64_t offset = size();
    for (std::uint32_t index = 0; index < commandCount_; ++index) {
        const auto command = image_.u32(offset, order_);
        const auto commandSize = image_.u32(offset + kCommandSizeOffset, order_);
        if (!command || !commandSize) {
            zrm_logError(this, "Load command " + std::to_string(index) + " lies past the image");
            return std::nullopt;
        }
        if (command == kCodeSignatureCommand) {
            const auto dataOffset = image_.u32(offset + kDataOffsetOffset, order_);
            const auto dataSize = image_.u32(offset + kDataSizeOffset, order_);
            if (!dataOffset || !dataSize) {
                zrm_logError(this, "The code-signature command lies past the image");
                return std::nullopt;
            }
            return ZRMCodeSignatureCommand{*dataOffset, *dataSize};
        }
        if (*commandSize < kCommandHeadSize) {
            zrm_logError(this, "Load command " + std::to_string(index) + " has a size of " +
                                   std::to_string(*commandSize));
            return std::nullopt;
        }
        offset += *commandSize;
    }
    return std::nullopt;
}
