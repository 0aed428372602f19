#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "ZRMStatistics/ZRMStatistics_Lib/DataSource/ZRMStatisticsDataSource.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class RecordedReports final : public ZRMStatisticsDataSourceObserver {
  public:
    void dataSourceDidInsertStatisticsData(
        ZRMStatisticsDataSource& dataSource,
        const std::shared_ptr<ZRMStatisticsData>& data) override {
        report("insert", dataSource, data);
    }
    void dataSourceDidDeleteStatisticsData(
        ZRMStatisticsDataSource& dataSource,
        const std::shared_ptr<ZRMStatisticsData>& data) override {
        report("delete", dataSource, data);
    }
    std::vector<std::string> texts;

  private:
    void report(const std::string& what, ZRMStatisticsDataSource& dataSource,
                const std::shared_ptr<ZRMStatisticsData>& data) {
        texts.push_back(what + " " + zrm_textFromData(*data->bytes()) + ", size " +
                        std::to_string(dataSource.getStorageSize()));
    }
};

class ZRMStatisticsDataSourceTest : public ZRMStatisticsDeviceTest {
  protected:
    void remove(const ZRMStatisticEntity& statistic) {
        context_->performBlockAndWait([&] {
            EXPECT_EQ(context_->deleteObject(statistic), std::nullopt);
            EXPECT_EQ(context_->save(), std::nullopt);
        });
    }

    std::shared_ptr<ZRMStatisticsContext> context_ = openContext();
};

}  // namespace

TEST_F(ZRMStatisticsDataSourceTest, KnowsSizeAndCountOfWhatIsStoredAlready) {
    insert(*context_, "12345", 1);
    insert(*context_, "123", 2);
    const auto dataSource = ZRMStatisticsDataSource::create(context_);
    EXPECT_EQ(dataSource->getStorageSize(), 8);
    EXPECT_EQ(dataSource->count(), 2);
}

TEST_F(ZRMStatisticsDataSourceTest, CountsWhenItIsFirstAskedAndFollowsFromThenOn) {
    const auto first = insert(*context_, "12345", 1);
    const auto dataSource = ZRMStatisticsDataSource::create(context_);
    insert(*context_, "123", 2);
    remove(first);
    EXPECT_EQ(dataSource->getStorageSize(), 3);
    EXPECT_EQ(dataSource->count(), 1);
    insert(*context_, "1", 3);
    EXPECT_EQ(dataSource->getStorageSize(), 4);
    EXPECT_EQ(dataSource->count(), 2);
}

TEST_F(ZRMStatisticsDataSourceTest, AFirstQuestionAmongTheReportsOfASaveCountsNothingTwice) {
    insert(*context_, "12345", 1);
    const auto dataSource = ZRMStatisticsDataSource::create(context_);
    const auto observer = std::make_shared<RecordedReports>();
    dataSource->addObserver(observer);
    context_->performBlockAndWait([&] {
        for (const auto* const text : {"a", "bc"}) {
            ZRMStatisticEntity statistic;
            statistic.jws = std::make_shared<ZRMStatisticsDataInMemory>(zrm_sharedData(text));
            EXPECT_TRUE(context_->insertObject(statistic));
        }
        EXPECT_EQ(context_->save(), std::nullopt);
    });
    EXPECT_THAT(observer->texts, ElementsAre("insert a, size 8", "insert bc, size 8"));
    EXPECT_EQ(dataSource->getStorageSize(), 8);
    EXPECT_EQ(dataSource->count(), 3);
}

TEST_F(ZRMStatisticsDataSourceTest, FetchesEveryRecordOldestFirst) {
    insert(*context_, "b", 2);
    insert(*context_, "a", 1);
    const auto dataSource = ZRMStatisticsDataSource::create(context_);
    insert(*context_, "c", 3);
    std::vector<std::string> texts;
    for (const auto& statistic : dataSource->fetchedStatisticsToSend()) {
        texts.push_back(zrm_textFromData(*statistic.jws->bytes()));
    }
    EXPECT_THAT(texts, ElementsAre("a", "b", "c"));
}

TEST_F(ZRMStatisticsDataSourceTest, ReportsInsertionsAndDeletionsWithTheirBytes) {
    const auto dataSource = ZRMStatisticsDataSource::create(context_);
    const auto observer = std::make_shared<RecordedReports>();
    dataSource->addObserver(observer);
    const auto statistic = insert(*context_, "event", 1);
    remove(statistic);
    EXPECT_THAT(observer->texts, ElementsAre("insert event, size 5", "delete event, size 0"));
    EXPECT_EQ(dataSource->count(), 0);
}

TEST_F(ZRMStatisticsDataSourceTest, IgnoresUpdates) {
    const auto dataSource = ZRMStatisticsDataSource::create(context_);
    const auto statistic = insert(*context_, "event", 1);
    const auto observer = std::make_shared<RecordedReports>();
    dataSource->addObserver(observer);
    context_->performBlockAndWait([&] {
        EXPECT_EQ(context_->updateObject(statistic), std::nullopt);
        EXPECT_EQ(context_->save(), std::nullopt);
    });
    EXPECT_THAT(observer->texts, IsEmpty());
    EXPECT_EQ(dataSource->getStorageSize(), 5);
}

TEST_F(ZRMStatisticsDataSourceTest, ReportsNothingToAnObserverThatLeft) {
    const auto dataSource = ZRMStatisticsDataSource::create(context_);
    const auto observer = std::make_shared<RecordedReports>();
    dataSource->addObserver(observer);
    dataSource->removeObserver(observer.get());
    insert(*context_, "event", 1);
    EXPECT_THAT(observer->texts, IsEmpty());
}

TEST_F(ZRMStatisticsDataSourceTest, StoreThatCannotBeReadIsLoggedOnceAndCountsAsEmpty) {
    insert(*context_, "event", 1);
    openDatabase().exec("DROP TABLE ZRMStatisticEntity");
    const auto dataSource = ZRMStatisticsDataSource::create(context_);
    EXPECT_EQ(dataSource->getStorageSize(), 0);
    EXPECT_THAT(dataSource->fetchedStatisticsToSend(), IsEmpty());
    ASSERT_EQ(errors().size(), 1U);
    EXPECT_THAT(errors()[0], StartsWith("Can't fetch statistics entites from storage: "));
}

TEST_F(ZRMStatisticsDataSourceTest, StoreThatBecomesUnreadableIsLogged) {
    insert(*context_, "event", 1);
    const auto dataSource = ZRMStatisticsDataSource::create(context_);
    openDatabase().exec("DROP TABLE ZRMStatisticEntity");
    EXPECT_THAT(dataSource->fetchedStatisticsToSend(), IsEmpty());
    ASSERT_EQ(errors().size(), 1U);
    EXPECT_THAT(errors()[0], StartsWith("Can't fetch statistics entites from storage: "));
}

TEST_F(ZRMStatisticsDataSourceTest, StopsFollowingTheStoreWhenItIsDropped) {
    auto dataSource = ZRMStatisticsDataSource::create(context_);
    dataSource.reset();
    insert(*context_, "event", 1);
    EXPECT_THAT(contents(*context_), ElementsAre("event"));
    EXPECT_EQ(device_.console().text(), "");
}
