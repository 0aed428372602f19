// What the library does with bytes. All operations but those over a port are pure; all may be
// called from any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMPlatform/Ports/ZRMDigests.h"

// Compact JSON. Absent, with a line in the log, for what JSON cannot carry (see
// zrm_compactJsonText); `error`, where given, then holds why and is emptied otherwise.
std::optional<ZRMData> zrm_dataFromJson(const ZRMJsonValue& object);
std::optional<ZRMData> zrm_dataFromJson(const ZRMDictionary& object);
std::optional<ZRMData> zrm_dataFromJson(const ZRMJsonValue& object, std::optional<ZRMError>& error);
std::optional<ZRMData> zrm_dataFromJson(const ZRMDictionary& object,
                                        std::optional<ZRMError>& error);

// Two lower-case hexadecimal digits a byte.
[[nodiscard]] std::string zrm_hexString(std::span<const std::uint8_t> data);

// Byte-wise exclusive or with the key repeated over the data; an empty key changes nothing.
[[nodiscard]] ZRMData zrm_xorWithData(std::span<const std::uint8_t> data,
                                      std::span<const std::uint8_t> key);
// The same with the `length` bytes at `bytes`, which are not copied.
[[nodiscard]] ZRMData zrm_xorWithBytes(std::span<const std::uint8_t> data,
                                       const std::uint8_t* bytes, std::size_t length);

// 32 and 20 bytes; absent when the digest is not to be had or fails.
[[nodiscard]] std::optional<ZRMData> zrm_hashSHA256(ZRMDigests& digests,
                                                    std::span<const std::uint8_t> data);
[[nodiscard]] std::optional<ZRMData> zrm_hashSHA1(ZRMDigests& digests,
                                                  std::span<const std::uint8_t> data);

// Standard base64 (RFC 4648, section 4) without line breaks, with its "=" padding.
[[nodiscard]] std::string zrm_base64String(std::span<const std::uint8_t> data);

// Base64url (RFC 4648, section 5) without padding.
[[nodiscard]] std::string zrm_base64UrlString(std::span<const std::uint8_t> data);

enum class ZRMBase64Decoding { Strict, IgnoreUnknownCharacters };

// Decodes standard base64. Missing "=" padding is refused, surplus "=" at the end accepted, as are
// bits of the last character that no byte takes. With IgnoreUnknownCharacters whatever is neither
// of the alphabet nor "=" is passed over, else it makes the text invalid.
[[nodiscard]] std::optional<ZRMData> zrm_dataFromBase64String(
    std::string_view text, ZRMBase64Decoding decoding = ZRMBase64Decoding::Strict);

// Whether it begins with the two bytes of a gzip header.
[[nodiscard]] bool zrm_isGzipData(std::span<const std::uint8_t> data);

// gzip of the data. Empty data and gzip data come back as they are. Empty when the compressor
// cannot be set up or the data is longer than it takes (4 GiB).
[[nodiscard]] ZRMData zrm_gzipData(std::span<const std::uint8_t> data);

// The most that zrm_ungzipData() makes of its input, which itself may grow about a thousandfold.
inline constexpr std::size_t kZRMUngzipMaximumLength = std::size_t{256} * 1024 * 1024;

// The content of the first gzip member. Empty data and data that is no gzip come back as they are.
// A stream that is broken, ends early or holds more than `maximumLength` bytes yields the buffer as
// far as it had grown: its content is undefined, its end zeros. Empty when the decompressor cannot
// be set up or the data is longer than it takes (4 GiB).
[[nodiscard]] ZRMData zrm_ungzipData(std::span<const std::uint8_t> data,
                                     std::size_t maximumLength = kZRMUngzipMaximumLength);
