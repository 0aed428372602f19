// Finds the main executable's embedded code signature and makes its hashes, once with SHA-1 and
// once with SHA-256, for the server to compare with those of the genuine application.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "ZRMPlatform/Ports/ZRMBundles.h"
#include "ZRMPlatform/Ports/ZRMFileManager.h"
#include "ZRMPlatform/Ports/ZRMLoader.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/CodeSignatureWatcher/ZRMCodeSignatureDescriptor.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/Image/ZRMExecutableHeader.h"

// What it reads may have been shaped by an attacker: a field that does not hold leaves its piece
// absent and is told in the log. Holds no state; may be used from any thread.
class ZRMCodeSignatureWatcher {
  public:
    ZRMCodeSignatureWatcher(std::shared_ptr<ZRMLoader> loader,
                            std::shared_ptr<ZRMMainBundle> mainBundle,
                            std::shared_ptr<ZRMFileManager> fileManager,
                            std::shared_ptr<ZRMDigests> digests);

    // Of the running process: the SHA-1 descriptor, then the SHA-256 one. Parsed afresh each time.
    [[nodiscard]] std::vector<ZRMCodeSignatureDescriptor> codeSignature() const;
    // The same of any executable's image.
    [[nodiscard]] std::vector<ZRMCodeSignatureDescriptor> codeSignatureOfImage(
        const std::optional<ZRMExecutableHeader>& header, ZRMSharedData infoPlist) const;

    // The bytes of the main bundle's Info.plist; absent when it cannot be read.
    [[nodiscard]] ZRMSharedData infoPlistBlob() const;
    // Of the first loaded image that is a main executable.
    [[nodiscard]] std::optional<ZRMExecutableHeader> findExecutableHeader() const;
    [[nodiscard]] static std::optional<ZRMCodeSignatureCommand> findCodeSignatureCommandInHeader(
        const ZRMExecutableHeader& header);
    // The code pages as the code directory cuts them; absent when there are none or when its fields
    // do not hold.
    [[nodiscard]] std::optional<ZRMCodePages> readSlotsFromHeader(
        const ZRMExecutableHeader& header, const ZRMImageView& codeDirectory) const;
    // Unknown for a code directory that is too short to say.
    [[nodiscard]] static ZRMCodeSignatureHashType hashTypeFromCodeDirectory(
        const ZRMImageView& codeDirectory);

  private:
    struct Signatures;
    void readSuperBlob(const ZRMExecutableHeader& header, const ZRMImageView& superBlob,
                       Signatures& signatures) const;
    // False when the blob does not hold.
    bool readBlob(const ZRMExecutableHeader& header, const ZRMImageView& superBlob,
                  std::uint32_t offset, Signatures& signatures) const;

    std::shared_ptr<ZRMLoader> loader_;
    std::shared_ptr<ZRMMainBundle> mainBundle_;
    std::shared_ptr<ZRMFileManager> fileManager_;
    std::shared_ptr<ZRMDigests> digests_;
};
