#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/CodeSignatureWatcher/ZRMCodeSignatureWatcher.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"

namespace {

// Fields of signature blobs are big-endian, whatever the executable's order.
constexpr auto kBlobOrder = ZRMByteOrder::Big;

constexpr std::uint32_t kSuperBlobMagic = 0xfade0cc0;
constexpr std::uint32_t kRequirementsMagic = 0xfade0c01;
constexpr std::uint32_t kCodeDirectoryMagic = 0xfade0c02;
constexpr std::uint32_t kEntitlementsMagic = 0xfade7171;

constexpr std::uint64_t kLengthOffset = 4;
constexpr std::uint32_t kBlobHeadSize = 8;
constexpr std::uint64_t kIndexCountOffset = 8;
constexpr std::uint64_t kIndexOffset = 12;
constexpr std::uint64_t kIndexEntrySize = 8;
constexpr std::uint64_t kIndexEntryOffsetField = 4;

constexpr std::uint64_t kCodeSlotCountOffset = 28;
constexpr std::uint64_t kCodeLimitOffset = 32;
constexpr std::uint64_t kHashTypeOffset = 37;
constexpr std::uint64_t kPageSizeOffset = 39;

// The shortest digest that a code directory can record for a slot.
constexpr std::uint64_t kShortestSlot = 20;
constexpr std::uint8_t kWidestPageExponent = 32;

// A genuine signature has a handful of blobs; an index of a million broken ones must not fill the
// log.
constexpr std::uint32_t kMostBrokenBlobs = 64;

std::string hexadecimal(std::uint32_t value) {
    std::array<char, 11> text{};
    std::snprintf(text.data(), text.size(), "0x%x", value);
    return text.data();
}

std::string inPlace(const char* what, std::uint32_t offset) {
    return std::string(what) + " at offset " + std::to_string(offset) + " of the code signature";
}

}  // namespace

// What is found, for the two descriptors to come.
struct ZRMCodeSignatureWatcher::Signatures {
    ZRMCodeSignatureBlob sha1;
    ZRMCodeSignatureBlob sha256;

    [[nodiscard]] ZRMCodeSignatureBlob* ofType(ZRMCodeSignatureHashType type) {
        if (type == ZRMCodeSignatureHashType::Sha1) {
            return &sha1;
        }
        return type == ZRMCodeSignatureHashType::Sha256 ? &sha256 : nullptr;
    }
};

ZRMCodeSignatureWatcher::ZRMCodeSignatureWatcher(std::shared_ptr<ZRMLoader> loader,
                                                 std::shared_ptr<ZRMMainBundle> mainBundle,
                                                 std::shared_ptr<ZRMFileManager> fileManager,
                                                 std::shared_ptr<ZRMDigests> digests)
    : loader_(std::move(loader)),
      mainBundle_(std::move(mainBundle)),
      fileManager_(std::move(fileManager)),
      digests_(std::move(digests)) {}

std::vector<ZRMCodeSignatureDescriptor> ZRMCodeSignatureWatcher::codeSignature() const {
    return codeSignatureOfImage(findExecutableHeader(), infoPlistBlob());
}

std::vector<ZRMCodeSignatureDescriptor> ZRMCodeSignatureWatcher::codeSignatureOfImage(
    const std::optional<ZRMExecutableHeader>& header, ZRMSharedData infoPlist) const {
    Signatures signatures;
    signatures.sha1.infoPlistBlob = infoPlist;
    signatures.sha256.infoPlistBlob = std::move(infoPlist);
    if (const auto command = header ? findCodeSignatureCommandInHeader(*header) : std::nullopt) {
        if (const auto superBlob = header->image().partFrom(command->dataOffset)) {
            readSuperBlob(*header, *superBlob, signatures);
        } else {
            zrm_logError(this, "The code signature lies past the image");
        }
    }
    return {{digests_, ZRMCodeSignatureHashType::Sha1, std::move(signatures.sha1)},
            {digests_, ZRMCodeSignatureHashType::Sha256, std::move(signatures.sha256)}};
}

ZRMSharedData ZRMCodeSignatureWatcher::infoPlistBlob() const {
    auto bytes = fileManager_->readFile(mainBundle_->path() + "/Info.plist");
    return bytes ? std::make_shared<const ZRMData>(std::move(bytes).value()) : nullptr;
}

std::optional<ZRMExecutableHeader> ZRMCodeSignatureWatcher::findExecutableHeader() const {
    const auto count = loader_->imageCount();
    for (std::uint32_t index = 0; index < count; ++index) {
        auto header =
            ZRMExecutableHeader::fromImage(ZRMImageView(loader_->mappedBytesAtIndex(index)));
        if (header && header->fileType() == kZRMExecutableFileType) {
            return header;
        }
    }
    return std::nullopt;
}

