#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMCreateStatisticOperation.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMDeleteStatisticOperation.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticsSaveGroup.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ZRMStatisticsSaveGroupTest : public ZRMStatisticsDeviceTest {
  protected:
    using Operation = std::shared_ptr<ZRMStatisticBaseOperation>;

    Operation creation(std::string_view bytes) {
        return std::make_shared<ZRMCreateStatisticOperation>(zrm_sharedData(bytes), context_,
                                                             unknownServerTime(), std::int16_t{1});
    }
    Operation deletion(std::string_view bytes) {
        return std::make_shared<ZRMDeleteStatisticOperation>(
            std::make_shared<ZRMStatisticsDataInMemory>(zrm_sharedData(bytes)), context_);
    }
    std::uint64_t synchronizations(const std::function<void()>& work) {
        std::uint64_t count = 0;
        device_.disk().faults().setHook(
            [&](std::uint64_t, ZRMSimulatedDiskOperation operation, const std::string&) {
                count += operation == ZRMSimulatedDiskOperation::Synchronize ? 1 : 0;
            });
        work();
        device_.disk().faults().setHook({});
        return count;
    }

    std::shared_ptr<ZRMStatisticsContext> context_ = openContext();
    std::shared_ptr<ZRMStatisticsSaveGroup> group_ = std::make_shared<ZRMStatisticsSaveGroup>();
};

}  // namespace

TEST_F(ZRMStatisticsSaveGroupTest, FirstOperationSavesForAllAndEachFinishesInItsTurn) {
    insert(*context_, "before", 1);
    const std::vector<Operation> operations = {creation("a"), creation("b"), creation("c")};
    for (const auto& operation : operations) {
        ASSERT_TRUE(group_->join(operation));
    }
    const auto alone = synchronizations([&] { insert(*context_, "alone", 2); });
    const auto together = synchronizations([&] { operations[0]->start(); });
    EXPECT_EQ(together, alone);
    EXPECT_TRUE(operations[0]->isFinished());
    EXPECT_FALSE(operations[1]->isFinished());
    EXPECT_EQ(synchronizations([&] {
                  operations[1]->start();
                  operations[2]->start();
              }),
              0U);
    EXPECT_TRUE(operations[2]->isFinished());
    EXPECT_EQ(contents(*context_).size(), 5U);
}

TEST_F(ZRMStatisticsSaveGroupTest, ChangesKeepTheirOrder) {
    const std::vector<Operation> operations = {creation("a"), deletion("a"), creation("b"),
                                               deletion("c")};
    for (const auto& operation : operations) {
        ASSERT_TRUE(group_->join(operation));
    }
    for (const auto& operation : operations) {
        operation->start();
    }
    EXPECT_THAT(contents(*context_), ElementsAre("b"));
    EXPECT_THAT(errors(), ElementsAre("No statistic found for jwsData: c"));
}

TEST_F(ZRMStatisticsSaveGroupTest, EachLogsInItsOwnTurn) {
    const std::vector<Operation> operations = {deletion("a"), deletion("b")};
    for (const auto& operation : operations) {
        ASSERT_TRUE(group_->join(operation));
    }
    operations[0]->start();
    EXPECT_THAT(errors(), ElementsAre("No statistic found for jwsData: a"));
    operations[1]->start();
    EXPECT_EQ(errors().size(), 2U);
}

TEST_F(ZRMStatisticsSaveGroupTest, WhenTheSaveFailsEachOperationWorksForItself) {
    const std::vector<Operation> operations = {creation("a"), creation("b")};
    for (const auto& operation : operations) {
        ASSERT_TRUE(group_->join(operation));
    }
    // The shared save and the first operation's own one.
    device_.disk().faults().add({ZRMSimulatedDiskOperation::Write, "*-wal"});
    operations[0]->start();
    device_.disk().faults().clear();
    operations[1]->start();
    EXPECT_TRUE(operations[0]->error().has_value());
    EXPECT_EQ(operations[1]->error(), std::nullopt);
    EXPECT_EQ(errors().size(), 1U);
    EXPECT_THAT(contents(*context_), ElementsAre("b"));
}

TEST_F(ZRMStatisticsSaveGroupTest, WhenAChangeFailsNothingOfTheGroupIsChanged) {
    const std::vector<Operation> operations = {creation("a"), creation("b")};
    for (const auto& operation : operations) {
        ASSERT_TRUE(group_->join(operation));
    }
    openDatabase().exec("DROP TABLE ZRMStatisticEntity");
    operations[0]->start();
    operations[1]->start();
    EXPECT_TRUE(operations[0]->error().has_value());
    EXPECT_TRUE(operations[1]->error().has_value());
    EXPECT_EQ(errors().size(), 2U);
}

TEST_F(ZRMStatisticsSaveGroupTest, CancelledOperationIsLeftOut) {
    const std::vector<Operation> operations = {creation("a"), creation("b"), creation("c")};
    for (const auto& operation : operations) {
        ASSERT_TRUE(group_->join(operation));
    }
    operations[1]->cancel();
    for (const auto& operation : operations) {
        operation->start();
    }
    EXPECT_THAT(contents(*context_), ElementsAre("a", "c"));
}

TEST_F(ZRMStatisticsSaveGroupTest, NobodyJoinsAGroupThatHasRun) {
    const auto operation = creation("a");
    ASSERT_TRUE(group_->join(operation));
    operation->start();
    EXPECT_FALSE(group_->join(creation("b")));
}

TEST_F(ZRMStatisticsSaveGroupTest, GroupHasARoomLimit) {
    std::vector<Operation> operations;
    for (std::size_t count = 0; count < ZRMStatisticsSaveGroup::kMaxOperations; ++count) {
        operations.push_back(creation(std::to_string(count)));
        ASSERT_TRUE(group_->join(operations.back()));
    }
    EXPECT_FALSE(group_->join(creation("one too many")));
}
