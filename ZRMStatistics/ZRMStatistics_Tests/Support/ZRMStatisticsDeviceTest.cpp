#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"

#include <algorithm>

#include "ZRMPlatform/Linux/ZRMLinuxFileManager.h"

ZRMData zrm_shippedStatisticsModel() {
    return ZRMLinuxFileManager()
        .readFile(std::string(ZRM_STATISTICS_RESOURCES) +
                  "/ZRMStatisticsResources.bundle/ZRMStatisticsModel.json")
        .value();
}

ZRMStatisticsDeviceTest::ZRMStatisticsDeviceTest() {
    device_.resourceBundles().put(kZRMStatisticsResourcesBundle, "ZRMStatisticsModel.json",
                                  zrm_shippedStatisticsModel());
}

void ZRMStatisticsDeviceTest::restart(ZRMSimulatedLoss loss) {
    device_.restartProcess(loss);
    log_ = std::make_unique<ZRMRecordedLog>();
}

std::shared_ptr<ZRMStatisticsStorage> ZRMStatisticsDeviceTest::openStorage() {
    return ZRMStatisticsStorage::create(
        device_.platform(),
        ZRMStatisticsStorageConfiguration::configurationWithStorageUrl(kStorePath, true));
}

std::shared_ptr<ZRMStatisticsContext> ZRMStatisticsDeviceTest::openContext() {
    const auto storage = openStorage();
    if (!storage) {
        throw std::runtime_error("the store cannot be opened");
    }
    return storage->context();
}

SQLite::Database ZRMStatisticsDeviceTest::openDatabase() const {
    return {std::string(kStorePath), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE, 0,
            device_.platform()->directories->databaseFileLayer()};
}

std::vector<ZRMStatisticEntity> ZRMStatisticsDeviceTest::records(ZRMStatisticsContext& context) {
    std::vector<ZRMStatisticEntity> found;
    context.performBlockAndWait(
        [&] { found = context.executeFetchRequest(ZRMStatisticEntity::fetchRequest()).value(); });
    return found;
}

std::vector<std::string> ZRMStatisticsDeviceTest::contents(ZRMStatisticsContext& context) {
    std::vector<std::string> texts;
    for (const auto& record : records(context)) {
        texts.push_back(zrm_textFromData(*record.jws->bytes()));
    }
    return texts;
}

ZRMStatisticEntity ZRMStatisticsDeviceTest::insert(ZRMStatisticsContext& context,
                                                   std::string_view bytes, double storeTimestamp,
                                                   std::int16_t priority, std::int16_t activeDays) {
    ZRMStatisticEntity statistic;
    statistic.jws = std::make_shared<ZRMStatisticsDataInMemory>(zrm_sharedData(bytes));
    statistic.storeTimestamp = storeTimestamp;
    statistic.lastTryTimestamp = storeTimestamp;
    statistic.priority = priority;
    statistic.activeDays = activeDays;
    context.performBlockAndWait([&] {
        statistic = context.insertObject(statistic).value();
        EXPECT_EQ(context.save(), std::nullopt);
    });
    return statistic;
}

std::shared_ptr<ZRMServerTimeProvider> ZRMStatisticsDeviceTest::knownServerTime() {
    auto provider = unknownServerTime();
    provider->setTime("Tue, 14 Nov 2023 22:13:20 GMT");
    return provider;
}

std::shared_ptr<ZRMServerTimeProvider> ZRMStatisticsDeviceTest::unknownServerTime() {
    return std::make_shared<ZRMServerTimeProvider>(device_.platform()->clock);
}

bool ZRMStatisticsDeviceTest::hasError(std::string_view text) const {
    const auto logged = errors();
    return std::ranges::find(logged, text) != logged.end();
}

std::size_t ZRMStatisticsDeviceTest::countVerbose(std::string_view beginning) const {
    const auto logged = log_->verboses();
    return static_cast<std::size_t>(std::ranges::count_if(
        logged, [&](const auto& text) { return text.starts_with(beginning); }));
}
