// How the settings write a duration.
#pragma once

#include <string>

// The ISO 8601 duration of whole days, hours, minutes and seconds, zero parts left out: "P1DT1H".
// Fractions of a second are cut; 0 is "P"; an interval of -1 second or less is "P" or "PT".
[[nodiscard]] std::string timeIntervalAsISO8601DurationString(double seconds);
