// Where the settings document lies on the device.
#pragma once

#include <string>

#include "ZRMPlatform/Ports/ZRMFileManager.h"

// Absolute paths without a trailing slash; neither need exist.
[[nodiscard]] std::string zrm_mobileKitSettingsDirectory(const ZRMDirectories& directories);
[[nodiscard]] std::string zrm_mobileKitSettingsFilePath(const ZRMDirectories& directories);
