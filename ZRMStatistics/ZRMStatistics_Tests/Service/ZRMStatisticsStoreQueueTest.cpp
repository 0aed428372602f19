#include <gmock/gmock.h>

#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMCreateStatisticOperation.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsStoreQueue.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"

namespace {

using ::testing::ElementsAre;

class ZRMStatisticsStoreQueueTest : public ZRMStatisticsDeviceTest {
  protected:
    void add(std::string_view bytes) {
        queue_->add(std::make_shared<ZRMCreateStatisticOperation>(
            zrm_sharedData(bytes), context_, unknownServerTime(), std::int16_t{1}));
    }

    std::shared_ptr<ZRMStatisticsContext> context_ = openContext();
    std::unique_ptr<ZRMStatisticsStoreQueue> queue_ =
        std::make_unique<ZRMStatisticsStoreQueue>(device_.platform()->executor, "test.queue");
};

}  // namespace

TEST_F(ZRMStatisticsStoreQueueTest, NeighboursShareOnePlaceOnTheQueueAndABlockEndsThat) {
    add("a");
    add("b");
    EXPECT_EQ(queue_->operations().operationCount(), 1U);
    std::vector<std::string> storedThen;
    queue_->addBlock([&] { storedThen = contents(*context_); });
    add("c");
    EXPECT_EQ(queue_->operations().operationCount(), 3U);
    device_.runUntilIdle();
    EXPECT_THAT(storedThen, ElementsAre("a", "b"));
    EXPECT_THAT(contents(*context_), ElementsAre("a", "b", "c"));
}

TEST_F(ZRMStatisticsStoreQueueTest, FullGroupIsFollowedByAnother) {
    for (std::size_t count = 0; count <= ZRMStatisticsSaveGroup::kMaxOperations; ++count) {
        add(std::to_string(count));
    }
    EXPECT_EQ(queue_->operations().operationCount(), 2U);
    device_.runUntilIdle();
    EXPECT_EQ(contents(*context_).size(), ZRMStatisticsSaveGroup::kMaxOperations + 1);
}

TEST_F(ZRMStatisticsStoreQueueTest, WhatWasAddedRunsAfterTheQueueHasGone) {
    add("a");
    queue_.reset();
    device_.runUntilIdle();
    EXPECT_THAT(contents(*context_), ElementsAre("a"));
}

TEST_F(ZRMStatisticsStoreQueueTest, ThereIsRoomUntilTooManyWaitAndAgainWhenTheyHaveRun) {
    std::size_t storedThen = 0;
    const auto block = [&] { storedThen = contents(*context_).size(); };
    for (std::size_t count = 0; count < ZRMStatisticsStoreQueue::kMaxWaiting; ++count) {
        add(std::to_string(count));
    }
    EXPECT_FALSE(queue_->awaitRoom(block));
    add("one more");
    EXPECT_TRUE(queue_->awaitRoom(block));
    device_.runUntilIdle();
    EXPECT_EQ(storedThen, ZRMStatisticsStoreQueue::kMaxWaiting + 1);
    EXPECT_FALSE(queue_->awaitRoom(block));
}
