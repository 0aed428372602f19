// Character sets that the library scans with.
#pragma once

#include <string_view>

// The designators of a duration's date part and of its time part, upper case only.
[[nodiscard]] std::string_view zrm_ISO8601DurationDateCharacters();
[[nodiscard]] std::string_view zrm_ISO8601DurationTimeCharacters();
