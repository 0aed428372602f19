// A simulated device with the store's data model on it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsStorage.h"

// The model file that ships with the library.
ZRMData zrm_shippedStatisticsModel();

// Bytes as an operation takes them.
inline ZRMSharedData zrm_sharedData(std::string_view text) {
    return std::make_shared<const ZRMData>(zrm_dataFromText(text));
}

class ZRMStatisticsDeviceTest : public ::testing::Test {
  protected:
    static constexpr const char* kStorePath = "/device/data/ZRMStatisticsStorage";

    ZRMStatisticsDeviceTest();

    // The process ends and a new one begins on the same disk.
    void restart(ZRMSimulatedLoss loss = ZRMSimulatedLoss::None);

    [[nodiscard]] std::shared_ptr<ZRMStatisticsStorage> openStorage();
    // The context of a fresh store; fails the test when it cannot be opened.
    [[nodiscard]] std::shared_ptr<ZRMStatisticsContext> openContext();

    // A connection of the test's own to the store file, which it makes where there is none.
    [[nodiscard]] SQLite::Database openDatabase() const;

    // Every record, oldest first.
    static std::vector<ZRMStatisticEntity> records(ZRMStatisticsContext& context);
    // Their bytes as text.
    static std::vector<std::string> contents(ZRMStatisticsContext& context);
    static ZRMStatisticEntity insert(ZRMStatisticsContext& context, std::string_view bytes,
                                     double storeTimestamp, std::int16_t priority = 1,
                                     std::int16_t activeDays = 1);

    // A provider that knows the time 1700000000000 ms from now on.
    [[nodiscard]] std::shared_ptr<ZRMServerTimeProvider> knownServerTime();
    [[nodiscard]] std::shared_ptr<ZRMServerTimeProvider> unknownServerTime();

    [[nodiscard]] std::vector<std::string> errors() const { return log_->errors(); }
    [[nodiscard]] bool hasError(std::string_view text) const;
    [[nodiscard]] std::size_t countVerbose(std::string_view beginning) const;

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    std::unique_ptr<ZRMRecordedLog> log_ = std::make_unique<ZRMRecordedLog>();
};
