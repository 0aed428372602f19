// Reads certificates as PEM.
#pragma once

#include <optional>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

// The bytes of the first certificate in the text, which need not be those of a certificate. Absent
// when there is none, when what stands between its lines is not base64 once line breaks are gone,
// and when the text is not UTF-8. Pure.
[[nodiscard]] std::optional<ZRMData> zrm_certificateFromPem(const ZRMData& pem);
