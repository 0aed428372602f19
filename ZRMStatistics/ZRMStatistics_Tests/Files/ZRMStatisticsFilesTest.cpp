// The queue on real files and threads.
#include <algorithm>
#include <fstream>
#include <memory>
#include <set>
#include <thread>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestWaiting.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMCreateStatisticOperation.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsServiceImpl.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMTestEvent.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class SourceTreeBundles final : public ZRMResourceBundles {
  public:
    [[nodiscard]] std::optional<std::string> pathForBundle(const std::string& name) const override {
        return std::string(ZRM_STATISTICS_RESOURCES) + "/" + name;
    }
};

// Answers every upload at once, on the thread that hands it over.
class AnsweringSender final : public ZRMStatisticsSender {
  public:
    void sendStatisticsData(const std::shared_ptr<ZRMStatisticsData>& data) override {
        const auto name = zrm_testEventName(*data->bytes());
        observer_->statisticsSenderDidSendData(*this, data);
        names.change([&](auto& all) { all.push_back(name); });
    }
    void addObserver(const std::shared_ptr<ZRMStatisticsSenderObserver>& observer) override {
        observer_ = observer.get();
    }
    void removeObserver(const ZRMStatisticsSenderObserver* /*observer*/) override {}

    ZRMAwaited<std::vector<std::string>> names;

  private:
    ZRMStatisticsSenderObserver* observer_ = nullptr;
};

// The process has no more rights than any user while it lives; modes do not bind the superuser.
class PlainUser {
  public:
    PlainUser() { EXPECT_TRUE(wasRoot_ == false || seteuid(kNobody) == 0); }
    ~PlainUser() { EXPECT_TRUE(wasRoot_ == false || seteuid(0) == 0); }
    PlainUser(const PlainUser&) = delete;
    PlainUser& operator=(const PlainUser&) = delete;

  private:
    static constexpr uid_t kNobody = 65534;
    bool wasRoot_ = geteuid() == 0;
};

class ZRMStatisticsFilesTest : public ::testing::Test {
  protected:
    static std::shared_ptr<const ZRMPlatform> makePlatform() {
        auto platform = std::make_shared<ZRMPlatform>(*zrm_makeLinuxPlatform({}));
        platform->resourceBundles = std::make_shared<SourceTreeBundles>();
        return platform;
    }

    std::shared_ptr<ZRMStatisticsStorage> open() {
        return ZRMStatisticsStorage::create(
            platform_,
            ZRMStatisticsStorageConfiguration::configurationWithStorageUrl(storePath_, true));
    }
    void add(ZRMStatisticsStorage& storage, const std::string& bytes) {
        const auto operation = std::make_shared<ZRMCreateStatisticOperation>(
            std::make_shared<const ZRMData>(zrm_dataFromText(bytes)), storage.context(), time_,
            std::int16_t{1});
        operation->start();
        ASSERT_EQ(operation->error(), std::nullopt);
    }
    static std::vector<std::string> contents(ZRMStatisticsStorage& storage) {
        std::vector<std::string> texts;
        storage.context()->performBlockAndWait([&] {
            const auto fetched =
                storage.context()->executeFetchRequest(ZRMStatisticEntity::fetchRequest());
            for (const auto& statistic : fetched.value()) {
                const auto bytes = statistic.jws->bytes();
                texts.push_back(bytes ? zrm_textFromData(*bytes) : "unreadable");
            }
        });
        return texts;
    }
    void overwrite(std::streamoff offset, std::size_t length) const {
        std::fstream file(storePath_, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(offset);
        file << std::string(length, '\xff');
        ASSERT_TRUE(file.good());
    }
    // The names beside the store that begin like a store moved aside.
    std::vector<std::string> movedAside() const {
        auto names = platform_->fileManager->contentsOfDirectory(directory_.below("store")).value();
        std::erase_if(names, [](const auto& name) {
            return !name.starts_with("ZRMStatisticsStorage.damaged-") || name.ends_with("-wal") ||
                   name.ends_with("-shm");
        });
        return names;
    }

    ZRMTestDirectory directory_;
    const std::string storePath_ = directory_.below("store/ZRMStatisticsStorage");
    std::shared_ptr<const ZRMPlatform> platform_ = makePlatform();
    ZRMScopedPlatform installed_{platform_};
    ZRMRecordedLog log_{kZRMLogLevelError};
    std::shared_ptr<ZRMServerTimeProvider> time_ =
        std::make_shared<ZRMServerTimeProvider>(platform_->clock);
};

}  // namespace

