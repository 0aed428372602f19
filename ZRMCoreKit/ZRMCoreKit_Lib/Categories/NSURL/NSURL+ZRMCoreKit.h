// The check of HTTP URLs.
#pragma once

#include "ZRMCoreKit/ZRMCoreKit_Lib/Url/ZRMUrl.h"

// Whether the host is shorter than 256 and the whole at most 2000 UTF-16 units long, and the whole
// text passes zrm_isValidHttpUrlString(). A URL without a host passes the first check.
[[nodiscard]] bool zrm_isValidHttpUrl(const ZRMUrl& url);
