// Looks at texts the way the library reads them.
#pragma once

#include <string>

#include "Tools/zrm-inspect/ZRMInspection.h"

// {"seconds":3600,"components":{"hour":1}}; seconds is -1 and components null for what is no
// duration. Years, months and weeks count no seconds.
ZRMInspection zrm_inspectDuration(const std::string& text);

// {"seconds":1709622489}, since 1970, of a "Date" header; null for what is none.
ZRMInspection zrm_inspectServerDate(const std::string& text);

// {"valid":true}
ZRMInspection zrm_inspectHttpUrl(const std::string& text);

// {"text":…}
ZRMInspection zrm_inspectBase64UrlEncode(const std::string& text);

// {"text":…,"hex":…}: the decoded bytes; text is null where they are not UTF-8, both are null where
// the input is no base64url.
ZRMInspection zrm_inspectBase64UrlDecode(const std::string& text);