TEST_F(ZRMStatisticsFilesTest, RecordsSurviveTheConnection) {
    {
        const auto storage = open();
        ASSERT_TRUE(storage);
        add(*storage, "one");
        add(*storage, "two");
    }
    EXPECT_THAT(contents(*open()), ElementsAre("one", "two"));
    EXPECT_THAT(log_.errors(), IsEmpty());
}

TEST_F(ZRMStatisticsFilesTest, StoreAndItsCompanionsAreForTheUserAlone) {
    const auto storage = open();
    ASSERT_TRUE(storage);
    add(*storage, "event");
    EXPECT_EQ(zrm_testMode(directory_.below("store")), 0700U);
    EXPECT_EQ(zrm_testMode(storePath_), 0600U);
    EXPECT_EQ(zrm_testMode(storePath_ + "-wal"), 0600U);
    EXPECT_EQ(zrm_testMode(storePath_ + "-shm"), 0600U);
}

TEST_F(ZRMStatisticsFilesTest, WriteAheadLogIsSyncedOnEverySave) {
    const auto storage = open();
    ASSERT_TRUE(storage);
    add(*storage, "event");
    SQLite::Database other(storePath_, SQLite::OPEN_READONLY);
    EXPECT_EQ(other.execAndGet("PRAGMA journal_mode").getString(), "wal");
    auto coordinator = ZRMStatisticsStorage::makeCoordinatorWithConfiguration(
        *platform_, storage->configuration(),
        *ZRMStatisticsStorage::makeManagedObjectModel(*platform_));
    EXPECT_EQ(coordinator.value()->database().execAndGet("PRAGMA synchronous").getInt(), 2);
}

TEST_F(ZRMStatisticsFilesTest, StoreThatAnotherConnectionHoldsIsRefusedAndKept) {
    add(*open(), "event");
    {
        SQLite::Database holder(storePath_, SQLite::OPEN_READWRITE);
        holder.exec("PRAGMA locking_mode = EXCLUSIVE");
        holder.exec("BEGIN EXCLUSIVE");
        EXPECT_FALSE(open());
        ASSERT_EQ(log_.errors().size(), 1U);
        EXPECT_THAT(log_.errors()[0],
                    StartsWith("Can't \xD1\x81reate persistent store for statistics storage: "));
    }
    EXPECT_THAT(contents(*open()), ElementsAre("event"));
    EXPECT_THAT(movedAside(), IsEmpty());
}

