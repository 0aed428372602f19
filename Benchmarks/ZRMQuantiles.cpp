#include "Benchmarks/ZRMQuantiles.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

double zrm_quantile(std::vector<double> values, double share) {
    if (values.empty() || !(share > 0 && share <= 1)) {
        throw std::invalid_argument("a quantile needs values and a share above 0 up to 1");
    }
    const auto rank = std::ceil(share * static_cast<double>(values.size()));
    const auto place = std::clamp<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(rank) - 1, 0,
                                                  std::ssize(values) - 1);
    std::ranges::nth_element(values, values.begin() + place);
    return values[static_cast<std::size_t>(place)];
}

double zrm_median(std::vector<double> values) {
    return zrm_quantile(std::move(values), 0.5);
}
