// The date that servers write: IMF-fixdate of RFC 9110, "Tue, 14 Nov 2023 22:13:20 GMT".
#pragma once

#include <optional>
#include <string_view>

#include "ZRMPlatform/Ports/Values/ZRMDate.h"

inline constexpr std::string_view kZRMHttpDatePattern = "EEE, dd MMM yyyy HH:mm:ss zzz";

// Absent unless the text is written exactly so, names an existing date of the years 1583 to 9999,
// its day of the week and a time without leap second. Of such a text there are no two opinions:
// whoever reads dates by the pattern above in the POSIX locale finds the same.
[[nodiscard]] std::optional<ZRMDate> zrm_dateFromHttpDate(std::string_view text);
