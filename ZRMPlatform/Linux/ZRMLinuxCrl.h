// The reading of lists of revoked certificates (RFC 5280, section 5).
#pragma once

#include "ZRMPlatform/Linux/ZRMLinuxRevocationAnswer.h"
#include "ZRMPlatform/Linux/ZRMLinuxX509.h"

// A longer list is none.
inline constexpr std::size_t kZRMMaximumCrlBytes = std::size_t{4} * 1024 * 1024;

// No answer unless the bytes are one DER list and nothing after it, signed by the issuer, which is
// allowed to, complete for certificates of this kind, without unknown critical extensions, and in
// force at `now` until a next update that it names.
[[nodiscard]] ZRMLinuxRevocationAnswer zrm_readCrl(std::span<const std::uint8_t> der,
                                                   const ZRMLinuxX509& certificate,
                                                   const ZRMLinuxX509& issuer, ZRMDate now);