TEST_F(ZRMStatisticsFilesTest, StoreThatCannotBeWrittenIsRefusedAndKept) {
    add(*open(), "event");
    ASSERT_EQ(chmod(directory_.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(directory_.below("store").c_str(), 0555), 0);
    ASSERT_EQ(chmod(storePath_.c_str(), 0444), 0);
    {
        const PlainUser user;
        EXPECT_FALSE(open());
    }
    ASSERT_EQ(log_.errors().size(), 1U);
    EXPECT_THAT(log_.errors()[0],
                StartsWith("Can't \xD1\x81reate persistent store for statistics storage: "));
    ASSERT_EQ(chmod(directory_.below("store").c_str(), 0700), 0);
    ASSERT_EQ(chmod(storePath_.c_str(), 0600), 0);
    EXPECT_THAT(contents(*open()), ElementsAre("event"));
    EXPECT_THAT(movedAside(), IsEmpty());
}

TEST_F(ZRMStatisticsFilesTest, FileThatIsNoDatabaseIsMovedAsideAndAFreshStoreTakesOver) {
    directory_.writeFile("store/ZRMStatisticsStorage", std::string(5000, 'x'));
    const auto storage = open();
    ASSERT_TRUE(storage);
    add(*storage, "event");
    EXPECT_THAT(contents(*storage), ElementsAre("event"));
    ASSERT_EQ(movedAside().size(), 1U);
    EXPECT_EQ(zrm_testFileText(directory_.below("store/" + movedAside()[0])),
              std::string(5000, 'x'));
    EXPECT_THAT(log_.errors(), ElementsAre("Statistics storage was damaged and is now at '" +
                                           directory_.below("store/" + movedAside()[0]) +
                                           "', records carried over: 0"));
}

TEST_F(ZRMStatisticsFilesTest, DamageFoundInUseIsRepairedAtTheNextOpening) {
    std::vector<std::string> all;
    {
        const auto storage = open();
        ASSERT_TRUE(storage);
        for (int number = 0; number < 200; ++number) {
            all.push_back(std::to_string(number) + std::string(1500, 'e'));
            add(*storage, all.back());
        }
    }
    const auto size = zrm_testFileText(storePath_).size();
    ASSERT_GT(size, 200U * 1500);
    overwrite(static_cast<std::streamoff>(size / 2 / 4096 * 4096), 4096);
    {
        const auto storage = open();
        ASSERT_TRUE(storage);
        EXPECT_THAT(contents(*storage), ::testing::Contains("unreadable"));
        EXPECT_THAT(movedAside(), IsEmpty());
    }
    const auto storage = open();
    ASSERT_TRUE(storage);
    ASSERT_EQ(movedAside().size(), 1U);
    const auto saved = contents(*storage);
    EXPECT_GT(saved.size(), 150U);
    EXPECT_LT(saved.size(), 200U);
    EXPECT_EQ(saved.front(), all.front());
    const std::set<std::string> known(all.begin(), all.end());
    EXPECT_TRUE(std::ranges::all_of(saved, [&](const auto& text) { return known.contains(text); }));
    EXPECT_EQ(std::set(saved.begin(), saved.end()).size(), saved.size());
    ASSERT_FALSE(log_.errors().empty());
    EXPECT_THAT(log_.errors().back(),
                HasSubstr("records carried over: " + std::to_string(saved.size())));
    // The repaired store is as good as any.
    EXPECT_THAT(contents(*open()), saved);
    EXPECT_EQ(movedAside().size(), 1U);
}

TEST_F(ZRMStatisticsFilesTest, StoreWithADamagedBeginningIsMovedAside) {
    add(*open(), "event");
    overwrite(0, 100);
    const auto storage = open();
    ASSERT_TRUE(storage);
    EXPECT_THAT(contents(*storage), IsEmpty());
    EXPECT_EQ(movedAside().size(), 1U);
}

TEST_F(ZRMStatisticsFilesTest, EventsOfManyThreadsAreStoredSentAndDeleted) {
    const auto sender = std::make_shared<AnsweringSender>();
    const auto storage = open();
    ASSERT_TRUE(storage);
    const auto service =
        std::make_shared<ZRMStatisticsServiceImpl>(platform_, storage, sender, time_);
    service->start();
    constexpr int kThreads = 4;
    constexpr int kEvents = 100;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int number = 0; number < kEvents; ++number) {
                service->send(ZRMTestEvent(std::to_string(thread) + "/" + std::to_string(number)),
                              1);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    ASSERT_TRUE(sender->names.waitUntil(
        [](const auto& names) { return names.size() == kThreads * kEvents; }));
    // The deletions of all uploads are on the queue before this.
    ZRMAwaited<bool> isDrained;
    service->queue().addOperationWithBlock([&] { isDrained.set(true); });
    ASSERT_TRUE(isDrained.waitUntil([](bool value) { return value; }));
    EXPECT_EQ(service->pendingEventCount(), 0U);
    EXPECT_THAT(contents(*storage), IsEmpty());
    const auto names = sender->names.value();
    EXPECT_EQ(std::set(names.begin(), names.end()).size(), names.size());
    EXPECT_THAT(log_.errors(), IsEmpty());
}
