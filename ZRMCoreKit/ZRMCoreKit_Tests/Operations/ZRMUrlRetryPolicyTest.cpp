#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMUrlRetryPolicy.h"
#include "ZRMPlatform/Ports/ZRMUrlSession.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

bool retriesStatus(int status) {
    return zrm_shouldRetryForHTTPStatusCode(status, std::nullopt, 1, 4);
}

bool retriesError(const std::string& domain, int code) {
    return zrm_shouldRetryForHTTPStatusCode(0, ZRMError(domain, code), 1, 4);
}

TEST(ZRMUrlRetryPolicy, RetriesServerErrorsOnly) {
    EXPECT_TRUE(retriesStatus(500));
    EXPECT_TRUE(retriesStatus(503));
    EXPECT_TRUE(retriesStatus(599));
    EXPECT_TRUE(retriesStatus(600));
    EXPECT_FALSE(retriesStatus(499));
    EXPECT_FALSE(retriesStatus(404));
    EXPECT_FALSE(retriesStatus(301));
    EXPECT_FALSE(retriesStatus(200));
    EXPECT_FALSE(retriesStatus(0));
}

TEST(ZRMUrlRetryPolicy, RetriesTheFourPassingTransportErrorsOnly) {
    for (const int code : {-1001, -1009, -1004, -1005}) {
        EXPECT_TRUE(retriesError(kZRMUrlErrorDomain, code)) << code;
    }
    for (const int code : {-1, -999, -1000, -1002, -1003, -1007, -1011, -1103, -1200, -1202}) {
        EXPECT_FALSE(retriesError(kZRMUrlErrorDomain, code)) << code;
    }
}

TEST(ZRMUrlRetryPolicy, DoesNotRetryTheSameCodesOfAnotherDomain) {
    EXPECT_FALSE(retriesError(kZRMPosixErrorDomain, -1001));
}

TEST(ZRMUrlRetryPolicy, RetriesAServerErrorWhoseBodyBrokeOff) {
    EXPECT_TRUE(zrm_shouldRetryForHTTPStatusCode(
        503, ZRMError(kZRMUrlErrorDomain, ZRMUrlErrorCancelled), 1, 4));
}

TEST(ZRMUrlRetryPolicy, TheAttemptAfterTheCeilingDelayIsTheLast) {
    const ZRMError timedOut(kZRMUrlErrorDomain, ZRMUrlErrorTimedOut);
    EXPECT_TRUE(zrm_shouldRetryForHTTPStatusCode(503, timedOut, 3.9, 4));
    EXPECT_FALSE(zrm_shouldRetryForHTTPStatusCode(503, timedOut, 4, 4));
}

TEST(ZRMUrlRetryPolicy, DelaysDoubleUpToTheCeiling) {
    EXPECT_EQ(zrm_calculateRetryTimeout(1, 86400), 2);
    EXPECT_EQ(zrm_calculateRetryTimeout(2, 86400), 4);
    EXPECT_EQ(zrm_calculateRetryTimeout(65536, 86400), 86400);
    EXPECT_EQ(zrm_calculateRetryTimeout(1.5, 2.5), 2.5);
}

TEST(ZRMUrlRetryPolicy, DefaultIntervalsAllowSeventeenRetries) {
    std::vector<double> delays;
    double delay = 1;
    while (zrm_shouldRetryForHTTPStatusCode(503, std::nullopt, delay, 86400)) {
        delay = zrm_calculateRetryTimeout(delay, 86400);
        delays.push_back(delay);
    }
    EXPECT_THAT(delays, testing::ElementsAre(2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048, 4096,
                                             8192, 16384, 32768, 65536, 86400));
}

void expectIntervals(double minSeconds, double maxSeconds, double usableMin, double usableMax) {
    const auto usable = zrm_usableRetryIntervals(minSeconds, maxSeconds);
    EXPECT_EQ(usable.minSeconds, usableMin);
    EXPECT_EQ(usable.maxSeconds, usableMax);
}

TEST(ZRMUrlRetryPolicy, KeepsIntervalsThatReachTheirCeiling) {
    expectIntervals(1, 4, 1, 4);
    expectIntervals(8, 4, 8, 4);
    expectIntervals(4, 4, 4, 4);
    expectIntervals(0, 0, 0, 0);
    expectIntervals(1, 0, 1, 0);
    expectIntervals(-1, -1, -1, -1);
}

TEST(ZRMUrlRetryPolicy, ReplacesIntervalsThatNeverWould) {
    expectIntervals(0, 4, 1, 86400);
    expectIntervals(-1, 4, 1, 86400);
    expectIntervals(kNaN, 4, 1, 86400);
    expectIntervals(1, kNaN, 1, 86400);
    expectIntervals(1, kInfinity, 1, 86400);
    expectIntervals(kNaN, kNaN, 1, 86400);
}

}  // namespace
