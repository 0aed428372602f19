// Reading a regular file chunk by chunk over a descriptor.
#pragma once

#include <memory>
#include <string>

#include "ZRMPlatform/Ports/ZRMFileManager.h"

// The path is not empty and holds no NUL. A path that is too long for the system is walked piece by
// piece. What is no regular file is not opened, so that no device notices.
ZRMResult<std::unique_ptr<ZRMFileReader>> zrm_openLinuxFileReader(const std::string& path);
