#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/CodeSignatureWatcher/ZRMCodeSignatureBlob.h"

#include <algorithm>
#include <utility>

ZRMCodePages::ZRMCodePages(ZRMImageView code, std::uint64_t pageSize, std::uint32_t count)
    : code_(std::move(code)), pageSize_(pageSize), count_(count) {}

std::span<const std::uint8_t> ZRMCodePages::page(std::uint32_t index) const {
    // Without overflow: a page is at most as long as the code, and the index has 32 bits.
    const auto length = std::min(pageSize_, code_.size());
    const auto begin = std::min(length * index, code_.size());
    return code_.part(begin, std::min(length, code_.size() - begin))->bytes();
}
