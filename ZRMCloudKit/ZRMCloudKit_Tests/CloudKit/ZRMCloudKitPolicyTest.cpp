#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Policies/ZRMCallInfoEventPolicy.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Policies/ZRMScreenRecordingEventPolicy.h"

namespace {

TEST(ZRMScreenRecordingEventPolicy, ReportsOnceMoreAfterAMinuteByDefault) {
    EXPECT_EQ(ZRMScreenRecordingEventPolicy::defaultPolicy(), ZRMScreenRecordingEventPolicy(1, 60));
    const ZRMScreenRecordingEventPolicy policy(3, 2.5);
    EXPECT_EQ(policy.numberOfRetryAttempts(), 3U);
    EXPECT_EQ(policy.retryInterval(), 2.5);
}

TEST(ZRMCallInfoEventPolicy, ChecksOnceAfterTwoMinutesByDefault) {
    EXPECT_EQ(ZRMCallInfoEventPolicy::defaultPolicy(), ZRMCallInfoEventPolicy(1, 120));
    const ZRMCallInfoEventPolicy policy(0, 7);
    EXPECT_EQ(policy.activeStateCheckCount(), 0U);
    EXPECT_EQ(policy.activeStateCheckInterval(), 7);
}

}  // namespace
