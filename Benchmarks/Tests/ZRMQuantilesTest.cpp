#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "Benchmarks/ZRMQuantiles.h"

TEST(ZRMQuantiles, QuantileIsTheNearestRank) {
    const std::vector<double> values{5, 1, 4, 2, 3, 6, 9, 8, 7, 10};
    EXPECT_EQ(zrm_quantile(values, 0.5), 5);
    EXPECT_EQ(zrm_quantile(values, 0.51), 6);
    EXPECT_EQ(zrm_quantile(values, 0.9), 9);
    EXPECT_EQ(zrm_quantile(values, 0.99), 10);
    EXPECT_EQ(zrm_quantile(values, 1), 10);
}

TEST(ZRMQuantiles, TheSmallestShareIsTheSmallestValue) {
    EXPECT_EQ(zrm_quantile({3, 1, 2}, 0.001), 1);
    EXPECT_EQ(zrm_quantile({3, 1, 2}, std::numeric_limits<double>::min()), 1);
}

TEST(ZRMQuantiles, OneValueIsEveryQuantile) {
    EXPECT_EQ(zrm_quantile({7}, 0.01), 7);
    EXPECT_EQ(zrm_quantile({7}, 1), 7);
}

TEST(ZRMQuantiles, MedianOfAnEvenNumberIsTheLowerMiddle) {
    EXPECT_EQ(zrm_median({4, 1, 3, 2}), 2);
    EXPECT_EQ(zrm_median({3, 1, 2}), 2);
}

TEST(ZRMQuantiles, RefusesNoValuesAndSharesOutOfRange) {
    EXPECT_THROW(static_cast<void>(zrm_median({})), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(zrm_quantile({1}, 0)), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(zrm_quantile({1}, 1.01)), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(zrm_quantile({1}, std::numeric_limits<double>::quiet_NaN())),
                 std::invalid_argument);
}
