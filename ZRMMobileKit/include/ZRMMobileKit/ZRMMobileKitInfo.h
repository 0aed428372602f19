// What the library says of itself, and the limits it sets to a host's values.
#pragma once

#include <cstdint>

inline constexpr const char* kZRMMobileKitProductName = "ZRMMobileKit";
inline constexpr const char* kZRMMobileKitVersion = "3.28.0.12";

// The domain of the library's own errors; the codes are in ZRMMobileKitErrorCode.h.
inline constexpr const char* kZRMMobileKitErrorDomain = "com.velorin.zrm.mobilekit";

// Greatest lengths, in UTF-16 code units.
inline constexpr std::uint32_t kZRMMaxLoginLength = 255;
inline constexpr std::uint32_t kZRMMaxSessionIdLength = 1024;
inline constexpr std::uint32_t kZRMMaxUINavigationPointLength = 2048;
