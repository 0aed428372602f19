// What stands in the middle and at the edge of measured values.
#pragma once

#include <vector>

// The smallest value that at least `share` (above 0 to 1) of the values do not exceed. Throws
// std::invalid_argument without values or for another share.
[[nodiscard]] double zrm_quantile(std::vector<double> values, double share);

// The middle value; of an even number the lower of the two.
[[nodiscard]] double zrm_median(std::vector<double> values);
