// One MD5 value over all files below a directory.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMBundleHashing.h"
#include "ZRMPlatform/Ports/ZRMDigests.h"
#include "ZRMPlatform/Ports/ZRMFileManager.h"

// Needs no more memory for large files or for many. Immutable; may be used from any thread, by
// several at once.
class ZRMMd5Hasher final : public ZRMBundleHashing {
  public:
    static constexpr std::size_t kDefaultChunkSize = 4096;
    // Larger chunks are read in steps of this.
    static constexpr std::size_t kLargestStep = std::size_t{1024} * 1024;

    // Reads in chunks of 4096 bytes.
    ZRMMd5Hasher(std::shared_ptr<ZRMFileManager> fileManager, std::shared_ptr<ZRMDigests> digests);
    // Bytes read in one step at most; 0 means the plain constructor's.
    static std::shared_ptr<ZRMMd5Hasher> initWithChunkSizeForReadingData(
        std::shared_ptr<ZRMFileManager> fileManager, std::shared_ptr<ZRMDigests> digests,
        std::size_t chunkSize);

    [[nodiscard]] std::size_t chunkSize() const { return chunkSize_; }

    // The exclusive or of the digests of all files below the directory, whatever their names and
    // order: two files with the same content cancel each other out. A symbolic link to a file
    // counts with the content of that file, one to a directory does not count and is not followed.
    // What is no regular file or cannot be read to its end is passed over. Absent when no file
    // could be read.
    [[nodiscard]] std::optional<ZRMData> md5ForDirectoryAtPath(const std::string& path) override;

    // 16 bytes; absent when it is no regular file, cannot be read to its end, or MD5 is not to be
    // had.
    [[nodiscard]] std::optional<ZRMData> hashOfFileAtPath(const std::string& path) const;

    // Byte-wise exclusive or over the length of `a`.
    [[nodiscard]] static ZRMData xorData(const ZRMData& a, const ZRMData& b);

  private:
    [[nodiscard]] ZRMData makeBuffer() const;
    [[nodiscard]] std::optional<ZRMData> hashOfFile(const std::string& path,
                                                    std::span<std::uint8_t> buffer) const;

    std::shared_ptr<ZRMFileManager> fileManager_;
    std::shared_ptr<ZRMDigests> digests_;
    std::size_t chunkSize_ = kDefaultChunkSize;
};
