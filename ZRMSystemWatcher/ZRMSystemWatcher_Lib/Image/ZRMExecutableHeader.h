// The header of an executable image in the Mach-O format, and its load commands.
#pragma once

#include <cstdint>
#include <optional>

#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/Image/ZRMImageView.h"

inline constexpr std::uint32_t kZRMExecutableFileType = 2;  // a main executable

// Where the embedded code signature lies.
struct ZRMCodeSignatureCommand {
    std::uint32_t dataOffset = 0;  // from the header
    std::uint32_t dataSize = 0;
};

// A header that lies whole inside its view. Fields are in the byte order that the magic shows; a
// magic that is none of the format's own is read as the 32-bit header of the native order.
class ZRMExecutableHeader {
  public:
    static constexpr std::uint64_t kSize64 = 32;
    static constexpr std::uint64_t kSize32 = 28;

    // Absent when the view is too short for a header.
    static std::optional<ZRMExecutableHeader> fromImage(ZRMImageView image);

    // The image, whose first byte is the header's.
    [[nodiscard]] const ZRMImageView& image() const { return image_; }
    [[nodiscard]] ZRMByteOrder byteOrder() const { return order_; }
    [[nodiscard]] bool is64Bit() const { return is64Bit_; }
    [[nodiscard]] std::uint64_t size() const { return is64Bit_ ? kSize64 : kSize32; }
    [[nodiscard]] std::uint32_t fileType() const { return fileType_; }
    [[nodiscard]] std::uint32_t commandCount() const { return commandCount_; }

    // The first code-signature command; absent when there is none, or when a command before it does
    // not hold (size below its own head, past the end), which the log tells.
    [[nodiscard]] std::optional<ZRMCodeSignatureCommand> codeSignatureCommand() const;

  private:
    explicit ZRMExecutableHeader(ZRMImageView image);

    ZRMImageView image_;
    ZRMByteOrder order_ = ZRMByteOrder::Little;
    bool is64Bit_ = false;
    std::uint32_t fileType_ = 0;
    std::uint32_t commandCount_ = 0;
};
