// What the library asks of files beyond the file manager's own operations.
#pragma once

#include <optional>
#include <string>

#include "ZRMPlatform/Ports/ZRMFileManager.h"

// Absent, with the error's description in the log, when the date cannot be read.
[[nodiscard]] std::optional<ZRMDate> zrm_creationDateOfItemAtPath(const ZRMFileManager& fileManager,
                                                                  const std::string& path);

// A free name beside `path` for an item that turned out damaged: "PATH.damaged-SECONDS" with the
// first whole second since 1970, from `now` on, with which no other name there begins.
[[nodiscard]] std::string zrm_pathForDamagedItem(const ZRMFileManager& fileManager,
                                                 const std::string& path, ZRMDate now);
