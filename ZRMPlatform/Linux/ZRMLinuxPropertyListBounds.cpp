// The look over a property list's bytes before libplist, which follows every nesting and copies
// every shared node, is let at them.
#include <algorithm>
#include <string_view>

#include "ZRMPlatform/Linux/ZRMLinuxPropertyList.h"

namespace {

constexpr std::size_t kMaximumBytes = std::size_t{4} * 1024 * 1024;
constexpr std::size_t kMaximumContainers = 2000;
constexpr std::size_t kMaximumNodes = 20000;
constexpr std::uint64_t kMaximumExpandedBytes = std::uint64_t{16} * 1024 * 1024;
constexpr int kMaximumDepth = 100;

constexpr std::string_view kBinaryMagic = "bplist";
constexpr std::size_t kTrailerBytes = 32;

std::size_t countOf(std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

// Walks a binary list from its root as a reader would, counting what the reader would make.
class BinaryWalk {
  public:
    explicit BinaryWalk(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    // The trailer: 6 bytes, the widths of offsets and references, then three numbers of 8 bytes.
    bool run() {
        if (bytes_.size() < kTrailerBytes) {
            return false;
        }
        const auto trailer = bytes_.size() - kTrailerBytes;
        offsetWidth_ = bytes_[trailer + 6];
        referenceWidth_ = bytes_[trailer + 7];
        objects_ = number(trailer + 8, 8);
        table_ = number(trailer + 24, 8);
        const bool isSound = offsetWidth_ >= 1 && offsetWidth_ <= 8 && referenceWidth_ >= 1 &&
                             referenceWidth_ <= 8 && table_ <= bytes_.size() &&
                             objects_ <= (bytes_.size() - table_) / offsetWidth_;
        return isSound && node(number(trailer + 16, 8), 0);
    }

  private:
    // Big-endian; 0 beyond the end.
    [[nodiscard]] std::uint64_t number(std::uint64_t offset, std::size_t width) const {
        if (offset > bytes_.size() || width > bytes_.size() - offset) {
            return 0;
        }
        std::uint64_t value = 0;
        for (const auto byte : bytes_.subspan(offset, width)) {
            value = value << 8U | byte;
        }
        return value;
    }

    // The count in a marker's low half, or in the integer object that follows it; `offset` moves
    // behind it.
    std::uint64_t countAt(std::uint64_t& offset) const {
        const auto low = static_cast<std::uint64_t>(number(offset++, 1) & 0x0FU);
        if (low != 0x0F) {
            return low;
        }
        const auto width = std::size_t{1} << (number(offset++, 1) & 0x03U);
        const auto count = number(offset, width);
        offset += width;
        return count;
    }

    bool node(std::uint64_t index, int depth) {
        if (index >= objects_ || depth > kMaximumDepth || ++nodes_ > kMaximumNodes) {
            return false;
        }
        auto offset = number(table_ + index * offsetWidth_, offsetWidth_);
        if (offset >= bytes_.size()) {
            return false;
        }
        const auto kind = number(offset, 1) >> 4U;
        const auto count = countAt(offset);
        switch (kind) {
            case 0x4:  // data
            case 0x5:  // ASCII
                return spend(count);
            case 0x6:  // UTF-16
                return spend(count * 2);
            case 0xA:
            case 0xB:
            case 0xC:
                return children(count, offset, depth);
            case 0xD:
                return children(count * 2, offset, depth);
            default:
                return true;
        }
    }

    bool spend(std::uint64_t size) {
        expanded_ += std::min<std::uint64_t>(size, bytes_.size());
        return expanded_ <= kMaximumExpandedBytes;
    }

    bool children(std::uint64_t count, std::uint64_t offset, int depth) {
        if (count > kMaximumNodes || ++containers_ > kMaximumContainers) {
            return false;
        }
        for (std::uint64_t child = 0; child < count; ++child) {
            if (!node(number(offset + child * referenceWidth_, referenceWidth_), depth + 1)) {
                return false;
            }
        }
        return true;
    }

    std::span<const std::uint8_t> bytes_;
    std::size_t offsetWidth_ = 0;
    std::size_t referenceWidth_ = 0;
    std::uint64_t objects_ = 0;
    std::uint64_t table_ = 0;
    std::size_t nodes_ = 0;
    std::size_t containers_ = 0;
    std::uint64_t expanded_ = 0;
};

}  // namespace

bool zrm_isBoundedPropertyList(std::span<const std::uint8_t> bytes) {
    if (bytes.size() > kMaximumBytes) {
        return false;
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (text.starts_with(kBinaryMagic)) {
        return BinaryWalk(bytes).run();
    }
    return countOf(text, "<dict") + countOf(text, "<array") <= kMaximumContainers;
}
