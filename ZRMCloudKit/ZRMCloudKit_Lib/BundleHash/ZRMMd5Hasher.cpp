#include "ZRMCloudKit/ZRMCloudKit_Lib/BundleHash/ZRMMd5Hasher.h"

#include <algorithm>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"

ZRMMd5Hasher::ZRMMd5Hasher(std::shared_ptr<ZRMFileManager> fileManager,
                           std::shared_ptr<ZRMDigests> digests)
    : fileManager_(std::move(fileManager)), digests_(std::move(digests)) {}

std::shared_ptr<ZRMMd5Hasher> ZRMMd5Hasher::initWithChunkSizeForReadingData(
    std::shared_ptr<ZRMFileManager> fileManager, std::shared_ptr<ZRMDigests> digests,
    std::size_t chunkSize) {
    auto hasher = std::make_shared<ZRMMd5Hasher>(std::move(fileManager), std::move(digests));
    if (chunkSize != 0) {
        hasher->chunkSize_ = chunkSize;
    }
    return hasher;
}

std::optional<ZRMData> ZRMMd5Hasher::md5ForDirectoryAtPath(const std::string& path) {
    const auto enumerator = fileManager_->enumeratorAtPath(path);
    if (!enumerator) {
        return std::nullopt;
    }
    auto buffer = makeBuffer();
    std::optional<ZRMData> running;
    while (const auto entry = enumerator.value()->next()) {
        if (entry->isDirectory) {
            continue;
        }
        if (auto digest = hashOfFile(entry->path, buffer)) {
            running = running ? xorData(*running, *digest) : std::move(*digest);
        }
    }
    return running;
}

std::optional<ZRMData> ZRMMd5Hasher::hashOfFileAtPath(const std::string& path) const {
    auto buffer = makeBuffer();
    return hashOfFile(path, buffer);
}

ZRMData ZRMMd5Hasher::xorData(const ZRMData& a, const ZRMData& b) {
    return zrm_xorWithData(a, b);
}

ZRMData ZRMMd5Hasher::makeBuffer() const {
    return ZRMData(std::min(chunkSize_, kLargestStep));
}

std::optional<ZRMData> ZRMMd5Hasher::hashOfFile(const std::string& path,
                                                std::span<std::uint8_t> buffer) const {
    const auto reader = fileManager_->openForReading(path);
    const auto digest = digests_->makeContext(ZRMDigestAlgorithm::Md5);
    if (!reader || !digest) {
        return std::nullopt;
    }
    for (;;) {
        const auto count = reader.value()->read(buffer);
        if (!count) {
            return std::nullopt;
        }
        if (count.value() == 0) {
            return digest->finish();
        }
        digest->update(buffer.first(count.value()));
    }
}
