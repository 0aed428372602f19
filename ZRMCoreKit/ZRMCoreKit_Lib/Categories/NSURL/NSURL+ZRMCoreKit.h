// The check of HTTP URLs, and the URLs of directories.
#pragma once

#include <string>
#include <string_view>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Url/ZRMUrl.h"

// Whether the host is shorter than 256 and the whole at most 2000 UTF-16 units long, and the whole
// text passes zrm_isValidHttpUrlString(). A URL without a host passes the first check.
[[nodiscard]] bool zrm_isValidHttpUrl(const ZRMUrl& url);

// The file URL of a directory that is named by an absolute path: percent-encoded and with a "/" at
// its end, such as "file:///apps/My%20Bank.app/". Pure; always ASCII, whatever bytes the path has.
[[nodiscard]] std::string zrm_directoryUrlText(std::string_view path);
