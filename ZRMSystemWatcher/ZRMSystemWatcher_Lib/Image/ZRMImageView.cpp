#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/Image/ZRMImageView.h"

#include <cstddef>
#include <utility>

namespace {

template <class Number>
std::optional<Number> readNumber(const ZRMImageView& view, std::uint64_t offset,
                                 ZRMByteOrder order) {
    const auto part = view.part(offset, sizeof(Number));
    if (!part) {
        return std::nullopt;
    }
    Number value = 0;
    for (std::size_t index = 0; index < sizeof(Number); ++index) {
        const auto place = order == ZRMByteOrder::Big ? index : sizeof(Number) - 1 - index;
        value = static_cast<Number>(value << 8U) | part->bytes()[place];
    }
    return value;
}

}  // namespace

ZRMImageView::ZRMImageView(std::span<const std::uint8_t> bytes, std::shared_ptr<const void> owner)
    : bytes_(bytes), owner_(std::move(owner)) {}

std::optional<std::uint8_t> ZRMImageView::u8(std::uint64_t offset) const {
    return offset < size() ? std::optional(bytes_[static_cast<std::size_t>(offset)]) : std::nullopt;
}

std::optional<std::uint32_t> ZRMImageView::u32(std::uint64_t offset, ZRMByteOrder order) const {
    return readNumber<std::uint32_t>(*this, offset, order);
}

std::optional<std::uint64_t> ZRMImageView::u64(std::uint64_t offset, ZRMByteOrder order) const {
    return readNumber<std::uint64_t>(*this, offset, order);
}

std::optional<ZRMImageView> ZRMImageView::part(std::uint64_t offset, std::uint64_t length) const {
    if (offset > size() || length > size() - offset) {
        return std::nullopt;
    }
    return ZRMImageView(
        bytes_.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(length)), owner_);
}

std::optional<ZRMImageView> ZRMImageView::partFrom(std::uint64_t offset) const {
    return offset <= size() ? part(offset, size() - offset) : std::nullopt;
}
