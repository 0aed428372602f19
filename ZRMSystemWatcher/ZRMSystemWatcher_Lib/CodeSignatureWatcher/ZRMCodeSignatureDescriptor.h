// A code signature with the digest that its hashes are made with.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/ZRMDigests.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/CodeSignatureWatcher/ZRMCodeSignatureBlob.h"

enum class ZRMCodeSignatureHashType : std::uint8_t { Unknown = 0, Sha1 = 1, Sha256 = 2 };

// Immutable. Hash strings are lower-case hexadecimal, computed on each call; absent where the piece
// is absent or the hash type unknown.
class ZRMCodeSignatureDescriptor {
  public:
    ZRMCodeSignatureDescriptor(std::shared_ptr<ZRMDigests> digests,
                               ZRMCodeSignatureHashType hashType,
                               ZRMCodeSignatureBlob codeSignature);

    [[nodiscard]] ZRMCodeSignatureHashType hashType() const { return hashType_; }
    [[nodiscard]] const ZRMCodeSignatureBlob& codeSignature() const { return codeSignature_; }

    [[nodiscard]] std::optional<std::string> codeDirectoryHash() const;
    [[nodiscard]] std::optional<std::string> entitlementsHash() const;
    [[nodiscard]] std::optional<std::string> requirementsHash() const;
    [[nodiscard]] std::optional<std::string> infoPlistHash() const;
    // One a code page, in order, those without a hash left out; absent rather than empty.
    [[nodiscard]] std::optional<std::vector<std::string>> slotHashes() const;

    [[nodiscard]] std::optional<std::string> hashStringForData(
        std::optional<std::span<const std::uint8_t>> bytes) const;

  private:
    [[nodiscard]] std::optional<std::string> hashOf(const std::optional<ZRMImageView>& piece) const;

    std::shared_ptr<ZRMDigests> digests_;
    ZRMCodeSignatureHashType hashType_;
    ZRMCodeSignatureBlob codeSignature_;
};
