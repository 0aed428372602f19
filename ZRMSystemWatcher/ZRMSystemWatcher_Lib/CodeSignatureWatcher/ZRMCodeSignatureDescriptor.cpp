#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/CodeSignatureWatcher/ZRMCodeSignatureDescriptor.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"

ZRMCodeSignatureDescriptor::ZRMCodeSignatureDescriptor(std::shared_ptr<ZRMDigests> digests,
                                                       ZRMCodeSignatureHashType hashType,
                                                       ZRMCodeSignatureBlob codeSignature)
    : digests_(std::move(digests)), hashType_(hashType), codeSignature_(std::move(codeSignature)) {}

std::optional<std::string> ZRMCodeSignatureDescriptor::codeDirectoryHash() const {
    return hashOf(codeSignature_.codeDirectoryBlob);
}

std::optional<std::string> ZRMCodeSignatureDescriptor::entitlementsHash() const {
    return hashOf(codeSignature_.entitlementsBlob);
}

std::optional<std::string> ZRMCodeSignatureDescriptor::requirementsHash() const {
    return hashOf(codeSignature_.requirementsBlob);
}

std::optional<std::string> ZRMCodeSignatureDescriptor::infoPlistHash() const {
    const auto& plist = codeSignature_.infoPlistBlob;
    return plist ? hashStringForData(*plist) : std::nullopt;
}

std::optional<std::vector<std::string>> ZRMCodeSignatureDescriptor::slotHashes() const {
    std::vector<std::string> hashes;
    const auto& pages = codeSignature_.slotBlobs;
    for (std::uint32_t index = 0; pages && index < pages->count(); ++index) {
        if (auto hash = hashStringForData(pages->page(index))) {
            hashes.push_back(*std::move(hash));
        }
    }
    return hashes.empty() ? std::nullopt : std::optional(std::move(hashes));
}

std::optional<std::string> ZRMCodeSignatureDescriptor::hashStringForData(
    std::optional<std::span<const std::uint8_t>> bytes) const {
    if (!bytes || hashType_ == ZRMCodeSignatureHashType::Unknown) {
        return std::nullopt;
    }
    const auto context = digests_->makeContext(hashType_ == ZRMCodeSignatureHashType::Sha1
                                                   ? ZRMDigestAlgorithm::Sha1
                                                   : ZRMDigestAlgorithm::Sha256);
    if (!context) {
        return std::nullopt;
    }
    context->update(*bytes);
    const auto digest = context->finish();
    return digest ? std::optional(zrm_hexString(*digest)) : std::nullopt;
}

std::optional<std::string> ZRMCodeSignatureDescriptor::hashOf(
    const std::optional<ZRMImageView>& piece) const {
    return piece ? hashStringForData(piece->bytes()) : std::nullopt;
}
