// The digest over the files of a bundle.
#pragma once

#include <optional>
#include <string>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

// May be used from any thread, by several at once.
class ZRMBundleHashing {
  public:
    virtual ~ZRMBundleHashing() = default;
    // 16 bytes; absent when no file could be read. Blocks on the disk.
    [[nodiscard]] virtual std::optional<ZRMData> md5ForDirectoryAtPath(const std::string& path) = 0;
};
