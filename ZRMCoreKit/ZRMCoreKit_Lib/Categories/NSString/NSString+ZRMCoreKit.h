// What the library does with text. The conversions are pure; all operations may be called from any
// thread.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLogger.h"
#include "ZRMPlatform/Ports/ZRMBundles.h"
#include "ZRMPlatform/Ports/ZRMFileManager.h"
#include "ZRMPlatform/Ports/ZRMRandom.h"

// Absolute paths without a trailing slash; the directories need not exist.
[[nodiscard]] std::string zrm_documentDirectory(const ZRMDirectories& directories);
[[nodiscard]] std::string zrm_applicationSupportDirectory(const ZRMDirectories& directories);
// The main bundle's own directory below the one for application support; absent when the bundle has
// no identifier or an empty one.
[[nodiscard]] std::optional<std::string> zrm_currentApplicationSupportDirectory(
    const ZRMDirectories& directories, const ZRMMainBundle& mainBundle);

// "-" becomes "+" and "_" becomes "/"; then as many "=" follow as the length modulo 4 says (not as
// many as are missing), so a length of 4n+3 gets three.
[[nodiscard]] std::string zrm_base64FromBase64UrlString(std::string_view text);
// "+" becomes "-" and "/" becomes "_"; every "=" goes.
[[nodiscard]] std::string zrm_base64UrlFromBase64String(std::string_view text);

// "VER", "ERR", or "N/A" for a level that has no name.
[[nodiscard]] std::string zrm_stringForLogLevel(ZRMLogLevel level);

// Letters and digits of ASCII, each of the 62 equally likely at every place.
[[nodiscard]] std::string zrm_randomStringWithLength(ZRMRandom& random, std::size_t length);
