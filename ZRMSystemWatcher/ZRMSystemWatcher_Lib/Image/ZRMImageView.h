// A bounded view of an executable's image, mapped or read from a file.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

enum class ZRMByteOrder { Little, Big };

// Nothing outside the view can be read through it: a read that does not fit yields nothing. Copies
// share the bytes, which live as long as the owner (or, without one, as long as who gave them
// says).
class ZRMImageView {
  public:
    explicit ZRMImageView(std::span<const std::uint8_t> bytes,
                          std::shared_ptr<const void> owner = nullptr);

    [[nodiscard]] std::uint64_t size() const { return bytes_.size(); }
    [[nodiscard]] std::span<const std::uint8_t> bytes() const { return bytes_; }

    [[nodiscard]] std::optional<std::uint8_t> u8(std::uint64_t offset) const;
    [[nodiscard]] std::optional<std::uint32_t> u32(std::uint64_t offset, ZRMByteOrder order) const;
    [[nodiscard]] std::optional<std::uint64_t> u64(std::uint64_t offset, ZRMByteOrder order) const;

    // The part of `length` bytes at `offset`, or from `offset` to the end.
    [[nodiscard]] std::optional<ZRMImageView> part(std::uint64_t offset,
                                                   std::uint64_t length) const;
    [[nodiscard]] std::optional<ZRMImageView> partFrom(std::uint64_t offset) const;

  private:
    std::span<const std::uint8_t> bytes_;
    std::shared_ptr<const void> owner_;
};
