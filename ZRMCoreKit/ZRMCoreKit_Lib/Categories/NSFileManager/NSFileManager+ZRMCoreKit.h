// What the library asks of files beyond the file manager's own operations.
#pragma once

#include <optional>
#include <string>

#include "ZRMPlatform/Ports/ZRMFileManager.h"

// Absent, with the error's description in the log, when the date cannot be read.
[[nodiscard]] std::optional<ZRMDate> zrm_creationDateOfItemAtPath(const ZRMFileManager& fileManager,
                                                                  const std::string& path);