std::optional<ZRMCodeSignatureCommand> ZRMCodeSignatureWatcher::findCodeSignatureCommandInHeader(
    const ZRMExecutableHeader& header) {
    return header.codeSignatureCommand();
}

void ZRMCodeSignatureWatcher::readSuperBlob(const ZRMExecutableHeader& header,
                                            const ZRMImageView& superBlob,
                                            Signatures& signatures) const {
    const auto magic = superBlob.u32(0, kBlobOrder);
    if (magic != kSuperBlobMagic) {
        return;
    }
    const auto count = superBlob.u32(kIndexCountOffset, kBlobOrder);
    if (!count) {
        zrm_logError(this, "The code signature is cut off before its index");
        return;
    }
    std::uint32_t broken = 0;
    for (std::uint32_t entry = 0; entry < *count; ++entry) {
        const auto offset = superBlob.u32(
            kIndexOffset + entry * kIndexEntrySize + kIndexEntryOffsetField, kBlobOrder);
        if (!offset) {
            zrm_logError(this, "The code signature's index lies past the image from entry " +
                                   std::to_string(entry) + " on");
            return;
        }
        if (!readBlob(header, superBlob, *offset, signatures) && ++broken == kMostBrokenBlobs) {
            zrm_logError(this, "The code signature's index is not read further");
            return;
        }
    }
}

bool ZRMCodeSignatureWatcher::readBlob(const ZRMExecutableHeader& header,
                                       const ZRMImageView& superBlob, std::uint32_t offset,
                                       Signatures& signatures) const {
    const auto magic = superBlob.u32(offset, kBlobOrder);
    const auto length = superBlob.u32(offset + kLengthOffset, kBlobOrder);
    if (!magic || !length) {
        zrm_logError(this, inPlace("The blob", offset) + " lies past the image");
        return false;
    }
    if (magic != kRequirementsMagic && magic != kCodeDirectoryMagic &&
        magic != kEntitlementsMagic) {
        zrm_logVerbose(this,
                       "LC_CODE_SIGNATURE unknown block with magic: " + hexadecimal(*magic) + "\n");
        return true;
    }
    const auto blob = superBlob.part(offset, *length);
    if (*length < kBlobHeadSize || !blob) {
        zrm_logError(this,
                     inPlace("The blob", offset) + " has a length of " + std::to_string(*length));
        return false;
    }
    if (magic == kRequirementsMagic) {
        signatures.sha1.requirementsBlob = signatures.sha256.requirementsBlob = blob;
    } else if (magic == kEntitlementsMagic) {
        signatures.sha1.entitlementsBlob = signatures.sha256.entitlementsBlob = blob;
    } else if (auto* const signature = signatures.ofType(hashTypeFromCodeDirectory(*blob))) {
        signature->codeDirectoryBlob = blob;
        signature->slotBlobs = readSlotsFromHeader(header, *blob);
    }
    return true;
}

std::optional<ZRMCodePages> ZRMCodeSignatureWatcher::readSlotsFromHeader(
    const ZRMExecutableHeader& header, const ZRMImageView& codeDirectory) const {
    const auto count = codeDirectory.u32(kCodeSlotCountOffset, kBlobOrder);
    const auto limit = codeDirectory.u32(kCodeLimitOffset, kBlobOrder);
    const auto exponent = codeDirectory.u8(kPageSizeOffset);
    if (!count || !limit || !exponent) {
        zrm_logError(this, "The code directory is too short for its fields");
        return std::nullopt;
    }
    const auto code = header.image().part(0, *limit);
    if (!code) {
        zrm_logError(this, "The code directory's limit of " + std::to_string(*limit) +
                               " lies past the image");
        return std::nullopt;
    }
    // An honest code directory records a digest for every slot inside this very image.
    if (*count > header.image().size() / kShortestSlot) {
        zrm_logError(this, "The code directory's " + std::to_string(*count) +
                               " slots are more than the image can hold");
        return std::nullopt;
    }
    if (*count == 0) {
        return std::nullopt;
    }
    // The limit has 32 bits, so every wider page holds all of the code.
    const auto pageSize =
        *exponent == 0 ? 0 : std::uint64_t{1} << std::min(*exponent, kWidestPageExponent);
    return ZRMCodePages(*code, pageSize, *count);
}

ZRMCodeSignatureHashType ZRMCodeSignatureWatcher::hashTypeFromCodeDirectory(
    const ZRMImageView& codeDirectory) {
    switch (codeDirectory.u8(kHashTypeOffset).value_or(0)) {
        case 1:
            return ZRMCodeSignatureHashType::Sha1;
        case 2:
            return ZRMCodeSignatureHashType::Sha256;
        default:
            return ZRMCodeSignatureHashType::Unknown;
    }
}
