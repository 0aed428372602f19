#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMCreateStatisticOperation.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMDeleteStatisticOperation.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticsSaveGroup.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"

namespace {

using ::testing::ElementsAre;

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
    std::vector<Operation> joined(std::vector<Operation> operations) {
        for (const auto& operation : operations) {
            EXPECT_TRUE(group_->join(operation));
        }
        return operations;
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

TEST_F(ZRMStatisticsSaveGroupTest, OneSaveServesAllAndEachHasFinished) {
    insert(*context_, "before", 1);
    const auto operations = joined({creation("a"), creation("b"), creation("c")});
    const auto alone = synchronizations([&] { insert(*context_, "alone", 2); });
    EXPECT_EQ(synchronizations([&] { group_->run(); }), alone);
    for (const auto& operation : operations) {
        EXPECT_TRUE(operation->isFinished());
        EXPECT_EQ(operation->error(), std::nullopt);
    }
    EXPECT_EQ(contents(*context_).size(), 5U);
}

TEST_F(ZRMStatisticsSaveGroupTest, NoOperationFinishesBeforeTheSave) {
    const auto operations = joined({creation("a"), creation("b")});
    std::size_t storedAtFinish = 0;
    operations[0]->addChangeObserver([&](const std::string& key, bool isPrior) {
        if (key == "isFinished" && !isPrior) {
            storedAtFinish = contents(*openContext()).size();
        }
    });
    group_->run();
    EXPECT_EQ(storedAtFinish, 2U);
}

TEST_F(ZRMStatisticsSaveGroupTest, ChangesKeepTheirOrder) {
    joined({creation("a"), deletion("a"), creation("b"), deletion("c")});
    group_->run();
    EXPECT_THAT(contents(*context_), ElementsAre("b"));
    EXPECT_THAT(errors(), ElementsAre("No statistic found for jwsData: c"));
}

TEST_F(ZRMStatisticsSaveGroupTest, LogLinesKeepTheOrderOfTheOperations) {
    joined({deletion("a"), deletion("b")});
    group_->run();
    EXPECT_THAT(errors(), ElementsAre("No statistic found for jwsData: a",
                                      "No statistic found for jwsData: b"));
}

TEST_F(ZRMStatisticsSaveGroupTest, WhenTheSaveFailsEachOperationWorksForItself) {
    const auto operations = joined({creation("a"), creation("b")});
    // The shared save and the first operation's own one.
    device_.disk().faults().add({ZRMSimulatedDiskOperation::Write, "*-wal"});
    operations[0]->addChangeObserver([&](const std::string& key, bool isPrior) {
        if (key == "isFinished" && !isPrior) {
            device_.disk().faults().clear();
        }
    });
    group_->run();
    EXPECT_TRUE(operations[0]->error().has_value());
    EXPECT_EQ(operations[1]->error(), std::nullopt);
    EXPECT_EQ(errors().size(), 1U);
    EXPECT_THAT(contents(*context_), ElementsAre("b"));
}

TEST_F(ZRMStatisticsSaveGroupTest, WhenAChangeFailsNothingOfTheGroupIsChanged) {
    const auto operations = joined({creation("a"), creation("b")});
    openDatabase().exec("DROP TABLE ZRMStatisticEntity");
    group_->run();
    EXPECT_TRUE(operations[0]->error().has_value());
    EXPECT_TRUE(operations[1]->error().has_value());
    EXPECT_EQ(errors().size(), 2U);
}

TEST_F(ZRMStatisticsSaveGroupTest, CancelledOperationIsLeftOutAndFinishes) {
    const auto operations = joined({creation("a"), creation("b"), creation("c")});
    operations[1]->cancel();
    group_->run();
    EXPECT_THAT(contents(*context_), ElementsAre("a", "c"));
    EXPECT_TRUE(operations[1]->isFinished());
}

TEST_F(ZRMStatisticsSaveGroupTest, OneThatIsAloneSavesForItself) {
    const auto operations = joined({creation("a")});
    group_->run();
    EXPECT_TRUE(operations[0]->isFinished());
    EXPECT_THAT(contents(*context_), ElementsAre("a"));
}

TEST_F(ZRMStatisticsSaveGroupTest, NobodyJoinsAGroupThatHasRun) {
    joined({creation("a")});
    group_->run();
    EXPECT_FALSE(group_->join(creation("b")));
    group_->run();
    EXPECT_THAT(contents(*context_), ElementsAre("a"));
}

TEST_F(ZRMStatisticsSaveGroupTest, GroupHasARoomLimit) {
    for (std::size_t count = 0; count < ZRMStatisticsSaveGroup::kMaxOperations; ++count) {
        joined({creation(std::to_string(count))});
    }
    EXPECT_FALSE(group_->join(creation("one too many")));
}
