#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMActiveDays.h"

namespace {

struct Attempt {
    const char* name;
    ZRMActiveDays before;
    double now;
    ZRMActiveDays after;
};

class ZRMActiveDaysTest : public ::testing::TestWithParam<Attempt> {};

constexpr std::int16_t kMost = std::numeric_limits<std::int16_t>::max();

}  // namespace

TEST_P(ZRMActiveDaysTest, CountsAttemptsMoreThanADayApart) {
    EXPECT_EQ(zrm_activeDaysAfterAttempt(GetParam().before, GetParam().now), GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(
    ZRMActiveDays, ZRMActiveDaysTest,
    ::testing::Values(Attempt{"AtOnce", {1, 1000}, 1000, {1, 1000}},
                      Attempt{"ExactlyADayLater", {1, 1000}, 87400, {1, 1000}},
                      Attempt{"HalfASecondMore", {1, 1000}, 87400.5, {2, 87400.5}},
                      Attempt{"AWeekLaterIsOneDay", {2, 1000}, 605800, {3, 605800}},
                      Attempt{"ClockWentBack", {2, 100000}, 1000, {2, 100000}},
                      Attempt{"NoNumber", {1, 1000}, std::nan(""), {1, 1000}},
                      Attempt{"CountIsFull", {kMost, 0}, 100000, {kMost, 100000}}),
    [](const auto& parameter) { return std::string(parameter.param.name); });
