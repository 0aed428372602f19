// How events write dates.
#pragma once

#include <optional>
#include <string>

#include "ZRMPlatform/Ports/Values/ZRMDate.h"

// "2024-03-05 07:08:09.123000", always in UTC. Absent for an absent date and for one that has no
// text (not finite, millions of years away). From any thread.
[[nodiscard]] std::optional<std::string> zrm_stringFromDate(const std::optional<ZRMDate>& date);
